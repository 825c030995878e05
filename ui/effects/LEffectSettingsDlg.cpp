#include "ui/effects/LEffectSettingsDlg.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cstring>

#include "dsp/CompressorRatioList.h"
#include "dsp/effects/LEffectSettingsRecord.h"
#include "dsp/effects/LStoredValues.h"
#include "ui/LUiPrompts.h"
#include "ui/effects/LEffectPreviewButton.h"

LEffectSettingsDlg::LEffectSettingsDlg(QWidget* pParent, const LEffectInfo& i, const std::vector<uint8_t>* pRecord)
    : QDialog(pParent), info(i), vRecord(pRecord ? *pRecord : LEffectSettingsRecord::FromStored(i)), bStore(!pRecord)
{
    QString szTitle = QString::fromLatin1(info.szMenuText);
    szTitle.remove("...");
    setWindowTitle(szTitle);
    setObjectName("LEffectSettingsDlg");
    auto* pForm = new QFormLayout(this);
    // A record too short for the effect opens with the stored values.
    LEffectArgs args;
    LEffectSettingsRecord::Read(info, vRecord.data(), vRecord.size(), args);
    for (const LEffectParam& param : info.vParams)
        AddField(pForm, param, args.Value(param.szKey));
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LEffectSettingsDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LEffectSettingsDlg::reject);
    LEffectPreviewButton::AddTo(this, pButtons, info, [this](LEffectArgs& a) { return CurrentValues(a); });
    pForm->addRow(pButtons);
}

void LEffectSettingsDlg::AddField(QFormLayout* pForm, const LEffectParam& param, int32_t nValue)
{
    Field f{param.szKey};
    const QString szLabel = QString::fromUtf8(param.szLabel);
    const bool bInRange = nValue >= param.nLowest && nValue <= param.nHighest;
    if (param.kind == LEffectParam::Ratio) {
        f.pCombo = new QComboBox(this);
        for (int32_t i = 0; i < kCompressorRatioCount; ++i)
            f.pCombo->addItem(QString::fromLatin1(CompressorRatioList[i].szLabel));
        f.pCombo->setCurrentIndex(bInRange ? nValue : 0);
        f.pCombo->setObjectName(param.szKey);
        pForm->addRow(szLabel, f.pCombo);
    } else if (param.kind == LEffectParam::Choice) {
        f.pChoice = new QButtonGroup(this);
        auto* pBox = new QVBoxLayout;
        for (int i = 0; i < static_cast<int>(param.szChoices.size()); ++i) {
            auto* pRadio = new QRadioButton(QString::fromUtf8(param.szChoices[i]), this);
            pRadio->setObjectName(QString("%1%2").arg(param.szKey).arg(i));
            pRadio->setChecked(i == nValue || (i == 0 && !bInRange));
            f.pChoice->addButton(pRadio, i);
            pBox->addWidget(pRadio);
        }
        pForm->addRow(szLabel, pBox);
    } else {
        AddNumberField(pForm, param, f, nValue);
    }
    vFields.push_back(f);
}

void LEffectSettingsDlg::AddNumberField(QFormLayout* pForm, const LEffectParam& param, Field& f, int32_t nValue)
{
    f.pEdit = new QLineEdit(QString::number(nValue), this);
    f.pEdit->setObjectName(param.szKey);
    const QString szLabel = QString::fromUtf8(param.szLabel);
    if (param.vPresets.empty()) {
        pForm->addRow(szLabel, f.pEdit);
        return;
    }
    auto* pPresets = new QComboBox(this);
    pPresets->setObjectName(QString(param.szKey) + "Presets");
    pPresets->addItem(tr("Presets..."));
    for (const LEffectPreset& preset : param.vPresets)
        pPresets->addItem(QString("%1 (%2)").arg(QString::fromUtf8(preset.szName)).arg(preset.nValue), preset.nValue);
    QLineEdit* pEdit = f.pEdit;
    connect(pPresets, &QComboBox::activated, this, [pPresets, pEdit](int nIndex) {
        if (nIndex > 0)
            pEdit->setText(QString::number(pPresets->itemData(nIndex).toInt()));
    });
    auto* pRow = new QHBoxLayout;
    pRow->addWidget(f.pEdit, 1);
    pRow->addWidget(pPresets);
    pForm->addRow(szLabel, pRow);
}

QWidget* LEffectSettingsDlg::FieldOf(const char* szKey) const
{
    for (const Field& f : vFields) {
        if (!std::strcmp(f.szKey, szKey)) {
            if (f.pEdit)
                return f.pEdit;
            if (f.pCombo)
                return f.pCombo;
            return f.pChoice->button(0);
        }
    }
    return nullptr;
}

bool LEffectSettingsDlg::ValueOf(const Field& f, int32_t& nValue) const
{
    if (f.pCombo) {
        nValue = f.pCombo->currentIndex();
        return true;
    }
    if (f.pChoice) {
        nValue = f.pChoice->checkedId();
        return true;
    }
    bool bOk = false;
    nValue = f.pEdit->text().trimmed().toInt(&bOk);
    return bOk;
}

void LEffectSettingsDlg::Refuse(const Field& f, const std::string& szMessage)
{
    LUiPrompts::Get().Inform(this, "Sonitra", QString::fromStdString(szMessage), LUiPrompts::IconWarning);
    if (f.pEdit) {
        f.pEdit->setFocus();
        f.pEdit->selectAll();
    }
}

void LEffectSettingsDlg::accept()
{
    std::vector<int32_t> vValues;
    for (const Field& f : vFields) {
        int32_t nValue = 0;
        std::string szMessage;
        // Text that is not a number is refused with the value's own message, like a number out of range.
        if (!ValueOf(f, nValue)) {
            Refuse(f, LStoredValues::MessageOf(f.szKey));
            return;
        }
        if (!LStoredValues::Accept(f.szKey, nValue, &szMessage)) {
            Refuse(f, szMessage);
            return;
        }
        vValues.push_back(nValue);
    }
    LEffectArgs args;
    for (size_t i = 0; i < vFields.size(); ++i)
        args.mapValues[vFields[i].szKey] = vValues[i];
    vRecord = LEffectSettingsRecord::Write(info, args);
    if (bStore)
        args.Store(info);
    QDialog::accept();
}

bool LEffectSettingsDlg::Edit(QWidget* pParent, const LEffectInfo& info)
{
    LEffectSettingsDlg dlg(pParent, info);
    return dlg.exec() == QDialog::Accepted;
}

bool LEffectSettingsDlg::EditRecord(QWidget* pParent, const LEffectInfo& info, std::vector<uint8_t>& vRecordInOut)
{
    LEffectSettingsDlg dlg(pParent, info, &vRecordInOut);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    vRecordInOut = dlg.GetRecord();
    return true;
}

bool LEffectSettingsDlg::CurrentValues(LEffectArgs& args) const
{
    for (const Field& f : vFields) {
        int32_t nValue = 0;
        if (!ValueOf(f, nValue) || !LStoredValues::Accept(f.szKey, nValue, nullptr))
            return false;
        args.mapValues[f.szKey] = nValue;
    }
    return true;
}

#include "ui/tools/LTextToSpeechDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSpinBox>

#include "core/LSettings.h"
#include "platform/engine/LTextToSpeech.h"
#include "ui/LUiPrompts.h"

namespace {
constexpr const char* kSection = "StoredValues";
}

LTextToSpeechDlg::LTextToSpeechDlg(QWidget* pParent, bool bCanInsert) : QDialog(pParent)
{
    setWindowTitle(tr("Text To Speech"));
    setObjectName("LTextToSpeechDlg");
    pText = new QPlainTextEdit(this);
    pText->setObjectName("text");
    pText->setPlaceholderText(tr("Type or paste the text to speak."));
    pVoice = new QComboBox(this);
    pVoice->setObjectName("voice");
    pVoice->setEditable(true);
    for (const std::string& sz : LTextToSpeech::CommonVoices())
        pVoice->addItem(QString::fromStdString(sz));
    pVoice->setCurrentText(QString::fromStdString(LSettings::GetString(kSection, "SpeechVoice", "en")));
    pSpeed = new QSpinBox(this);
    pSpeed->setObjectName("speed");
    pSpeed->setRange(LTextToSpeech::kMinWordsPerMinute, LTextToSpeech::kMaxWordsPerMinute);
    pSpeed->setValue(LSettings::GetInt(kSection, "SpeechSpeed", LTextToSpeech::kDefaultWordsPerMinute));
    pNew = new QRadioButton(tr("New file"), this);
    pNew->setObjectName("newFile");
    pInsert = new QRadioButton(tr("Insert at the cursor"), this);
    pInsert->setObjectName("insert");
    pInsert->setEnabled(bCanInsert);
    (bCanInsert && LSettings::GetBool(kSection, "SpeechInsert", false) ? pInsert : pNew)->setChecked(true);
    auto* pWhere = new QHBoxLayout;
    pWhere->addWidget(pNew);
    pWhere->addWidget(pInsert);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LTextToSpeechDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LTextToSpeechDlg::reject);
    auto* pForm = new QFormLayout(this);
    pForm->addRow(tr("Text:"), pText);
    pForm->addRow(tr("Voice:"), pVoice);
    pForm->addRow(tr("Speed (words per minute):"), pSpeed);
    pForm->addRow(tr("Put it in:"), pWhere);
    pForm->addRow(pButtons);
    resize(480, 320);
}

std::string LTextToSpeechDlg::GetText() const
{
    return pText->toPlainText().toStdString();
}

std::string LTextToSpeechDlg::GetVoice() const
{
    return pVoice->currentText().trimmed().toStdString();
}

int LTextToSpeechDlg::GetWordsPerMinute() const
{
    return pSpeed->value();
}

bool LTextToSpeechDlg::IsInsert() const
{
    return pInsert->isChecked();
}

void LTextToSpeechDlg::accept()
{
    if (pText->toPlainText().trimmed().isEmpty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", "Type or paste the text to speak.", LUiPrompts::IconWarning);
        return;
    }
    if (!LTextToSpeech::IsVoiceName(GetVoice())) {
        LUiPrompts::Get().Inform(this, "Sonitra", QString("\"%1\" is not a voice name.").arg(pVoice->currentText()),
                                 LUiPrompts::IconWarning);
        return;
    }
    LSettings::SetString(kSection, "SpeechVoice", GetVoice());
    LSettings::SetInt(kSection, "SpeechSpeed", GetWordsPerMinute());
    LSettings::SetBool(kSection, "SpeechInsert", IsInsert());
    QDialog::accept();
}

#include "ui/tools/LToneGeneratorDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>

#include <cmath>

#include "core/LSettings.h"
#include "core/LSoundTime.h"
#include "ui/LUiPrompts.h"

namespace {
constexpr const char* kSection = "StoredValues";
const char* const kWaveLabels[] = {"Sine", "Square", "Triangle", "Sawtooth", "White Noise", "Pink Noise",
                                   "DTMF Digits", "Sweep"};

QDoubleSpinBox* Spin(QWidget* pParent, const char* szName, double fMin, double fMax, int nDecimals, double fValue)
{
    auto* p = new QDoubleSpinBox(pParent);
    p->setObjectName(szName);
    p->setRange(fMin, fMax);
    p->setDecimals(nDecimals);
    p->setValue(fValue);
    return p;
}
} // namespace

LToneGeneratorDlg::LToneGeneratorDlg(QWidget* pParent, bool bCanInsert) : QDialog(pParent)
{
    setWindowTitle(tr("Tone Generator"));
    setObjectName("LToneGeneratorDlg");
    pWave = new QComboBox(this);
    pWave->setObjectName("wave");
    for (const char* sz : kWaveLabels)
        pWave->addItem(tr(sz));
    pWave->setCurrentIndex(std::clamp(LSettings::GetInt(kSection, "ToneWave", 0), 0, 7));
    pFreq = Spin(this, "freq", 1, 96000, 2, LSettings::GetInt(kSection, "ToneFreq", 440));
    pToFreq = Spin(this, "toFreq", 1, 96000, 2, LSettings::GetInt(kSection, "ToneToFreq", 4000));
    pDigits = new QLineEdit(QString::fromStdString(LSettings::GetString(kSection, "ToneDigits", "0123456789")), this);
    pDigits->setObjectName("digits");
    pLevel = Spin(this, "level", -120, 0, 1, LSettings::GetInt(kSection, "ToneLevel", -6));
    LSoundTime length;
    length.SetSamples(LSettings::GetInt(kSection, "ToneLengthMs", 1000), 1000);
    pLength = new QLineEdit(QString::fromStdString(length.FormatMilliseconds()), this);
    pLength->setObjectName("length");
    pRate = new QComboBox(this);
    pRate->setObjectName("rate");
    pRate->setEditable(true);
    for (int n : {8000, 11025, 16000, 22050, 32000, 44100, 48000, 96000})
        pRate->addItem(QString::number(n));
    pRate->setCurrentText(QString::number(LSettings::GetInt(kSection, "ToneRate", 44100)));
    pChans = new QComboBox(this);
    pChans->setObjectName("channels");
    pChans->addItems({tr("Mono"), tr("Stereo")});
    pChans->setCurrentIndex(LSettings::GetInt(kSection, "ToneChannels", 1) == 2 ? 1 : 0);
    pNew = new QRadioButton(tr("New file"), this);
    pNew->setObjectName("newFile");
    pInsert = new QRadioButton(tr("Insert at the cursor"), this);
    pInsert->setObjectName("insert");
    pInsert->setEnabled(bCanInsert);
    (bCanInsert && LSettings::GetBool(kSection, "ToneInsert", false) ? pInsert : pNew)->setChecked(true);
    auto* pWhere = new QHBoxLayout;
    pWhere->addWidget(pNew);
    pWhere->addWidget(pInsert);

    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LToneGeneratorDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LToneGeneratorDlg::reject);
    auto* pForm = new QFormLayout(this);
    pForm->addRow(tr("Wave:"), pWave);
    pForm->addRow(tr("Frequency (Hz):"), pFreq);
    pForm->addRow(tr("Sweep to (Hz):"), pToFreq);
    pForm->addRow(tr("Digits:"), pDigits);
    pForm->addRow(tr("Level (dBFS):"), pLevel);
    pForm->addRow(tr("Length:"), pLength);
    pForm->addRow(tr("Sample Rate (Hz):"), pRate);
    pForm->addRow(tr("Channels:"), pChans);
    pForm->addRow(tr("Put it in:"), pWhere);
    pForm->addRow(pButtons);
    connect(pWave, &QComboBox::currentIndexChanged, this, &LToneGeneratorDlg::UpdateFields);
    connect(pInsert, &QRadioButton::toggled, this, &LToneGeneratorDlg::UpdateFields);
    UpdateFields();
}

void LToneGeneratorDlg::UpdateFields()
{
    const auto wave = static_cast<LToneSettings::Wave>(pWave->currentIndex());
    const bool bNoise = wave == LToneSettings::WhiteNoise || wave == LToneSettings::PinkNoise;
    pFreq->setEnabled(!bNoise && wave != LToneSettings::Dtmf);
    pToFreq->setEnabled(wave == LToneSettings::Sweep);
    pDigits->setEnabled(wave == LToneSettings::Dtmf);
    // An inserted tone takes the file's own rate and channels.
    pRate->setEnabled(!pInsert->isChecked());
    pChans->setEnabled(!pInsert->isChecked());
}

void LToneGeneratorDlg::accept()
{
    LToneSettings s;
    s.wave = static_cast<LToneSettings::Wave>(pWave->currentIndex());
    s.fHz = pFreq->value();
    s.fToHz = pToFreq->value();
    s.szDigits = pDigits->text().trimmed().toStdString();
    s.fLevelDb = pLevel->value();
    s.nChans = pChans->currentIndex() == 1 ? 2 : 1;
    bool bOk = false;
    s.nRate = pRate->currentText().trimmed().toInt(&bOk);
    if (!bOk)
        s.nRate = 0;
    // A plain number is seconds; otherwise the time forms the time fields show.
    LSoundTime length;
    const QString szLength = pLength->text().trimmed();
    const double fSeconds = szLength.toDouble(&bOk);
    if (bOk && fSeconds > 0 && fSeconds < 86400)
        length.SetMilliseconds(static_cast<int32_t>(std::lround(fSeconds * 1000)));
    else if (!LSoundTime::Parse(szLength.toStdString(), length))
        length.SetMilliseconds(0);
    if (length.GetMilliseconds() <= 0) {
        LUiPrompts::Get().Inform(this, "Sonitra", "Type the length as seconds or h:mm:ss.mmm.", LUiPrompts::IconWarning);
        return;
    }
    s.nLengthMs = length.GetMilliseconds();
    const std::string szProblem = s.Check();
    if (!szProblem.empty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", QString::fromStdString(szProblem), LUiPrompts::IconWarning);
        return;
    }
    settings = s;
    bInsert = pInsert->isChecked();
    LSettings::SetInt(kSection, "ToneWave", pWave->currentIndex());
    LSettings::SetInt(kSection, "ToneFreq", static_cast<int32_t>(std::lround(s.fHz)));
    LSettings::SetInt(kSection, "ToneToFreq", static_cast<int32_t>(std::lround(s.fToHz)));
    LSettings::SetString(kSection, "ToneDigits", s.szDigits);
    LSettings::SetInt(kSection, "ToneLevel", static_cast<int32_t>(std::lround(s.fLevelDb)));
    LSettings::SetInt(kSection, "ToneLengthMs", s.nLengthMs);
    LSettings::SetInt(kSection, "ToneRate", s.nRate);
    LSettings::SetInt(kSection, "ToneChannels", s.nChans);
    LSettings::SetBool(kSection, "ToneInsert", bInsert);
    QDialog::accept();
}

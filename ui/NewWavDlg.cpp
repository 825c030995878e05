#include "ui/NewWavDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QRadioButton>

#include "core/LSettings.h"
#include "ui/LUiPrompts.h"

NewWavDlg::NewWavDlg(QWidget* pParent, int32_t nSampleRate, int nChans)
    : QDialog(pParent), nRate(nSampleRate), nChannels(nChans)
{
    setWindowTitle(tr("New File"));
    setObjectName("NewWavDlg");
    pRate = new QComboBox(this);
    pRate->setObjectName("rate");
    pRate->setEditable(true);
    for (int n : {8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000})
        pRate->addItem(QString::number(n));
    pRate->setCurrentText(QString::number(nSampleRate));
    pMono = new QRadioButton(tr("Mono"), this);
    pStereo = new QRadioButton(tr("Stereo"), this);
    (nChans == 1 ? pMono : pStereo)->setChecked(true);
    auto* pChans = new QHBoxLayout;
    pChans->addWidget(pMono);
    pChans->addWidget(pStereo);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &NewWavDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &NewWavDlg::reject);
    auto* pForm = new QFormLayout(this);
    pForm->addRow(tr("Sample Rate (Hz):"), pRate);
    pForm->addRow(tr("Channels:"), pChans);
    pForm->addRow(pButtons);
}

bool NewWavDlg::ParseSampleRate(const QString& szText, int32_t& nOut)
{
    bool bOk = false;
    const int n = szText.trimmed().toInt(&bOk);
    if (!bOk || n < kMinSampleRate || n > kMaxSampleRate)
        return false;
    nOut = n;
    return true;
}

void NewWavDlg::accept()
{
    if (!ParseSampleRate(pRate->currentText(), nRate)) {
        LUiPrompts::Get().Inform(this, "Sonitra", kSampleRateMessage, LUiPrompts::IconWarning);
        return;
    }
    nChannels = pMono->isChecked() ? 1 : 2;
    QDialog::accept();
}

bool NewWavDlg::ChooseFormat(QWidget* pParent, int32_t& nSampleRate, int& nChans)
{
    const char* const kSection = "Settings";
    nSampleRate = LSettings::GetInt(kSection, "DefaultSampleRate", 44100);
    nChans = LSettings::GetInt(kSection, "DefaultChannels", 2) == 1 ? 1 : 2;
    if (!LSettings::GetBool(kSection, "PromptSampleAndChannels", true))
        return true;
    nSampleRate = LSettings::GetInt(kSection, "SelectedSampleRate", nSampleRate);
    nChans = LSettings::GetInt(kSection, "SelectedChannels", nChans) == 1 ? 1 : 2;
    if (!LUiPrompts::Get().AskNewFormat(pParent, nSampleRate, nChans))
        return false;
    LSettings::SetInt(kSection, "SelectedSampleRate", nSampleRate);
    LSettings::SetInt(kSection, "SelectedChannels", nChans);
    return true;
}

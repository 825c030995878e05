#include "ui/LVoxRawDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

#include "ui/LSaveFormatOptions.h"
#include "ui/LUiPrompts.h"

namespace {

bool AskSaveVox(QWidget* pParent, int32_t, uint8_t, LAudioEncoding& encoding)
{
    return LVoxRawDlg::AskSave(pParent, "VOX", encoding);
}

bool AskSaveRaw(QWidget* pParent, int32_t, uint8_t, LAudioEncoding& encoding)
{
    return LVoxRawDlg::AskSave(pParent, "RAW", encoding);
}

bool AskOpenVox(QWidget* pParent, const std::string& szPath) { return LVoxRawDlg::AskOpen(pParent, "VOX", szPath); }
bool AskOpenRaw(QWidget* pParent, const std::string& szPath) { return LVoxRawDlg::AskOpen(pParent, "RAW", szPath); }

const LSaveFormatOptions voxOptions("VOX", AskSaveVox, AskOpenVox);
const LSaveFormatOptions rawOptions("RAW", AskSaveRaw, AskOpenRaw);

} // namespace

LVoxRawDlg::LVoxRawDlg(QWidget* pParent, const LVoxRawSettings& initial, bool bChannels, const std::string& szPath)
    : QDialog(pParent), settings(initial)
{
    setWindowTitle(tr("Vox and Raw File Settings"));
    setObjectName("LVoxRawDlg");
    // A headerless file says nothing about itself: the dialog says which file it asks about.
    auto* pFile = new QLabel(this);
    pFile->setObjectName("file");
    pFile->setVisible(!szPath.empty());
    if (!szPath.empty()) {
        const QFileInfo info(QString::fromStdString(szPath));
        pFile->setText(tr("How is \"%1\" to be read?").arg(info.fileName()));
        pFile->setToolTip(info.absoluteFilePath());
        setWindowTitle(tr("Vox and Raw File Settings - %1").arg(info.fileName()));
    }
    pFormat = new QComboBox(this);
    pFormat->setObjectName("format");
    for (int32_t i = 0; i < LVoxRawSettings::kEncodings; ++i)
        pFormat->addItem(LVoxRawSettings::ListText(i));
    pFormat->setCurrentIndex(settings.nFormat);
    pRate = new QComboBox(this);
    pRate->setObjectName("rate");
    pRate->setEditable(true);
    for (int n : {6000, 8000, 11025, 16000, 22050, 32000, 44100, 48000})
        pRate->addItem(QString::number(n));
    pRate->setCurrentText(QString::number(settings.nSampleRate));
    pChannels = new QSpinBox(this);
    pChannels->setObjectName("channels");
    pChannels->setRange(1, LVoxRawSettings::kMaxChans);
    pChannels->setValue(settings.nChans);
    pChannels->setEnabled(bChannels);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LVoxRawDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LVoxRawDlg::reject);
    auto* pForm = new QFormLayout(this);
    pForm->addRow(pFile);
    pForm->addRow(tr("File Format:"), pFormat);
    pForm->addRow(tr("Sample Rate (Hz):"), pRate);
    pForm->addRow(tr("Channels (raw files):"), pChannels);
    pForm->addRow(pButtons);
}

void LVoxRawDlg::accept()
{
    bool bOk = false;
    const int nRate = pRate->currentText().trimmed().toInt(&bOk);
    if (!bOk || nRate < LVoxRawSettings::kMinRate || nRate > LVoxRawSettings::kMaxRate) {
        LUiPrompts::Get().Inform(this, "Sonitra", kSampleRateMessage, LUiPrompts::IconWarning);
        return;
    }
    settings.nFormat = pFormat->currentIndex();
    settings.nSampleRate = nRate;
    settings.nChans = static_cast<uint8_t>(pChannels->value());
    QDialog::accept();
}

bool LVoxRawDlg::AskSave(QWidget* pParent, const std::string& szFormatName, LAudioEncoding& encoding)
{
    // The layout the file was read in is the starting choice, else the stored one.
    LVoxRawDlg dlg(pParent, LVoxRawSettings::FromEncoding(encoding), szFormatName != "VOX");
    if (dlg.exec() != QDialog::Accepted)
        return false;
    dlg.GetSettings().Store();
    encoding = dlg.GetSettings().ToEncoding();
    return true;
}

bool LVoxRawDlg::AskOpen(QWidget* pParent, const std::string& szFormatName, const std::string& szPath)
{
    LVoxRawSettings initial = LVoxRawSettings::Load();
    // A ".vox" file is nearly always Dialogic ADPCM, whatever a raw file last needed.
    if (szFormatName == "VOX")
        initial.nFormat = RawDialogicAdpcm;
    LVoxRawDlg dlg(pParent, initial, szFormatName != "VOX", szPath);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    dlg.GetSettings().Store();
    return true;
}

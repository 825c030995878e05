#include "ui/LWaveSaveDlg.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "formats/LWaveFormat.h"
#include "lists/LListFile.h"
#include "ui/LSaveFormatOptions.h"
#include "ui/LUiPrompts.h"
#include "ui/LWaveFileFormat.h"

namespace {

bool AskWave(QWidget* pParent, int32_t nSampleRate, uint8_t nChans, LAudioEncoding& encoding)
{
    LWaveSaveDlg dlg(pParent, nChans, encoding);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    encoding = dlg.GetEncoding();
    return true;
}

const LSaveFormatOptions waveOptions("WAV", AskWave);

} // namespace

LWaveSaveDlg::LWaveSaveDlg(QWidget* pParent, uint8_t nChannels, const LAudioEncoding& current)
    : QDialog(pParent), nChans(nChannels), encoding(current)
{
    setWindowTitle(tr("WAV Format"));
    setObjectName("LWaveSaveDlg");
    pPcm16 = new QRadioButton(tr("PCM 16-bit"), this);
    pPcm16->setObjectName("pcm16");
    pPcm8 = new QRadioButton(tr("PCM 8-bit"), this);
    pPcm8->setObjectName("pcm8");
    pCompressed = new QRadioButton(tr("Compressed:"), this);
    pCompressed->setObjectName("compressed");
    pFormat = new QLabel(this);
    pFormat->setObjectName("format");
    auto* pChoose = new QPushButton(tr("&Format..."), this);
    pChoose->setObjectName("choose");
    // The chooser is a modal dialog: it runs after the click has been handled.
    connect(pChoose, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LWaveSaveDlg::CmFormat); });

    // A file read compressed starts from its own format, any other from the remembered one.
    LWaveFormatRecord record;
    const bool bOwn = !current.vRecord.empty() && record.Decode(current.vRecord.data(), current.vRecord.size());
    vBuffer = bOwn ? LWaveFileFormat::BufferOf(record) : LWaveFileFormat::ReadRemembered();
    if (current.szName == "pcm8")
        pPcm8->setChecked(true);
    else if (current.szName.empty() || current.szName == "pcm16")
        pPcm16->setChecked(true);
    else
        pCompressed->setChecked(true);
    ShowCompressed();

    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LWaveSaveDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LWaveSaveDlg::reject);
    auto* pGrid = new QGridLayout(this);
    pGrid->addWidget(pPcm16, 0, 0, 1, 3);
    pGrid->addWidget(pPcm8, 1, 0, 1, 3);
    pGrid->addWidget(pCompressed, 2, 0);
    pGrid->addWidget(pFormat, 2, 1);
    pGrid->addWidget(pChoose, 2, 2);
    pGrid->addWidget(pButtons, 3, 0, 1, 3);
}

void LWaveSaveDlg::ShowCompressed()
{
    LWaveFormatRecord record;
    if (!LWaveFileFormat::RecordOf(vBuffer, record)) {
        pFormat->setText(tr("(none chosen)"));
        return;
    }
    const QString szText = LWaveFileFormat::Describe(record);
    pFormat->setText(LWaveFileFormat::TestSupportedRecord(record) ? szText : szText + tr(" (not available)"));
}

void LWaveSaveDlg::CmFormat()
{
    std::vector<uint8_t> v = vBuffer;
    if (!LWaveFileFormat::Choose(this, v, nChans, tr("Compressed WAV Format")))
        return;
    vBuffer = v;
    std::string szError;
    if (!LWaveFileFormat::WriteRemembered(vBuffer, &szError))
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString::fromStdString(LListFile::SaveFailedMessage(LWaveFileFormat::RememberedPath(), szError)),
                                 LUiPrompts::IconWarning);
    pCompressed->setChecked(true);
    ShowCompressed();
}

void LWaveSaveDlg::accept()
{
    if (pPcm8->isChecked() || pPcm16->isChecked()) {
        encoding = LAudioEncoding::Named(pPcm8->isChecked() ? "pcm8" : "pcm16");
        QDialog::accept();
        return;
    }
    LWaveFormatRecord record;
    if (!LWaveFileFormat::RecordOf(vBuffer, record) || !LWaveFileFormat::TestSupportedRecord(record)) {
        LUiPrompts::Get().Inform(this, "Format Not Available", LWaveFileFormat::kNotAvailable, LUiPrompts::IconError);
        return;
    }
    encoding = LWaveFormat::EncodingOf(record);
    QDialog::accept();
}

// The encoder settings of the formats written by other programs: FLAC's compression level and
// Ogg Vorbis's quality, asked on Save As and kept for the next save.
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

#include "core/LSettings.h"
#include "formats/LAudioFormat.h"
#include "formats/LExternalFormat.h"
#include "ui/LSaveFormatOptions.h"

namespace {

bool AskLevel(QWidget* pParent, const char* szFormat, const char* szTitle, const char* szLabel, const char* szHint,
              int nMin, int nMax, LAudioEncoding& encoding)
{
    const auto* pFormat = dynamic_cast<const LExternalFormat*>(LAudioFormat::ByName(szFormat));
    if (!pFormat)
        return true;
    QDialog dlg(pParent);
    dlg.setWindowTitle(szTitle);
    auto* pLayout = new QFormLayout(&dlg);
    auto* pSpin = new QSpinBox(&dlg);
    pSpin->setRange(nMin, nMax);
    pSpin->setValue(pFormat->GetQuality(encoding));
    pLayout->addRow(szLabel, pSpin);
    pLayout->addRow(new QLabel(szHint, &dlg));
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dlg);
    QObject::connect(pButtons, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
    QObject::connect(pButtons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
    pLayout->addRow(pButtons);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    encoding.vRecord = {static_cast<uint8_t>(static_cast<int8_t>(pSpin->value()))};
    pFormat->StoreQuality(pSpin->value());
    return true;
}

bool AskFlac(QWidget* pParent, int32_t, uint8_t, LAudioEncoding& encoding)
{
    return AskLevel(pParent, "FLAC", "FLAC Settings", "Compression level:",
                    "0 is fastest, 8 makes the smallest files; all levels are lossless.", 0, 8, encoding);
}

bool AskOgg(QWidget* pParent, int32_t, uint8_t, LAudioEncoding& encoding)
{
    return AskLevel(pParent, "OGG", "Ogg Vorbis Settings", "Quality:",
                    "0 makes the smallest files, 10 the best sound; 5 suits most music.", 0, 10, encoding);
}

const LSaveFormatOptions flacOptions("FLAC", AskFlac);
const LSaveFormatOptions oggOptions("OGG", AskOgg);

} // namespace

// How a WAV file is written: 16- or 8-bit PCM, or compressed in a format chosen from the codec
// layer's list (remembered in "WavCodec.wff"). Registered as the WAV format's save settings.
#pragma once

#include <QDialog>

#include <cstdint>
#include <vector>

#include "formats/LAudioFile.h"

class QLabel;
class QRadioButton;

class LWaveSaveDlg : public QDialog
{
    Q_OBJECT
public:
    LWaveSaveDlg(QWidget* pParent, uint8_t nChans, const LAudioEncoding& encoding);
    const LAudioEncoding& GetEncoding() const { return encoding; }

    // The Format button's work, queued from its click.
    void CmFormat();

    // OK: keeps the choice, or refuses one that cannot be written.
    void accept() override;

private:
    void ShowCompressed();

    QRadioButton* pPcm16;
    QRadioButton* pPcm8;
    QRadioButton* pCompressed;
    QLabel* pFormat;
    uint8_t nChans;
    std::vector<uint8_t> vBuffer; // the compressed format, as kept in "WavCodec.wff"
    LAudioEncoding encoding;
};

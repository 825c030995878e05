// The frequency analysis window: a modeless window with the spectrum of the current file's
// selection, or of one frame around the cursor (around the play position while it plays), on a
// logarithmic frequency axis and a dB axis, with the frequency and level under the mouse. The
// frame size is a power of two from 512 to 32768, remembered under "FreqFourTimes".
#pragma once

#include <QWidget>

#include <cstdint>
#include <string>
#include <vector>

#include "dsp/LSpectrum.h"
#include "ui/tools/LFrequencyAxis.h"

class MainDialog;
class QComboBox;
class QLabel;
class QTimer;
class LSpectrumPlot;

class LSpectrumWindow : public QWidget
{
    Q_OBJECT
public:
    static constexpr const char* kSizeKey = "FreqFourTimes";
    static constexpr int32_t kDefaultSize = 4096;

    explicit LSpectrumWindow(MainDialog& frame);

    // The remembered frame size (the default when none or a bad one is stored).
    static int32_t StoredSize();
    void SetSize(int32_t nSize);
    int32_t GetSize() const { return nSize; }

    // Analyses again when the file, its selection, its cursor or the play position moved.
    void Follow();
    // What is shown: empty (no bins) when there is nothing to analyse.
    const LSpectrum& GetSpectrum() const { return spectrum; }
    // The frames the shown spectrum covers.
    int32_t GetStart() const { return sStart; }
    int32_t GetEnd() const { return sEnd; }
    QString GetReadout() const;
    // The frequency axis as drawn now, in the plot's own coordinates, and where the plot sits.
    std::vector<LAxisTick> GetFrequencyTicks() const;
    QRect GetPlotRect() const;

private:
    void Analyse(const std::string& szKey);
    void OnPlayPosition(int32_t sPosition);

    MainDialog& frame;
    LSpectrumPlot* pPlot;
    QComboBox* pSizes;
    QLabel* pReadout;
    QLabel* pRange;
    QTimer* pTimer;
    LSpectrum spectrum;
    int32_t nSize;
    int32_t sStart = 0;
    int32_t sEnd = 0;
    int32_t sPlayPosition = -1;
    std::string szLastKey;
};

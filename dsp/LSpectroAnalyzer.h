// Power spectra of windowed frames for the spectrogram, two real frames per complex transform.
// Levels are in full-scale power: a full-scale sine centred on a bin reads 1 (0 dB) whatever the
// window, so that every window and size shows a tone at the same level.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

#include "dsp/LFFT.h"
#include "dsp/LSpectroSettings.h"

class LSpectroAnalyzer
{
public:
    explicit LSpectroAnalyzer(const LSpectroSettings& settings);

    int32_t GetSize() const { return nSize; }
    int32_t GetBins() const { return nSize / 2 + 1; }
    LSpectroWindowFn GetWindowFn() const { return eWindow; }

    // Adds the power spectra of frames a and b (nSize samples each; b may be null) to the sums
    // (GetBins() each; pSumB only with b).
    void AddPower(const double* pA, const double* pB, double* pSumA, double* pSumB);

    // Channel c of nFrames interleaved frames into a frame of nSize samples, zeros after them.
    void Deinterleave(const int32_t* pFrames, int32_t nFrames, uint8_t nChans, uint8_t c, double* pOut) const;

    static double PowerToDb(double fPower);

private:
    int32_t nSize;
    LSpectroWindowFn eWindow;
    LFFT fft;
    std::vector<double> vWindow;
    double fScale;
    std::vector<std::complex<double>> vBuf;
};

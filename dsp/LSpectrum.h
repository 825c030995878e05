// The spectrum of a stretch of a source: Hann-windowed frames, half overlapped, their power
// averaged over the stretch and over the channels, in dB against full scale (a full-scale sine
// centred on a bin reads 0 dB).
#pragma once

#include <cstdint>
#include <vector>

#include "core/LSoundSourceBase.h"

struct LSpectrumPeak
{
    double fHz;
    double fDb;
};

class LSpectrum
{
public:
    static constexpr int32_t kMinSize = 512;
    static constexpr int32_t kMaxSize = 32768;
    // A long stretch is sampled by at most this many frames, spread evenly over it.
    static constexpr int32_t kMaxFrames = 256;
    static constexpr double kFloorDb = -200.0;

    // A power of two from kMinSize to kMaxSize.
    static bool IsValidSize(int32_t nSize);

    // Analyses frames [sStart, sEnd) of the source (seeking it); a stretch shorter than one
    // frame is padded with silence. False, with nothing analysed, for a bad size or a latched
    // source. Bins 0 .. nSize / 2.
    bool Analyze(LSoundSourceBase& source, int32_t sStart, int32_t sEnd, int32_t nSize);

    int32_t GetSize() const { return nSize; }
    int32_t GetSampleRate() const { return nRate; }
    const std::vector<double>& GetDb() const { return vDb; }
    double BinHz(int32_t k) const { return static_cast<double>(k) * nRate / nSize; }
    // The level at a frequency, read from the nearest bin.
    double DbAt(double fHz) const;

    // The strongest local maxima, loudest first, each refined between bins by a parabola
    // through the three bins around it.
    std::vector<LSpectrumPeak> Peaks(int32_t nMax, double fAboveDb = -150.0) const;

private:
    int32_t nSize = 0;
    int32_t nRate = 0;
    std::vector<double> vDb;
};

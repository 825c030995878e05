#include "devices/LSoundLevels.h"

#include <algorithm>
#include <cmath>

namespace {
// Rounded half away from the reference, then clamped to the meter's range.
int8_t RoundLevel(double fDb, bool bBelow)
{
    const double f = bBelow ? fDb - 0.5 : fDb + 0.5;
    const long n = static_cast<long>(f);
    return static_cast<int8_t>(std::clamp<long>(n, -127, 127));
}
} // namespace

int8_t LPlayLevelFromMeanSquare(uint64_t m)
{
    constexpr double kRef = 8388626.0;
    if (m == 0)
        return -127;
    return RoundLevel(10.0 * std::log10(static_cast<double>(m) / kRef), static_cast<double>(m) < kRef);
}

void LComputePlayLevels(const int32_t* pSamples, int32_t nFrames, uint8_t nChans, LSoundLevels& levels)
{
    levels.nChans = nChans;
    for (uint8_t c = 0; c < nChans; ++c) {
        // Squares are summed split at bit 13 so that no block length can overflow the sums.
        uint64_t nHigh = 0;
        uint64_t nLow = 0;
        const int32_t* p = pSamples + c;
        for (int32_t f = 0; f < nFrames; ++f, p += nChans) {
            const int64_t v = *p >> 5;
            const uint64_t sq = static_cast<uint64_t>(v * v);
            nHigh += sq >> 13;
            nLow += sq & 8191;
        }
        uint64_t m = 0;
        if (nFrames > 0) {
            const uint64_t n = static_cast<uint64_t>(nFrames);
            m = ((nHigh / n) << 13) + (((nHigh % n) << 13) + nLow) / n;
        }
        levels.nLevel[c] = LPlayLevelFromMeanSquare(m);
    }
}

int8_t LRecordLevelFromPeak(int64_t m)
{
    constexpr double kRef = 131072.0;
    if (m <= 0)
        return -127;
    return RoundLevel(20.0 * std::log10(static_cast<double>(m) / kRef), static_cast<double>(m) < kRef);
}

void LComputeRecordLevels(const int32_t* pSamples, int32_t nFrames, uint8_t nChans, LSoundLevels& levels)
{
    levels.nChans = nChans;
    for (uint8_t c = 0; c < nChans; ++c) {
        int64_t nMax = 0;
        int64_t nMin = 0;
        const int32_t* p = pSamples + c;
        for (int32_t f = 0; f < nFrames; ++f, p += nChans) {
            nMax = std::max<int64_t>(nMax, *p);
            nMin = std::min<int64_t>(nMin, *p);
        }
        levels.nLevel[c] = LRecordLevelFromPeak(std::max(nMax, -nMin));
    }
}

int8_t LLoudness(const LSoundLevels& levels)
{
    if (levels.nChans == 0)
        return -127;
    if (levels.nChans == 1)
        return levels.nLevel[0];
    return std::max(levels.nLevel[0], levels.nLevel[1]);
}

// Shared helpers of the effect tests: signals, and reading a whole source in odd-sized blocks.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "core/LMemorySound.h"

namespace efftest {

inline std::vector<int32_t> Noise(size_t nSamples, int32_t nPeak, uint32_t nSeed = 7)
{
    std::mt19937 rng(nSeed);
    std::uniform_int_distribution<int32_t> dist(-nPeak, nPeak);
    std::vector<int32_t> v(nSamples);
    for (auto& s : v)
        s = dist(rng);
    return v;
}

inline std::vector<int32_t> Impulse(size_t nSamples, size_t nAt, int32_t nValue)
{
    std::vector<int32_t> v(nSamples, 0);
    v[nAt] = nValue;
    return v;
}

// The mean square of v[nFrom, nTo) in decibels against a full scale of fFullScale.
inline double RmsDb(const std::vector<int32_t>& v, size_t nFrom, size_t nTo, double fFullScale = 1.0)
{
    double f = 0;
    for (size_t i = nFrom; i < nTo; ++i)
        f += static_cast<double>(v[i]) * v[i];
    return 10 * std::log10(f / static_cast<double>(nTo - nFrom) / (fFullScale * fFullScale) + 1e-30);
}

// Reads nFrames frames in blocks of varying size, so block edges land everywhere.
inline std::vector<int32_t> ReadAll(LSoundSourceBase& src, int32_t nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * src.GetChannels());
    const int32_t aBlocks[] = {1, 7, 64, 333, 1000, 4096};
    int32_t nDone = 0;
    for (size_t k = 0; nDone < nFrames; ++k) {
        const int32_t n = std::min(aBlocks[k % 6], nFrames - nDone);
        src.Read(v.data() + static_cast<size_t>(nDone) * src.GetChannels(), n);
        nDone += n;
    }
    return v;
}

} // namespace efftest

#include "dsp/effects/LSRCGain.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "core/LFixed.h"

void LSRCGain::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    if (nGain == kGainUnity || nFrames <= 0)
        return;
    const size_t n = static_cast<size_t>(nFrames) * nChans;
    const int32_t g = nGain;
    for (size_t i = 0; i < n; ++i)
        pBuffer[i] = LMulGain824(pBuffer[i], g);
}

int32_t LSRCGain::GainOfDb(double fDb)
{
    const double fGain = std::round(std::pow(10.0, fDb / 20.0) * kGainUnity);
    return static_cast<int32_t>(std::clamp(fGain, 0.0, static_cast<double>(INT32_MAX)));
}

int32_t LSRCGain::Scaled(int32_t nGain, int32_t nPercent)
{
    if (nPercent == 100 || nPercent < 0)
        return nGain;
    // Divided first, as a cut's gain is: every stage that scales a gain loses the same digits.
    const int32_t nCeiling = nPercent > 100 ? (INT32_MAX / nPercent) * 100 : INT32_MAX;
    return nCeiling > nGain ? (nGain / 100) * nPercent : INT32_MAX;
}

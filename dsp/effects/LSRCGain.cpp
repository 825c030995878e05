#include "dsp/effects/LSRCGain.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "core/LFixed.h"

void LSRCGain::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    const size_t nSamples = static_cast<size_t>(std::max(nFrames, 0)) * GetChannels();
    for (size_t i = 0; i < nSamples; ++i)
        pBuffer[i] = LMulGain824(pBuffer[i], nGain);
}

int32_t LSRCGain::GainOfDb(double fDb)
{
    const double fGain = std::round(std::pow(10.0, fDb / 20.0) * kGainUnity);
    return static_cast<int32_t>(std::clamp(fGain, 0.0, static_cast<double>(INT32_MAX)));
}

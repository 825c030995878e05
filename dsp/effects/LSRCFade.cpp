#include "dsp/effects/LSRCFade.h"

#include <algorithm>

#include "core/LFixed.h"

LSRCFade::LSRCFade(LSoundSourceBase* pIn, Direction d) : LSRCFade(pIn, d, 0, pIn->GetLength()) {}

LSRCFade::LSRCFade(LSoundSourceBase* pIn, Direction d, int32_t sStart, int32_t nFrames)
    : LSRCEffectBase(pIn), dir(d), sFadeStart(sStart), nFadeFrames(std::max(nFrames, 1))
{
}

int32_t LSRCFade::GainAt(int64_t s) const
{
    const int64_t nDone = std::clamp<int64_t>(s - sFadeStart, 0, nFadeFrames);
    const int64_t nRise = dir == FadeIn ? nDone : nFadeFrames - nDone;
    return static_cast<int32_t>((nRise * kGainUnity) / nFadeFrames);
}

void LSRCFade::Read(int32_t* pBuffer, int32_t nFrames)
{
    const int64_t sFrom = pInput->GetPosition();
    pInput->Read(pBuffer, nFrames);
    ApplyRamp(pBuffer, nFrames, sFrom);
}

void LSRCFade::ApplyRamp(int32_t* pBuffer, int32_t nFrames, int64_t sFrom)
{
    const int64_t sRampEnd = sFadeStart + nFadeFrames;
    // Outside the ramp the gain is constant: unity passes the block untouched.
    if (sFrom + nFrames <= sFadeStart || sFrom >= sRampEnd) {
        if (GainAt(sFrom) == 0)
            LZeroFrames(pBuffer, nFrames, nChans);
        return;
    }
    // The gain steps in 16 extra fractional bits so no division is needed per frame.
    const int64_t nStep = (static_cast<int64_t>(kGainUnity) << 16) / nFadeFrames;
    const int64_t nSign = dir == FadeIn ? 1 : -1;
    for (int32_t i = 0; i < nFrames; ++i) {
        const int64_t s = sFrom + i;
        int32_t g;
        if (s < sFadeStart || s >= sRampEnd)
            g = GainAt(s);
        else
            g = static_cast<int32_t>(((dir == FadeIn ? 0 : (static_cast<int64_t>(kGainUnity) << 16)) + nSign * (s - sFadeStart) * nStep) >> 16);
        int32_t* p = pBuffer + static_cast<size_t>(i) * nChans;
        for (uint8_t c = 0; c < nChans; ++c)
            p[c] = LMulGain824(p[c], g);
    }
}

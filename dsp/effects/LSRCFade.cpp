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
    // The gain steps in 16 extra fractional bits so no division is needed per frame; inside the
    // ramp it grows by a constant step, added frame by frame.
    const int64_t nStep = (static_cast<int64_t>(kGainUnity) << 16) / nFadeFrames;
    const int64_t nDelta = dir == FadeIn ? nStep : -nStep;
    const int64_t nBase = dir == FadeIn ? 0 : (static_cast<int64_t>(kGainUnity) << 16);
    const int32_t nBefore = static_cast<int32_t>(std::clamp<int64_t>(sFadeStart - sFrom, 0, nFrames));
    const int32_t nRampTo = static_cast<int32_t>(std::clamp<int64_t>(sRampEnd - sFrom, nBefore, nFrames));
    const size_t nC = nChans;
    for (int32_t i = 0; i < nBefore; ++i)
        ScaleFrame(pBuffer + static_cast<size_t>(i) * nC, GainAt(sFrom + i));
    int64_t nAcc = nBase + (sFrom + nBefore - sFadeStart) * nDelta;
    if (nC == 2) {
        for (int32_t i = nBefore; i < nRampTo; ++i, nAcc += nDelta) {
            const int32_t g = static_cast<int32_t>(nAcc >> 16);
            pBuffer[2 * i] = LMulGain824(pBuffer[2 * i], g);
            pBuffer[2 * i + 1] = LMulGain824(pBuffer[2 * i + 1], g);
        }
    } else {
        for (int32_t i = nBefore; i < nRampTo; ++i, nAcc += nDelta)
            ScaleFrame(pBuffer + static_cast<size_t>(i) * nC, static_cast<int32_t>(nAcc >> 16));
    }
    for (int32_t i = nRampTo; i < nFrames; ++i)
        ScaleFrame(pBuffer + static_cast<size_t>(i) * nC, GainAt(sFrom + i));
}

void LSRCFade::ScaleFrame(int32_t* pFrame, int32_t g) const
{
    for (uint8_t c = 0; c < nChans; ++c)
        pFrame[c] = LMulGain824(pFrame[c], g);
}

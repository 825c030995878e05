// Passes its input through unchanged but claims another sample rate: played at that rate the
// audio runs faster (or slower) and its pitch moves with it. Put in front of a rate converter
// back to the original rate, it makes the simple speed and pitch change.
#pragma once

#include "dsp/effects/LSRCEffectBase.h"

class LSRCRelabelRate : public LSRCEffectBase
{
public:
    LSRCRelabelRate(LSoundSourceBase* pInput, int32_t nNewRate) : LSRCEffectBase(pInput) { SetSampleRate(nNewRate); }

    void Read(int32_t* pBuffer, int32_t nFrames) override { pInput->Read(pBuffer, nFrames); }
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }
};

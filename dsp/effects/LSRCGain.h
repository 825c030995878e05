// A fixed gain over its input, 8.24 fixed point, applied as every gain stage applies one
// (LMulGain824). No clipping: samples above full scale keep their headroom.
#pragma once

#include "dsp/effects/LSRCEffectBase.h"

class LSRCGain : public LSRCEffectBase
{
public:
    LSRCGain(LSoundSourceBase* pInput, int32_t nGain824) : LSRCEffectBase(pInput), nGain(nGain824) {}

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // The 8.24 gain of so many decibels, limited to what 8.24 holds.
    static int32_t GainOfDb(double fDb);

private:
    int32_t nGain;
};

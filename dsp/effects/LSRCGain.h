// A fixed gain over its input, 8.24 fixed point, applied as every gain stage and a document's cut
// gain apply one (LMulGain824), so amplify and normalize in a chain of stages give the samples the
// document gives. No clipping: samples above full scale keep their headroom.
#pragma once

#include "dsp/effects/LSRCEffectBase.h"

class LSRCGain : public LSRCEffectBase
{
public:
    LSRCGain(LSoundSourceBase* pInput, int32_t nGain824) : LSRCEffectBase(pInput), nGain(nGain824) {}

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    // Holds no state, so it seeks wherever its input can.
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // The 8.24 gain of so many decibels, limited to what 8.24 holds.
    static int32_t GainOfDb(double fDb);
    // A gain scaled by a percentage the way a cut's gain is, 100 % and below 0 % leaving it as it is.
    static int32_t Scaled(int32_t nGain, int32_t nPercent);

private:
    int32_t nGain;
};

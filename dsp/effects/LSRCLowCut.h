// The low-cut (high-pass) filter: a one-pole section per channel in fixed point. The
// accumulator holds the low-passed signal with 8 fractional bits; the output is the input less it.
#pragma once

#include <vector>

#include "dsp/effects/LSRCEffectBase.h"

class LSRCLowCut : public LSRCEffectBase
{
public:
    LSRCLowCut(LSoundSourceBase* pInput, int32_t nCutoffHz);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    void SetPosition(int32_t sPosition) override;

    // round((1 - e^(-2 pi f / rate)) x 256)
    static int32_t Coefficient(int32_t nCutoffHz, int32_t nRate);
    int32_t GetCoefficient() const { return nCoef; }

private:
    std::vector<int32_t> vAcc;
    int32_t nCoef;
};

// Echo: a feedback comb over the interleaved sample stream. Each sample adds the output of one
// delay earlier, scaled by the gain, so the echo repeats and decays at every round trip.
#pragma once

#include <vector>

#include "dsp/effects/LSRCEffectBase.h"

class LSRCEcho : public LSRCEffectBase
{
public:
    static constexpr int32_t kMinRing = 128;

    LSRCEcho(LSoundSourceBase* pInput, int32_t nGainPercent, int32_t nDelayMs);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    // The tail of earlier audio is dropped: the ring is zeroed, its position kept.
    void SetPosition(int32_t sPosition) override;

    int32_t GetRingLength() const { return static_cast<int32_t>(vRing.size()); }
    int32_t GetGainFactor() const { return nGain; }

private:
    std::vector<int32_t> vRing;
    size_t nPos = 0;
    int32_t nGain;
};

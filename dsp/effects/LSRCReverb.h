// Reverb: four taps and one feedback path over one ring of interleaved samples. The tap
// offsets are not whole frames, so in stereo a tap may hear the other channel; that blend
// is part of the sound.
#pragma once

#include <vector>

#include "dsp/effects/LSRCEffectBase.h"

class LSRCReverb : public LSRCEffectBase
{
public:
    static constexpr int32_t kMinRing = 128;
    static constexpr int kTaps = 4;

    LSRCReverb(LSoundSourceBase* pInput, int32_t nLevelPercent, int32_t nTimeMs);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    // Zeroes the ring; the read and write positions keep their distances.
    void SetPosition(int32_t sPosition) override;

    int32_t GetRingLength() const { return static_cast<int32_t>(vRing.size()); }
    int32_t GetTapStart(int k) const { return aTapStart[k]; }
    int32_t GetTapGain(int k) const { return aTapGain[k]; }
    int32_t GetFeedbackGain() const { return nFeedbackGain; }

private:
    std::vector<int32_t> vRing;
    int32_t aTapStart[kTaps];
    int32_t aTapGain[kTaps];
    size_t aTapPos[kTaps];
    size_t nWrite = 0;
    int32_t nFeedbackGain;
};

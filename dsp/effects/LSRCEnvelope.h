// Envelope: shapes the level of its input along a curve drawn over the whole input. The curve's
// x runs from 0 (first frame) to 1000 (the end), its y is the level in percent (100 = unchanged).
#pragma once

#include "dsp/LPointList.h"
#include "dsp/effects/LSRCEffectBase.h"

class LSRCEnvelope : public LSRCEffectBase
{
public:
    static constexpr int32_t kXSpan = 1000;
    static constexpr int32_t kMaxRun = 4096; // the gain is exact at least this often

    LSRCEnvelope(LSoundSourceBase* pInput, const LPointList& points);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // The 8.24 gain of the curve at frame s.
    int32_t GainAt(int64_t s) const;

private:
    // The first frame after s at which the curve bends (or s + kMaxRun).
    int64_t RunEnd(int64_t s) const;

    LPointList points;
    int64_t nLength;
};

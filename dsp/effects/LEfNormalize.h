// Normalize: measures the peak of the range and amplifies the range's cuts so that the peak
// reaches the given percentage of full scale, never by more than 400 %. No audio is rewritten.
#pragma once

#include "dsp/effects/LEffectData.h"
#include "work/LProgressDialog.h"

class LEfNormalize
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr int32_t kMaxGainPercent = 400;

    // nParam1 is the target level in percent. 0 done (or nothing to do), 1 cancelled.
    static int32_t Run(LProgressDialog& dlg, const LEffectData& data);
    // level x 524272 / peak, at most 400; 100 (no change) for a silent peak.
    static int32_t GainPercent(int32_t nLevel, int64_t nPeak);
    // The larger of the greatest sample and the negated least one, both starting from 0.
    static int64_t BlockPeak(const int32_t* pSamples, size_t nSamples);
};

// DC offset correction: one pass sums every channel, a second writes the audio less each
// channel's mean. Works from any source into any sink of the same format.
#pragma once

#include <vector>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"
#include "dsp/effects/LEffectData.h"
#include "work/LProgressDialog.h"

class LDCOffsetCorrection
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    // 0 done, 1 cancelled, 2 when the two sides differ in rate or channels or either is latched.
    static int32_t Run(LProgressDialog& dlg, LSoundSourceBase* pSource, LSoundSinkBase* pSink);
    // The first pass: each channel's mean over the source, read from where it stands to its end.
    // 0 done, 1 cancelled.
    static int32_t Measure(LProgressDialog& dlg, LSoundSourceBase& src, std::vector<int32_t>& vOffset);
    // The process over a document's range: the corrected copy replaces the range.
    static int32_t RunOnDocument(LProgressDialog& dlg, const LEffectData& data);
};

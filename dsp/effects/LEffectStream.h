// A list of effects run over a stream instead of a document: the input's source wrapped by each
// effect's stage in turn, ready to be pumped into the output in one pass, with no segment files.
// The chain gives the samples the document path gives: the same stages, the peak limiting a
// render into a segment adds after each of them, and amplification as a cut's gain applies it.
#pragma once

#include <functional>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"
#include "work/LProgressDialog.h"

// One effect with the values it runs with, over the whole sound.
struct LEffectStep
{
    const LEffectInfo* pInfo = nullptr;
    LEffectArgs args;
};

class LEffectStream
{
public:
    // Hands out the input afresh, read from its start: a measuring step reads it once more.
    using Opener = std::function<LSoundSourcePtr()>;

    // True when every step is a stage over a stream, or measures first and then is one. Steps
    // that need the document (mixing, repeating, trimming, inserting) make it false, and so does a
    // reverse that could not seek its way backwards through what lies below it: bInputSeeksExactly
    // says whether the input reads the same frames after a seek as it does straight through (a
    // decoder that keeps state from frame to frame may not).
    static bool CanStream(const std::vector<LEffectStep>& vSteps, const LSoundSourceBase& input,
                          bool bInputSeeksExactly);

    // The chain over the input, to be read from its start. The measuring steps (normalize, DC
    // offset correction, automatic gain control) read the chain below them first, showing their
    // progress on the dialog. 0 done with pOut set, 1 cancelled, 2 error.
    static int32_t Open(LProgressDialog& dlg, const Opener& fnOpen, const std::vector<LEffectStep>& vSteps,
                        LSoundSourcePtr& pOut);
};

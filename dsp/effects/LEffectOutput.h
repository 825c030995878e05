// What an effect makes of some audio, as a source, leaving that audio as it was: the stage of a
// streaming effect over a source of the audio, or, for the effects that edit cuts or look at the
// whole range first, the effect run quietly on a scratch copy. Either way the frames are those
// LEffectRunner::Apply would put in the document's place.
#pragma once

#include "core/LCutListAudio.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"

class LEffectOutput
{
public:
    // The effect over all of the audio; a latched source when the effect fails.
    static LSoundSourcePtr Open(const LEffectInfo& info, const LEffectArgs& args, const LCutListAudio& audio);

private:
    static LSoundSourcePtr Render(const LEffectInfo& info, const LEffectArgs& args, const LCutListAudio& audio);
};

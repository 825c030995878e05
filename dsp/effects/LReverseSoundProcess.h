// Reverse: the selected range played backwards replaces the range. The range is read in chunks
// from its end (never held whole in memory) and copied sample for sample, so reversing twice
// gives back exactly the audio of the document, headroom above full scale included.
#pragma once

#include "dsp/effects/LEffectData.h"
#include "work/LProgressDialog.h"

class LReverseSoundProcess
{
public:
    static constexpr int32_t kBlockFrames = 65536;

    // 0 done (or an inverted range, refused), 1 cancelled, 2 error.
    static int32_t Run(LProgressDialog& dlg, const LEffectData& data);
};

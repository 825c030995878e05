// Paste mix and mix file: a clip is mixed into the document from the selection start. When the
// clip is longer than a selection, the stored choice decides: insert silence after the selection
// so the whole clip fits, extend the mix past the selection, or cut the clip at the selection's
// end with a fade-out. With no selection (start == end) the whole clip is mixed in.
#pragma once

#include "core/LSoundSourceBase.h"
#include "dsp/effects/LEffectData.h"
#include "work/LProgressDialog.h"

class LEfPasteMix
{
public:
    enum LongerSelection
    {
        InsertSilence = 0,
        ExtendSelection = 1,
        FadeMixOut = 2,
    };

    struct Options
    {
        int32_t nVolumePercent = 100;
        int32_t nLonger = InsertSilence;
        int32_t nFadeOutMs = 250;
    };

    // The clip is converted to the document's rate and channels. 0 done, 1 cancelled, 2 error.
    static int32_t Run(LProgressDialog& dlg, const LEffectData& data, LSoundSourceBase* pClip, const Options& opt);
};

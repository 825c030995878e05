// Automatic gain control over a document's range: a first pass measures the audio (keeping a
// temporary copy in the working folder), a second renders it with the planned gains.
#pragma once

#include "dsp/effects/LEffectData.h"
#include "work/LProgressDialog.h"

class LEfAutoGainControl
{
public:
    // 0 done, 1 cancelled, 2 error; the range is replaced only when both passes finished.
    static int32_t Run(LProgressDialog& dlg, const std::string& szCaption, const LEffectData& data);
};

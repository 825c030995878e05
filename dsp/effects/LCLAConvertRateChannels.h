// Converts a whole document to another sample rate and/or channel count through the pump's
// converters (stereo to mono mixes both channels). The document keeps its old format and
// audio unless the conversion finished.
#pragma once

#include "core/LCutListAudio.h"
#include "work/LProgressDialog.h"

class LCLAConvertRateChannels
{
public:
    // 0 done (also when nothing needs converting), 1 cancelled, 2 error.
    static int32_t Run(LProgressDialog& dlg, LCutListAudio& doc, int32_t nNewRate, uint8_t nNewChans);
};

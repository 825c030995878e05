#include "dsp/effects/LCLAConvertRateChannels.h"

#include "core/LTrace.h"
#include "dsp/effects/LEfSoundProcess.h"

int32_t LCLAConvertRateChannels::Run(LProgressDialog& dlg, LCutListAudio& doc, int32_t nNewRate, uint8_t nNewChans)
{
    if (nNewRate < 1 || nNewChans < 1 || nNewChans > 2) {
        LTRACE("LCLAConvertRateChannels::Run bad target %d/%d", nNewRate, nNewChans);
        return LProgressDialog::ResultError;
    }
    if (nNewRate == doc.GetSampleRate() && nNewChans == doc.GetChannels())
        return LProgressDialog::ResultDone;
    // A segment writer in the new format makes the pump put the converters in between.
    LSoundSourcePtr pSrc = doc.OpenSource();
    int32_t nResult = LProgressDialog::ResultError;
    LCutListAudioPtr pNew = LEfSoundProcess::RenderAs(dlg, "Converting rate or channels...", pSrc.Get(), nNewRate,
                                                      nNewChans, &nResult);
    if (pNew)
        doc = *pNew;
    return nResult;
}

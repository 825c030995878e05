#include "dsp/effects/LEfInsert.h"

#include "dsp/effects/LEfSoundProcess.h"

int32_t LEfInsert::Run(LProgressDialog& dlg, const std::string& szCaption, LCutListAudio& doc, int32_t sPosition,
                       LSoundSourceBase* pSource)
{
    LSoundSourcePtr pHold(pSource);
    if (!pSource || pSource->IsError())
        return LProgressDialog::ResultError;
    int32_t nResult = LProgressDialog::ResultError;
    LCutListAudioPtr pNew =
        LEfSoundProcess::RenderAs(dlg, szCaption, pSource, doc.GetSampleRate(), doc.GetChannels(), &nResult);
    if (pNew)
        doc.Insert(sPosition, *pNew);
    return nResult;
}

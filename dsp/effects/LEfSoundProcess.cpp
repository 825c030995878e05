#include "dsp/effects/LEfSoundProcess.h"

#include "core/LPRSourceToSink.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LTrace.h"

LEfSoundProcess::LEfSoundProcess(const std::string& szCaption, const LEffectData& d, LEffectFactory* pFact,
                                 const std::string& szStageText)
    : LProgressDialog(szCaption), szStage(szStageText.empty() ? szCaption : szStageText), data(d), pFactory(pFact)
{
}

int32_t LEfSoundProcess::Process()
{
    return Run(*this, szStage, data, *pFactory);
}

LCutListAudioPtr LEfSoundProcess::Render(LProgressDialog& dlg, const std::string& szStage, LSoundSourceBase* pSource,
                                         int32_t* pnResult)
{
    return RenderAs(dlg, szStage, pSource, pSource->GetSampleRate(), pSource->GetChannels(), pnResult);
}

LCutListAudioPtr LEfSoundProcess::RenderAs(LProgressDialog& dlg, const std::string& szStage, LSoundSourceBase* pSource,
                                           int32_t nRate, uint8_t nChans, int32_t* pnResult)
{
    LSoundSourcePtr pHold(pSource);
    LCutListAudioPtr pScratch(new LCutListAudio(nRate, nChans));
    LSoundSinkPtr pSink(new LSNKSegmentWriter(pScratch.Get(), nRate, nChans));
    int32_t nResult = LPRSourceToSink::Pump(dlg, szStage, pSource, pSink.Get());
    // The writer finishes here and hands its segment to the scratch document.
    if (nResult == LProgressDialog::ResultDone && !pSink->Complete()) {
        LTRACE("LEfSoundProcess::Render segment not written whole");
        dlg.ShowError("The processed audio could not be written to the working folder.");
        nResult = LProgressDialog::ResultError;
    }
    pSink.Reset();
    *pnResult = nResult;
    if (nResult != LProgressDialog::ResultDone)
        return LCutListAudioPtr();
    return pScratch;
}

int32_t LEfSoundProcess::Run(LProgressDialog& dlg, const std::string& szStage, const LEffectData& data,
                             LEffectFactory& factory, const char* szBody)
{
    if (data.sEnd < data.sStart) {
        LTRACE("Process(%s) Data.sEnd < Data.sStart", szBody);
        return ResultDone;
    }
    if (!data.pCutList)
        return ResultError;
    LCutListAudio& doc = *data.pCutList;
    LSoundSourcePtr pInput = doc.OpenSource(data.sStart, data.sEnd);
    LSoundSourcePtr pEffect = factory.Create(pInput.Get());
    int32_t nResult = ResultError;
    LCutListAudioPtr pNew = Render(dlg, szStage, pEffect.Get(), &nResult);
    if (pNew)
        doc.Replace(data.sStart, data.sEnd, *pNew);
    return nResult;
}

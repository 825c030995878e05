#include "core/LCutListAudioLoadSource.h"

#include "core/LPRSourceToSink.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LTrace.h"

LCutListAudioLoadSource::LCutListAudioLoadSource(const std::string& szTitle, LCutListAudio* pDocument,
                                                 LSoundSourceBase* pSrc)
    : LProgressDialog(szTitle), szLoadTitle(szTitle), pDoc(pDocument), pSource(pSrc)
{
}

int32_t LCutListAudioLoadSource::Process()
{
    if (!pDoc || !pSource) {
        LTRACE("LCutListAudioLoadSource::Process no document or source");
        return ResultError;
    }
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), pSource->GetSampleRate(), pSource->GetChannels()));
    int32_t nResult = LPRSourceToSink::Pump(*this, szLoadTitle, pSource.Get(), pWriter.Get());
    const bool bWriteFailed = pWriter->IsError();
    pWriter.Reset(); // finishing hands the audio to the document
    if (nResult == ResultDone && bWriteFailed) {
        LTRACE("LCutListAudioLoadSource::Process segment write failed");
        nResult = ResultError;
    }
    return nResult;
}

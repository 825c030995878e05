#include "work/LCutListAudioLoadSource.h"

#include "core/LPRSourceToSink.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSRCLimitLength.h"
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
    // A header may claim more than the file holds: only what is there is stored, and the rest,
    // which reads as silence anyway, becomes one silent cut that costs nothing.
    const int32_t sClaimed = pSource->GetLength();
    const int32_t sHeld = pSource->GetLengthInFile();
    LSoundSourcePtr pRead = pSource;
    if (sHeld >= 0 && sHeld < sClaimed) {
        LTRACE("LCutListAudioLoadSource::Process the file holds %d of %d frames", sHeld, sClaimed);
        pRead = new LSRCLimitLength(pSource.Get(), sHeld);
    }
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), pSource->GetSampleRate(), pSource->GetChannels()));
    int32_t nResult = LPRSourceToSink::Pump(*this, szLoadTitle, pRead.Get(), pWriter.Get());
    const bool bWriteFailed = !pWriter->Complete(); // finishing hands the audio to the document
    pWriter.Reset();
    if (nResult == ResultDone && bWriteFailed) {
        LTRACE("LCutListAudioLoadSource::Process segment write failed");
        nResult = ResultError;
    }
    if (nResult == ResultDone && pRead.Get() != pSource.Get())
        pDoc->InsertSilence(pDoc->GetLength(), sClaimed - pRead->GetLength());
    return nResult;
}

#include "dsp/effects/LReverseSoundProcess.h"

#include <algorithm>
#include <vector>

#include "core/LSNKSegmentWriter.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LSRCReverse.h"

namespace {
// Copies the whole source into the sink; false when cancelled.
bool CopyAll(LProgressDialog& dlg, LSoundSourceBase& src, LSoundSinkBase& sink)
{
    const int32_t nTotal = src.GetLength();
    std::vector<int32_t> vBlock(static_cast<size_t>(LReverseSoundProcess::kBlockFrames) * src.GetChannels());
    for (int32_t nDone = 0; nDone < nTotal;) {
        if (dlg.IsCancelled())
            return false;
        const int32_t n = std::min(LReverseSoundProcess::kBlockFrames, nTotal - nDone);
        src.Read(vBlock.data(), n);
        sink.Write(vBlock.data(), n);
        nDone += n;
        dlg.SetProgress(static_cast<double>(nDone) / nTotal);
    }
    return !dlg.IsCancelled();
}
} // namespace

int32_t LReverseSoundProcess::Run(LProgressDialog& dlg, const LEffectData& data)
{
    if (data.sEnd < data.sStart) {
        LTRACE("Process(LReverseSoundProcess) Data.sEnd < Data.sStart");
        return LProgressDialog::ResultDone;
    }
    if (!data.pCutList)
        return LProgressDialog::ResultError;
    dlg.SetText("Reversing Sound", 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    LCutListAudio& doc = *data.pCutList;
    LSoundSourcePtr pRange = doc.OpenSource(data.sStart, data.sEnd);
    LSoundSourcePtr pReverse(new LSRCReverse(pRange.Get()));
    LCutListAudioPtr pScratch(new LCutListAudio(doc.GetSampleRate(), doc.GetChannels()));
    LSoundSinkPtr pSink(new LSNKSegmentWriter(pScratch.Get(), doc.GetSampleRate(), doc.GetChannels()));
    if (pReverse->IsError() || pSink->IsError())
        return LProgressDialog::ResultError;
    const bool bDone = CopyAll(dlg, *pReverse, *pSink);
    const bool bWritten = pSink->Complete(); // the writer hands its segment to the scratch document
    pSink.Reset();
    if (!bDone)
        return LProgressDialog::ResultCancelled;
    if (!bWritten) {
        dlg.ShowError("The processed audio could not be written to the working folder.");
        return LProgressDialog::ResultError;
    }
    doc.Replace(data.sStart, data.sEnd, *pScratch);
    return LProgressDialog::ResultDone;
}

namespace {
int32_t Reverse(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
                const LEffectArgs&)
{
    return LReverseSoundProcess::Run(dlg, LEffectRunner::DataOf(doc, sStart, sEnd));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfReverse) = {
    .nCommandId = 4018, .szCliName = "reverse", .szMenuText = "Reverse", .szMenu = "Effects", .nMenuGroup = 0,
    .szHint = "Plays the selected region backwards.", .szUndoLabel = "Reverse", .szCaption = "Reverse",
    .pfnApply = Reverse, .stream = LEffectInfo::StreamReverse,
};

#include "dsp/effects/LDCOffsetCorrection.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/LFixed.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"

namespace {
// Reads the source from 0 in blocks, handing each block's valid frames to fn; false on cancel.
template <class F> bool ForEachBlock(LProgressDialog& dlg, LSoundSourceBase& src, std::vector<int32_t>& vBlock, double fTotal, F&& fn)
{
    const int32_t n = LDCOffsetCorrection::kBlockFrames;
    while (true) {
        src.Read(vBlock.data(), n);
        const int64_t sPos = src.GetPosition();
        const int64_t sLen = src.GetLength();
        const int32_t nValid = sPos >= sLen ? static_cast<int32_t>(std::clamp<int64_t>(n - (sPos - sLen), 0, n)) : n;
        if (nValid > 0)
            fn(nValid);
        dlg.SetProgress(static_cast<double>(std::min(sPos, sLen)) / fTotal);
        if (dlg.IsCancelled())
            return false;
        if (sPos >= sLen)
            return true;
    }
}
} // namespace

int32_t LDCOffsetCorrection::Run(LProgressDialog& dlg, LSoundSourceBase* pSource, LSoundSinkBase* pSink)
{
    dlg.SetText("DC Offset Correction", 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    LSoundSourcePtr pSrc(pSource);
    LSoundSinkPtr pSnk(pSink);
    if (!pSrc || !pSnk || pSrc->IsError() || pSnk->IsError() || pSrc->GetChannels() != pSnk->GetChannels() ||
        pSrc->GetSampleRate() != pSnk->GetSampleRate()) {
        LTRACE("LDCOffsetCorrection::Run source and sink differ in format");
        return LProgressDialog::ResultError;
    }
    pSrc->SetPosition(0);
    std::vector<int32_t> vOffset;
    if (Measure(dlg, *pSrc, vOffset) != LProgressDialog::ResultDone)
        return LProgressDialog::ResultCancelled;
    const size_t nC = pSrc->GetChannels();
    const double fTotal = std::max(pSrc->GetLength(), 1);
    std::vector<int32_t> vBlock(static_cast<size_t>(kBlockFrames) * nC);
    pSrc->SetPosition(0);
    const bool bDone = ForEachBlock(dlg, *pSrc, vBlock, fTotal, [&](int32_t nValid) {
        for (size_t c = 0; c < nC; ++c) {
            const int32_t nNeg = LWrapMul(vOffset[c], -1);
            for (size_t i = c; i < static_cast<size_t>(nValid) * nC; i += nC)
                vBlock[i] = LWrapAdd(vBlock[i], nNeg);
        }
        pSnk->Write(vBlock.data(), nValid);
    });
    return bDone ? LProgressDialog::ResultDone : LProgressDialog::ResultCancelled;
}

int32_t LDCOffsetCorrection::Measure(LProgressDialog& dlg, LSoundSourceBase& src, std::vector<int32_t>& vOffset)
{
    const size_t nC = src.GetChannels();
    const double fTotal = std::max(src.GetLength(), 1);
    std::vector<int32_t> vBlock(static_cast<size_t>(kBlockFrames) * nC);
    std::vector<double> vSum(nC, 0.0);
    const bool bDone = ForEachBlock(dlg, src, vBlock, fTotal, [&](int32_t nValid) {
        for (size_t c = 0; c < nC; ++c) {
            double fSum = 0;
            for (size_t i = c; i < static_cast<size_t>(nValid) * nC; i += nC)
                fSum += vBlock[i];
            vSum[c] += fSum;
        }
    });
    if (!bDone)
        return LProgressDialog::ResultCancelled;
    vOffset.assign(nC, 0);
    for (size_t c = 0; c < nC; ++c)
        vOffset[c] = static_cast<int32_t>(std::lround(vSum[c] / fTotal));
    return LProgressDialog::ResultDone;
}

int32_t LDCOffsetCorrection::RunOnDocument(LProgressDialog& dlg, const LEffectData& data)
{
    if (data.sEnd < data.sStart) {
        LTRACE("Process(LDCOffsetCorrection) Data.sEnd < Data.sStart");
        return LProgressDialog::ResultDone;
    }
    if (!data.pCutList)
        return LProgressDialog::ResultError;
    LCutListAudio& doc = *data.pCutList;
    LSoundSourcePtr pSrc = doc.OpenSource(data.sStart, data.sEnd);
    LCutListAudioPtr pScratch(new LCutListAudio(doc.GetSampleRate(), doc.GetChannels()));
    LSoundSinkPtr pSink(new LSNKSegmentWriter(pScratch.Get(), doc.GetSampleRate(), doc.GetChannels()));
    const int32_t nResult = Run(dlg, pSrc.Get(), pSink.Get());
    const bool bWritten = pSink->Complete();
    pSink.Reset();
    if (nResult == LProgressDialog::ResultDone && bWritten)
        doc.Replace(data.sStart, data.sEnd, *pScratch);
    return bWritten ? nResult : LProgressDialog::ResultError;
}

namespace {
int32_t CorrectDocument(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
                        const LEffectArgs&)
{
    return LDCOffsetCorrection::RunOnDocument(dlg, LEffectRunner::DataOf(doc, sStart, sEnd));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfDCOffsetCorrection) = {
    .nCommandId = 4017, .szCliName = "dcoffset-correction", .szMenuText = "DCOffset Correction", .szMenu = "Effects",
    .nMenuGroup = 4, .szHint = "Removes DC component to avoid clicks when editing.",
    .szUndoLabel = "DC Offset Correction", .szCaption = "DC Offset Correction", .pfnApply = CorrectDocument,
    .stream = LEffectInfo::StreamOffset,
};

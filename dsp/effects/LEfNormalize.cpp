#include "dsp/effects/LEfNormalize.h"

#include <algorithm>
#include <vector>

#include "core/LFixed.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"

int64_t LEfNormalize::BlockPeak(const int32_t* p, size_t n)
{
    int32_t nMax = 0;
    int32_t nMin = 0;
    for (size_t i = 0; i < n; ++i) {
        nMax = std::max(nMax, p[i]);
        nMin = std::min(nMin, p[i]);
    }
    return std::max<int64_t>(nMax, -static_cast<int64_t>(nMin));
}

int32_t LEfNormalize::GainPercent(int32_t nLevel, int64_t nPeak)
{
    if (nPeak <= 0)
        return 100;
    return static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(nLevel) * kFullScale16 / nPeak, kMaxGainPercent));
}

int32_t LEfNormalize::Run(LProgressDialog& dlg, const LEffectData& data)
{
    // Stricter than the streaming effects: an empty range is refused too.
    if (data.sEnd <= data.sStart) {
        LTRACE("Process EfNormalize Data.sEnd <= Data.sStart");
        return LProgressDialog::ResultDone;
    }
    if (!data.pCutList)
        return LProgressDialog::ResultError;
    dlg.SetText("Normalizing", 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    const int32_t sStart = std::max(data.sStart, 0);
    LSoundSourcePtr pSrc = data.pCutList->OpenSource(sStart, data.sEnd);
    const int64_t nTotal = std::max<int64_t>(static_cast<int64_t>(data.sEnd) - sStart, 1);
    std::vector<int32_t> vBlock(static_cast<size_t>(kBlockFrames) * pSrc->GetChannels());
    int64_t nPeak = 0;
    for (int64_t nDone = 0; nDone < nTotal;) {
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(kBlockFrames, nTotal - nDone));
        pSrc->Read(vBlock.data(), n);
        nPeak = std::max(nPeak, BlockPeak(vBlock.data(), static_cast<size_t>(n) * pSrc->GetChannels()));
        nDone += n;
        dlg.SetProgress(static_cast<double>(nDone) / static_cast<double>(nTotal));
        if (dlg.IsCancelled())
            return LProgressDialog::ResultCancelled;
    }
    if (nPeak == 0)
        return LProgressDialog::ResultDone;
    data.pCutList->EfAmplify(sStart, data.sEnd, GainPercent(data.nParam1, nPeak));
    return LProgressDialog::ResultDone;
}

namespace {
constexpr LEffectParam kParams[] = {
    {"NormalizePeakLevel", 100, 0, 100, "Normailze Peak Level must be less than 100%. Please try again.",
     "Normalize Peak Level (%):", "%"},
};

int32_t Normalize(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
                  const LEffectArgs& args)
{
    return LEfNormalize::Run(dlg, LEffectRunner::DataOf(doc, sStart, sEnd, args.Value("NormalizePeakLevel")));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfNormalize) = {
    .nCommandId = 4002, .szCliName = "normalize", .szMenuText = "Normalize...", .szMenu = "Effects",
    .nMenuGroup = 0, .szHint = "Brings the loudest peak to a chosen level.", .szUndoLabel = "Normalize",
    .szCaption = "Normalizing", .vParams = kParams, .szDescribe = "Normalize Peak Level (%%) = %d",
    .bAsksSettings = true, .pfnApply = Normalize, .stream = LEffectInfo::StreamNormalize,
};

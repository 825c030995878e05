// Loudness normalize: measures the range's integrated loudness and true peak (EBU R128), then
// applies the one gain that brings the loudness to the target, less when that gain would lift
// the true peak above its ceiling. Silence (nothing left after gating) is left as it is.
#include <algorithm>

#include "core/LTrace.h"
#include "dsp/LLoudnessMeter.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LSRCGain.h"

namespace {
constexpr LEffectPreset kTargets[] = {{"Broadcast", -23}, {"Podcast", -16}, {"Streaming", -14}};
constexpr LEffectParam kParams[] = {
    {"LoudnessTarget", -16, -70, 0, "Target loudness must be between -70 and 0 LUFS. Please try again.",
     "Target Loudness (LUFS):", "LUFS", LEffectParam::Number, {}, kTargets},
    {"LoudnessTruePeak", -1, -20, 0, "True peak ceiling must be between -20 and 0 dBTP. Please try again.",
     "True Peak Ceiling (dBTP):", "dBTP"},
};

// The gain in dB for a measured range, never above what puts its true peak at the ceiling.
double GainDb(const LLoudness& loudness, const LEffectArgs& args)
{
    const double fToTarget = args.Value("LoudnessTarget") - loudness.fIntegrated;
    const double fToCeiling = args.Value("LoudnessTruePeak") - loudness.fTruePeakDb;
    return std::min(fToTarget, fToCeiling);
}

int32_t LoudnessNormalize(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart,
                          int32_t sEnd, const LEffectArgs& args)
{
    if (sEnd <= sStart)
        return LProgressDialog::ResultDone;
    dlg.SetText(info.szCaption, 0);
    dlg.SetText("Please wait...", 1);
    LSoundSourcePtr pSource = doc.OpenSource(sStart, sEnd);
    LLoudness loudness;
    const int32_t nResult = LLoudnessMeter::Measure(dlg, *pSource, static_cast<int64_t>(sEnd) - sStart, loudness);
    if (nResult != LProgressDialog::ResultDone || !loudness.bMeasured)
        return nResult;
    const double fGainDb = GainDb(loudness, args);
    LTRACE("Process(EfLoudnessNormalize) I %.2f LUFS, true peak %.2f dBTP, gain %.2f dB", loudness.fIntegrated,
           loudness.fTruePeakDb, fGainDb);
    const int32_t nGain = LSRCGain::GainOfDb(fGainDb);
    LEffectFactoryPtr pFactory = LEffectFactoryFn::Make(
        [nGain](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCGain(p, nGain)); }, nGain);
    return LEffectRunner::Stream(dlg, info, doc, sStart, sEnd, *pFactory);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfLoudnessNormalize) = {
    .nCommandId = 4019, .szCliName = "loudness-normalize", .szMenuText = "Loudness Normalize...",
    .szMenu = "Effects", .nMenuGroup = 0, .szHint = "Brings the loudness of the selected region to a chosen level.",
    .szUndoLabel = "Loudness Normalize", .szCaption = "Loudness Normalize", .vParams = kParams,
    .szDescribe = "Target Loudness (LUFS) = %d, True Peak Ceiling (dBTP) = %d", .bAsksSettings = true,
    .szBody = "EfLoudnessNormalize", .pfnApply = LoudnessNormalize,
};

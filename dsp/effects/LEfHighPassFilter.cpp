// High-pass filter: the one-pole low-cut stage (LSRCLowCut) over the selected range.
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LSRCLowCut.h"

namespace {
constexpr LEffectParam kParams[] = {
    {"LowCutFreq", 250, 1, 20000, "Frequency must be between 1 and 20000 Hz. Please try again.", "Frequency (Hz):",
     "Hz"},
};

LEffectFactoryPtr MakeLowCut(const LEffectArgs& args)
{
    const int32_t nHz = args.Value("LowCutFreq");
    return LEffectFactoryFn::Make([=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCLowCut(p, nHz)); }, nHz);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfHighPassFilter) = {
    .nCommandId = 4011, .szCliName = "high-pass-filter", .szMenuText = "High-Pass Filter...", .szMenu = "Effects",
    .nMenuGroup = 0, .szHint = "Removes low frequencies such as hum and rumble.", .szUndoLabel = "High-Pass Filter",
    .szCaption = "Low Cut Filter", .vParams = kParams, .szDescribe = "Frequency (Hz) = %d", .bAsksSettings = true,
    .szBody = "EfLowCutFilter", .pfnFactory = MakeLowCut,
};

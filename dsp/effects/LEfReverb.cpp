// Reverb: four taps and a feedback path over the selected range (LSRCReverb).
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LSRCReverb.h"

namespace {
constexpr LEffectParam kParams[] = {
    {"ReverbTime", 50, 50, 1000, "Reverb time must be between 50 and 1000. Please try again.", "Reverb Time (ms):", "ms"},
    {"ReverbLevel", 50, 0, 100, "Reverb level must be less than 100. Please try again.", "Reverb Level (%):", "%"},
};

LEffectFactoryPtr MakeReverb(const LEffectArgs& args)
{
    const int32_t nLevel = args.Value("ReverbLevel");
    const int32_t nTime = args.Value("ReverbTime");
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCReverb(p, nLevel, nTime)); }, nLevel, nTime);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfReverb) = {
    .nCommandId = 4005, .szCliName = "reverb", .szMenuText = "Reverb...", .szMenu = "Effects", .nMenuGroup = 0,
    .szHint = "Adds reverberation.", .szUndoLabel = "Reverb", .szCaption = "Reverb", .vParams = kParams,
    .szDescribe = "Reverb Time (ms) = %d, Reverb Level (%%) = %d", .bAsksSettings = true, .szBody = "EfReverb",
    .pfnFactory = MakeReverb,
};

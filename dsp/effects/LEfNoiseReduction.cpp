// Noise reduction: the noise gates (LSRCNoiseGates) over the selected range. A latched input is
// handed back unwrapped.
#include "dsp/LSRCNoiseGates.h"
#include "dsp/effects/LEffectArgs.h"

namespace {
constexpr LEffectParam kParams[] = {
    {"NoiseGateLevel", -30, -127, 0, "Noise Gate Level must be between -127 and 0 dB. Please try again.",
     "Noise Gate Level (dB):", "dB"},
};

LEffectFactoryPtr MakeNoiseGates(const LEffectArgs& args)
{
    const int32_t nLevel = args.Value("NoiseGateLevel");
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) {
            return p->IsError() ? LSoundSourcePtr(p) : LSoundSourcePtr(new LSRCNoiseGates(p, nLevel));
        },
        nLevel);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfNoiseReduction) = {
    .nCommandId = 4010, .szCliName = "noise-reduction", .szMenuText = "Noise Reduction", .szMenu = "Effects",
    .nMenuGroup = 2, .szHint = "Reduces background noise.", .szUndoLabel = "Noise Reduction",
    .szCaption = "Noise Reduction", .vParams = kParams, .szDescribe = "Noise Gate Level (dB) = %d",
    .szBody = "EfNoiseReduction", .pfnFactory = MakeNoiseGates,
};

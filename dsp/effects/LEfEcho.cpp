// Echo: a feedback comb over the selected range (LSRCEcho).
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LSRCEcho.h"

namespace {
constexpr LEffectParam kParams[] = {
    {"EchoTime", 800, 10, 2999, "Echo time must be between 10 and 3000ms. Please try again.", "Echo Time (ms):", "ms"},
    {"EchoGain", 50, 0, 99, "Echo Gain must be less than 100%. Please try again.", "Echo Gain (%):", "%"},
};

LEffectFactoryPtr MakeEcho(const LEffectArgs& args)
{
    const int32_t nGain = args.Value("EchoGain");
    const int32_t nTime = args.Value("EchoTime");
    return LEffectFactoryFn::Make([=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCEcho(p, nGain, nTime)); },
                                  nGain, nTime);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfEcho) = {
    .nCommandId = 4004, .szCliName = "echo", .szMenuText = "Echo...", .szMenu = "Effects", .nMenuGroup = 0,
    .szHint = "Adds an echo.", .szUndoLabel = "Echo", .szCaption = "Echo", .vParams = kParams,
    .szDescribe = "Echo Time (ms) = %d, Echo Gain (%%) = %d", .bAsksSettings = true, .szBody = "EfEcho",
    .pfnFactory = MakeEcho,
};

// The three speed and pitch changes. Simple: the audio plays that many percent faster (or
// slower), its pitch moving with it and its length changing accordingly. Constant pitch: a
// time-stretch. Constant speed: stretched to the longer or shorter length, then played back
// faster or slower through the rate converter so that the length comes back.
#include <algorithm>
#include <climits>

#include "core/LSRCConvertRate.h"
#include "dsp/LSRCTimeStretch.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LSRCRelabelRate.h"

namespace {
const char kRefused[] = "Speed Change Percent must be less than 300.";
constexpr LEffectParam kSimpleParams[] = {
    {"SpSpeedPitch", 100, 1, 300, kRefused, "Speed/Pitch Adjust (%):", "%"},
};
constexpr LEffectParam kPitchParams[] = {
    {"ConstPitchSpeed", 100, 1, 300, kRefused, "Speed Adjust (%):", "%"},
};
constexpr LEffectParam kSpeedParams[] = {
    {"ConstSpeedPitch", 100, 1, 300, kRefused, "Pitch Adjust (%):", "%"},
};

// The input played nPercent faster, back at its own rate.
LSoundSourcePtr Faster(LSoundSourceBase* pInput, int32_t nRate, int32_t nPercent)
{
    const int64_t nFaster = static_cast<int64_t>(nRate) * nPercent / 100;
    LSoundSourcePtr pRelabelled(
        new LSRCRelabelRate(pInput, static_cast<int32_t>(std::clamp<int64_t>(nFaster, 1, INT32_MAX))));
    return LSoundSourcePtr(new LSRCConvertRate(pRelabelled.Get(), nRate));
}

LEffectFactoryPtr MakeSimple(const LEffectArgs& args)
{
    const int32_t nPercent = std::max(args.Value("SpSpeedPitch"), 1);
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) { return Faster(p, p->GetSampleRate(), nPercent); }, nPercent);
}

LEffectFactoryPtr MakeConstPitch(const LEffectArgs& args)
{
    const int32_t nPercent = std::max(args.Value("ConstPitchSpeed"), 1);
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCTimeStretch(p, nPercent, 100)); }, nPercent);
}

LEffectFactoryPtr MakeConstSpeed(const LEffectArgs& args)
{
    const int32_t nPercent = std::max(args.Value("ConstSpeedPitch"), 1);
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) {
            LSoundSourcePtr pStretched(new LSRCTimeStretch(p, 100, nPercent));
            return Faster(pStretched.Get(), p->GetSampleRate(), nPercent);
        },
        nPercent);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfSimpleSpeedPitch) = {
    .nCommandId = 4014, .szCliName = "simple-speed-and-pitch-change", .szMenuText = "Simple Speed and Pitch Change",
    .szMenu = "Effects", .nMenuGroup = 3, .szHint = "Changes speed and pitch together.",
    .szUndoLabel = "Simple Speed and Pitch Change", .szCaption = "Process Audio", .vParams = kSimpleParams,
    .szDescribe = "Speed/Pitch Adjust (%%) = %d", .bAsksSettings = true, .szBody = "LEfChangeSpeedPitch",
    .pfnFactory = MakeSimple,
};

SONITRA_DEFINE_EFFECT(kEfConstPitchSpeed) = {
    .nCommandId = 4015, .szCliName = "constant-pitch-and-speed-change",
    .szMenuText = "Constant Pitch and Speed Change", .szMenu = "Effects", .nMenuGroup = 3,
    .szHint = "Changes the speed and keeps the pitch.", .szUndoLabel = "Constant Pitch and Speed Change",
    .szCaption = "Process Audio", .vParams = kPitchParams, .szDescribe = "Speed Adjust (%%) = %d",
    .bAsksSettings = true, .szBody = "LEfChangeSpeedPitch", .pfnFactory = MakeConstPitch,
};

SONITRA_DEFINE_EFFECT(kEfConstSpeedPitch) = {
    .nCommandId = 4016, .szCliName = "constant-speed-and-pitch-change",
    .szMenuText = "Constant Speed and Pitch Change", .szMenu = "Effects", .nMenuGroup = 3,
    .szHint = "Changes the pitch and keeps the speed.", .szUndoLabel = "Constant Speed and Pitch Change",
    .szCaption = "Process Audio", .vParams = kSpeedParams, .szDescribe = "Speed/Pitch Adjust (%%) = %d",
    .bAsksSettings = true, .szBody = "LEfChangeSpeedPitch", .pfnFactory = MakeConstSpeed,
};

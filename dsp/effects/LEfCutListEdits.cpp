// The effects that only rearrange or re-gain cuts, finishing at once whatever the length:
// amplify, repeat loop and insert silence (their edits are the cut list's own, LEdCommands).
#include "core/LEdCommands.h"
#include "dsp/effects/LEffectArgs.h"
#include "work/LProgressDialog.h"

namespace {
constexpr LEffectParam kAmplifyParams[] = {
    {"AmplifyGain", 100, 0, 400, "Amplify Gain must be less than 400%. Please try again.", "Amplify Gain (%):", "%"},
};
constexpr LEffectParam kRepeatParams[] = {
    {"RepeatNumTimes", 1, 1, 1000, "Repeat count must be between 1 and 1000. Please try again.",
     "Number of Repeats:"},
};
constexpr LEffectParam kSilenceParams[] = {
    {"SilenceTimes", 0, 0, 3600000, "Silence time must be between 0 and 3600000 ms. Please try again.",
     "Silence Time (ms):", "ms"},
};

int32_t Amplify(LProgressDialog&, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
                const LEffectArgs& args)
{
    LEdCommands::Amplify(doc, sStart, sEnd, args.Value("AmplifyGain"));
    return LProgressDialog::ResultDone;
}

int32_t Repeat(LProgressDialog&, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
               const LEffectArgs& args)
{
    LEdCommands::Repeat(doc, sStart, sEnd, args.Value("RepeatNumTimes"));
    return LProgressDialog::ResultDone;
}

int32_t InsertSilence(LProgressDialog&, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t,
                      const LEffectArgs& args)
{
    LEdCommands::InsertSilence(doc, sStart, args.Value("SilenceTimes"));
    return LProgressDialog::ResultDone;
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfAmplify) = {
    .nCommandId = 4001, .szCliName = "amplify", .szMenuText = "Amplify...", .szMenu = "Effects", .nMenuGroup = 0,
    .szHint = "Makes the selected region louder or softer.", .szUndoLabel = "Amplify", .szCaption = "Amplify",
    .vParams = kAmplifyParams, .szDescribe = "Amplify Gain (%%) = %d", .bAsksSettings = true, .pfnApply = Amplify,
    .stream = LEffectInfo::StreamAmplify,
};

SONITRA_DEFINE_EFFECT(kEfRepeatLoop) = {
    .nCommandId = 2009, .szCliName = "repeat-loop", .szMenuText = "Repeat Loop...", .szMenu = "Edit",
    .nMenuGroup = 0, .szHint = "Repeats the selected region.", .szUndoLabel = "Repeat Loop",
    .szCaption = "Repeat Loop", .vParams = kRepeatParams, .bAsksSettings = true, .bEditorOwnCommand = true,
    .pfnApply = Repeat,
};

SONITRA_DEFINE_EFFECT(kEfInsertSilence) = {
    .nCommandId = 2016, .szCliName = "insert-silence", .szMenuText = "Insert Silence", .szMenu = "Edit",
    .nMenuGroup = 0, .szHint = "Inserts silence at the current position.",
    .szUndoLabel = "Insert Silence At Current Position", .szCaption = "Insert Silence", .vParams = kSilenceParams,
    .szDescribe = "Silence Time (ms) = %d", .bAsksSettings = true, .bEditorOwnCommand = true,
    .pfnApply = InsertSilence,
};

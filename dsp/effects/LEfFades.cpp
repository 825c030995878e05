// Fade in, fade out, and fade out and trim: a straight-line fade across the selected range
// (LSRCFade); the last then deletes everything after the range.
#include "core/LEdCommands.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LSRCFade.h"

namespace {
LEffectFactoryPtr MakeFade(LSRCFade::Direction dir)
{
    return LEffectFactoryFn::Make([=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCFade(p, dir)); });
}

LEffectFactoryPtr MakeFadeIn(const LEffectArgs&)
{
    return MakeFade(LSRCFade::FadeIn);
}

LEffectFactoryPtr MakeFadeOut(const LEffectArgs&)
{
    return MakeFade(LSRCFade::FadeOut);
}

int32_t FadeOutAndTrim(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
                       const LEffectArgs& args)
{
    if (sEnd < sStart)
        return LProgressDialog::ResultDone;
    LEffectFactoryPtr pFactory = MakeFadeOut(args);
    const int32_t nResult = LEffectRunner::Stream(dlg, info, doc, sStart, sEnd, *pFactory);
    if (nResult == LProgressDialog::ResultDone)
        LEdCommands::TrimEnd(doc, sEnd);
    return nResult;
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfFadeIn) = {
    .nCommandId = 4006, .szCliName = "fade-in", .szMenuText = "Fade In", .szMenu = "Effects", .nMenuGroup = 1,
    .szHint = "Fades in over the selected region.", .szUndoLabel = "Fade In", .szCaption = "Fade In",
    .szBody = "EfFadeIn", .pfnFactory = MakeFadeIn,
};

SONITRA_DEFINE_EFFECT(kEfFadeOut) = {
    .nCommandId = 4007, .szCliName = "fade-out", .szMenuText = "Fade Out", .szMenu = "Effects", .nMenuGroup = 1,
    .szHint = "Fades out over the selected region.", .szUndoLabel = "Fade Out", .szCaption = "Fade Out",
    .szBody = "EfFadeOut", .pfnFactory = MakeFadeOut,
};

SONITRA_DEFINE_EFFECT(kEfFadeOutAndTrim) = {
    .nCommandId = 4013, .szCliName = "fade-out-and-trim", .szMenuText = "Fade Out and Trim", .szMenu = "Effects",
    .nMenuGroup = 1, .szHint = "Fades out over the selected region and deletes everything after the end position.",
    .szUndoLabel = "Fade Out and Trim", .szCaption = "Fade Out", .szBody = "EfFadeOut",
    .pfnFactory = MakeFadeOut, // over a whole stream the trim keeps everything
    .pfnApply = FadeOutAndTrim,
};

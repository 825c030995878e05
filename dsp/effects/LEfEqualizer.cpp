// Equalizer: the selected range shaped by the frequency curve (LSRCEq), the stored one unless
// another is given.
#include "dsp/LSRCEq.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LEffectArgs.h"

namespace {
LEffectFactoryPtr MakeEqualizer(const LEffectArgs& args)
{
    const LPointList points = args.curve ? *args.curve : LCurveFile::LoadEqualizer();
    return LEffectFactoryFn::Make([=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCEq(p, points)); });
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfEqualizer) = {
    .nCommandId = 4003, .szCliName = "equalizer", .szMenuText = "Equalizer...", .szMenu = "Effects", .nMenuGroup = 0,
    .szHint = "Boosts or cuts frequency bands.", .szUndoLabel = "Equalizer", .szCaption = "Equalizing",
    .bAsksSettings = true, .curve = LEffectInfo::EqualizerCurve, .szBody = "EfEqualiser", .pfnFactory = MakeEqualizer,
};

// Envelope: the selected range's volume shaped by the level curve (LSRCEnvelope), the stored
// one unless another is given.
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LSRCEnvelope.h"

namespace {
LEffectFactoryPtr MakeEnvelope(const LEffectArgs& args)
{
    const LPointList points = args.curve ? *args.curve : LCurveFile::LoadEnvelope();
    return LEffectFactoryFn::Make([=](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCEnvelope(p, points)); });
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfEnvelope) = {
    .nCommandId = 4008, .szCliName = "envelope", .szMenuText = "Envelope...", .szMenu = "Effects", .nMenuGroup = 1,
    .szHint = "Shapes the volume over the selected region.", .szUndoLabel = "Envelope", .szCaption = "Envelope",
    .bAsksSettings = true, .curve = LEffectInfo::EnvelopeCurve, .szBody = "LEfEnvelope", .pfnFactory = MakeEnvelope,
};

// Dynamic range compressor (LSRCCompressor) over the selected range. The limit setting does not
// reach the stage: the compressor always runs with a 45 ms block and a limit of 127 dB.
#include <algorithm>

#include "core/LTrace.h"
#include "dsp/CompressorRatioList.h"
#include "dsp/LSRCCompressor.h"
#include "dsp/effects/LEffectArgs.h"

namespace {
constexpr int32_t kBlockMs = 45;
constexpr int32_t kStageLimitDb = 127;

constexpr LEffectParam kParams[] = {
    {"CompressorThreshold", -20, -127, 127, "Threshold must be between -127 and 127 dB. Please try again.",
     "Threshold (dB):", "dB"},
    {"CompressorRatio", 0, 0, kCompressorRatioCount - 1, "Ratio must be 0 (1:1) to 6 (Limit). Please try again.",
     "Ratio:", "", LEffectParam::Ratio},
    {"CompressorLimit", 3, -127, 127, "Limit must be between -127 and 127 dB. Please try again.", "Limit (dB):",
     "dB"},
};

LEffectFactoryPtr MakeCompressor(const LEffectArgs& args)
{
    const int32_t nThreshold = std::clamp(args.Value("CompressorThreshold"), -127, 127);
    const int32_t nRatio = args.Value("CompressorRatio");
    if (nRatio < 0 || nRatio >= kCompressorRatioCount)
        LTRACE("CompressorRatio > sizeof(CompressorRatioList) / sizeof(CompressorRatioItem)");
    const double fFactor = LCompressorRatio(nRatio).fFactorPerDb;
    return LEffectFactoryFn::Make(
        [=](LSoundSourceBase* p) {
            return LSoundSourcePtr(new LSRCCompressor(p, nThreshold, fFactor, kBlockMs, kStageLimitDb));
        },
        nThreshold, args.Value("CompressorLimit"));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfCompressor) = {
    .nCommandId = 4012, .szCliName = "dynamic-range-compressor", .szMenuText = "Dynamic Range Compressor",
    .szMenu = "Effects", .nMenuGroup = 4, .szHint = "Reduces the difference between loud and soft.",
    .szUndoLabel = "Dynamic Range Compressor", .szCaption = "Dynamic Range Compressor", .vParams = kParams,
    .szDescribe = "Threshold (db) = %d, Ratio = %s, Limit (db) = %d", .bAsksSettings = true,
    .szBody = "EfCompressor", .pfnFactory = MakeCompressor,
};

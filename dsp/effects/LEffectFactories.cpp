#include "dsp/effects/LEffectFactories.h"

#include <algorithm>
#include <climits>

#include "core/LTrace.h"
#include "dsp/CompressorRatioList.h"
#include "dsp/LSRCCompressor.h"
#include "dsp/LSRCEq.h"
#include "dsp/LSRCNoiseGates.h"
#include "dsp/LSRCTimeStretch.h"
#include "dsp/effects/LSRCEcho.h"
#include "core/LSRCConvertRate.h"
#include "dsp/effects/LSRCEnvelope.h"
#include "dsp/effects/LSRCRelabelRate.h"
#include "dsp/effects/LSRCLowCut.h"
#include "dsp/effects/LSRCReverb.h"

LSoundSourcePtr LEchoFactory::Create(LSoundSourceBase* pInput)
{
    return LSoundSourcePtr(new LSRCEcho(pInput, nParam1, nParam2));
}

LSoundSourcePtr LReverbFactory::Create(LSoundSourceBase* pInput)
{
    return LSoundSourcePtr(new LSRCReverb(pInput, nParam1, nParam2));
}

LSoundSourcePtr LLowCutFactory::Create(LSoundSourceBase* pInput)
{
    return LSoundSourcePtr(new LSRCLowCut(pInput, nParam1));
}

LSoundSourcePtr LFadeFactory::Create(LSoundSourceBase* pInput)
{
    return LSoundSourcePtr(new LSRCFade(pInput, dir));
}


LSoundSourcePtr LCompressorFactory::Create(LSoundSourceBase* pInput)
{
    const int32_t nThreshold = std::clamp(nParam1, -127, 127);
    if (nRatioIndex < 0 || nRatioIndex >= kCompressorRatioCount)
        LTRACE("CompressorRatio > sizeof(CompressorRatioList) / sizeof(CompressorRatioItem)");
    const double fFactor = LCompressorRatio(nRatioIndex).fFactorPerDb;
    return LSoundSourcePtr(new LSRCCompressor(pInput, nThreshold, fFactor, kBlockMs, kStageLimitDb));
}

LSoundSourcePtr LNoiseReductionFactory::Create(LSoundSourceBase* pInput)
{
    if (pInput->IsError())
        return LSoundSourcePtr(pInput);
    return LSoundSourcePtr(new LSRCNoiseGates(pInput, nParam1));
}

LSoundSourcePtr LCurveFactory::Create(LSoundSourceBase* pInput)
{
    if (curve == Equalizer)
        return LSoundSourcePtr(new LSRCEq(pInput, points));
    return LSoundSourcePtr(new LSRCEnvelope(pInput, points));
}

LSoundSourcePtr LSpeedPitchFactory::Create(LSoundSourceBase* pInput)
{
    const int32_t nRate = pInput->GetSampleRate();
    const int64_t nFaster = static_cast<int64_t>(nRate) * std::max(nParam1, 1) / 100;
    LSoundSourcePtr pRelabelled(new LSRCRelabelRate(pInput, static_cast<int32_t>(std::clamp<int64_t>(nFaster, 1, INT32_MAX))));
    return LSoundSourcePtr(new LSRCConvertRate(pRelabelled.Get(), nRate));
}

LSoundSourcePtr LConstantChangeFactory::Create(LSoundSourceBase* pInput)
{
    const int32_t nPercent = std::max(nParam1, 1);
    if (keep == KeepPitch)
        return LSoundSourcePtr(new LSRCTimeStretch(pInput, nPercent, 100));
    const int32_t nRate = pInput->GetSampleRate();
    LSoundSourcePtr pStretched(new LSRCTimeStretch(pInput, 100, nPercent));
    const int64_t nFaster = static_cast<int64_t>(nRate) * nPercent / 100;
    LSoundSourcePtr pRelabelled(
        new LSRCRelabelRate(pStretched.Get(), static_cast<int32_t>(std::clamp<int64_t>(nFaster, 1, INT32_MAX))));
    return LSoundSourcePtr(new LSRCConvertRate(pRelabelled.Get(), nRate));
}

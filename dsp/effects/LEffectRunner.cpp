#include "dsp/effects/LEffectRunner.h"

#include "core/LEdCommands.h"
#include "core/LTrace.h"
#include "dsp/effects/LCLAConvertRateChannels.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LDCOffsetCorrection.h"
#include "dsp/effects/LEfAutoGainControl.h"
#include "dsp/effects/LEfAutotrim.h"
#include "dsp/effects/LEfNormalize.h"
#include "dsp/effects/LEfPasteMix.h"
#include "dsp/effects/LEfSoundProcess.h"
#include "dsp/effects/LEffectFactories.h"
#include "dsp/effects/LReverseSoundProcess.h"
#include "dsp/effects/LSRCEffectBase.h"
#include "dsp/effects/LStoredValues.h"

namespace {
using K = LEffectKind;
using R = LProgressDialog::Result;

int32_t RunStreaming(LProgressDialog& dlg, const LEffectInfo& info, const LEffectData& data, LEffectFactory* pFactory)
{
    LEffectFactoryPtr pHold(pFactory);
    return LEfSoundProcess::Run(dlg, info.szCaption, data, *pFactory, info.szBody);
}

// Edits that only rearrange cuts: they finish at once, whatever the length.
int32_t ApplyCutListEdit(const LEffectInfo& info, LCutListAudio& doc, int32_t sStart, int32_t sEnd, const LEffectArgs& args)
{
    switch (info.kind) {
    case K::Amplify:
        LEdCommands::Amplify(doc, sStart, sEnd, args.Value("AmplifyGain"));
        return R::ResultDone;
    case K::RepeatLoop:
        LEdCommands::Repeat(doc, sStart, sEnd, args.Value("RepeatNumTimes"));
        return R::ResultDone;
    case K::InsertSilence:
        LEdCommands::InsertSilence(doc, sStart, args.Value("SilenceTimes"));
        return R::ResultDone;
    default:
        return R::ResultError;
    }
}

int32_t ApplyMix(LProgressDialog& dlg, const LEffectData& data, const LEffectArgs& args)
{
    if (!args.pClip) {
        LTRACE("LEffectRunner::Apply no clip to mix");
        return R::ResultError;
    }
    LEfPasteMix::Options opt;
    opt.nVolumePercent = args.Value("PasteMixVolume");
    opt.nLonger = args.Value("LongerSelection");
    opt.nFadeOutMs = args.Value("FadeOutTime");
    return LEfPasteMix::Run(dlg, data, args.pClip.Get(), opt);
}
} // namespace

bool LEffectRunner::IsAvailable(LEffectKind kind)
{
    return true;
}

LEffectFactoryPtr LEffectRunner::StreamingFactory(const LEffectInfo& info, const LEffectArgs& args)
{
    switch (info.kind) {
    case K::HighPassFilter:
        return LEffectFactoryPtr(new LLowCutFactory(args.Value("LowCutFreq")));
    case K::Echo:
        return LEffectFactoryPtr(new LEchoFactory(args.Value("EchoGain"), args.Value("EchoTime")));
    case K::Reverb:
        return LEffectFactoryPtr(new LReverbFactory(args.Value("ReverbLevel"), args.Value("ReverbTime")));
    case K::FadeIn:
        return LEffectFactoryPtr(new LFadeFactory(LSRCFade::FadeIn));
    case K::FadeOut:
        return LEffectFactoryPtr(new LFadeFactory(LSRCFade::FadeOut));
    case K::Equalizer:
        return LEffectFactoryPtr(
            new LCurveFactory(LCurveFactory::Equalizer, args.curve ? *args.curve : LCurveFile::LoadEqualizer()));
    case K::Envelope:
        return LEffectFactoryPtr(
            new LCurveFactory(LCurveFactory::Envelope, args.curve ? *args.curve : LCurveFile::LoadEnvelope()));
    case K::NoiseReduction:
        return LEffectFactoryPtr(new LNoiseReductionFactory(args.Value("NoiseGateLevel")));
    case K::Compressor:
        return LEffectFactoryPtr(new LCompressorFactory(args.Value("CompressorThreshold"), args.Value("CompressorRatio"),
                                                        args.Value("CompressorLimit")));
    case K::SimpleSpeedPitch:
        return LEffectFactoryPtr(new LSpeedPitchFactory(args.Value("SpSpeedPitch")));
    case K::ConstPitchSpeed:
        return LEffectFactoryPtr(
            new LConstantChangeFactory(LConstantChangeFactory::KeepPitch, args.Value("ConstPitchSpeed")));
    case K::ConstSpeedPitch:
        return LEffectFactoryPtr(
            new LConstantChangeFactory(LConstantChangeFactory::KeepSpeed, args.Value("ConstSpeedPitch")));
    default:
        return LEffectFactoryPtr();
    }
}

int32_t LEffectRunner::Apply(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio* pDoc, int32_t sStart,
                             int32_t sEnd, const LEffectArgs& args)
{
    if (!pDoc || !IsAvailable(info.kind))
        return R::ResultError;
    LEffectData data;
    data.pCutList = pDoc;
    data.sStart = sStart;
    data.sEnd = sEnd;
    LCutListAudio& doc = *pDoc;
    switch (info.kind) {
    case K::Amplify:
    case K::RepeatLoop:
    case K::InsertSilence:
        return ApplyCutListEdit(info, doc, sStart, sEnd, args);
    case K::Normalize:
        data.nParam1 = args.Value("NormalizePeakLevel");
        return LEfNormalize::Run(dlg, data);
    case K::HighPassFilter:
    case K::Echo:
    case K::Reverb:
    case K::FadeIn:
    case K::FadeOut:
    case K::Equalizer:
    case K::Envelope:
    case K::NoiseReduction:
    case K::Compressor:
    case K::SimpleSpeedPitch:
    case K::ConstPitchSpeed:
    case K::ConstSpeedPitch:
        return RunStreaming(dlg, info, data, StreamingFactory(info, args).Get());
    case K::Reverse:
        return LReverseSoundProcess::Run(dlg, data);
    case K::FadeOutAndTrim: {
        if (sEnd < sStart)
            return R::ResultDone;
        const int32_t nResult = RunStreaming(dlg, info, data, new LFadeFactory(LSRCFade::FadeOut));
        if (nResult == R::ResultDone)
            LEdCommands::TrimEnd(doc, sEnd);
        return nResult;
    }
    case K::AutoGainControl:
        return LEfAutoGainControl::Run(dlg, info.szCaption, data);
    case K::AutoTrim:
        return LEfAutotrim::Run(dlg, doc, LStoredValues::AutoTrimThreshold());
    case K::DCOffsetCorrection:
        return LDCOffsetCorrection::RunOnDocument(dlg, data);
    case K::PasteMix:
    case K::MixFile:
        return ApplyMix(dlg, data, args);
    case K::ConvertSampleRate:
        return LCLAConvertRateChannels::Run(dlg, doc, args.Value("ConvertSampleRate"), doc.GetChannels());
    case K::ConvertMono:
        return LCLAConvertRateChannels::Run(dlg, doc, doc.GetSampleRate(), 1);
    case K::ConvertStereo:
        return LCLAConvertRateChannels::Run(dlg, doc, doc.GetSampleRate(), 2);
    default:
        return R::ResultError;
    }
}

LEffectProcess::LEffectProcess(const LEffectInfo& i, LCutListAudio* pD, int32_t s, int32_t e, const LEffectArgs& a)
    : LProgressDialog(i.szCaption), info(i), pDoc(pD), sStart(s), sEnd(e), args(a)
{
}

int32_t LEffectProcess::Process()
{
    return LEffectRunner::Apply(*this, info, pDoc.Get(), sStart, sEnd, args);
}

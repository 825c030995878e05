// The factories of the streaming effects whose stages live in this folder.
#pragma once

#include "dsp/LPointList.h"
#include "dsp/effects/LEffectFactory.h"
#include "dsp/effects/LSRCFade.h"

// Gain in percent, delay in milliseconds.
class LEchoFactory : public LEffectFactory
{
public:
    using LEffectFactory::LEffectFactory;
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

// Level in percent, time in milliseconds.
class LReverbFactory : public LEffectFactory
{
public:
    using LEffectFactory::LEffectFactory;
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

// Cut-off frequency in Hz.
class LLowCutFactory : public LEffectFactory
{
public:
    using LEffectFactory::LEffectFactory;
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

// A fade across the whole input.
class LFadeFactory : public LEffectFactory
{
public:
    explicit LFadeFactory(LSRCFade::Direction dir) : dir(dir) {}
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;

private:
    LSRCFade::Direction dir;
};


// Threshold, ratio index, limit from the stored values. The limit does not reach the stage: the
// compressor always runs with a 45 ms block and a limit of 127 dB.
class LCompressorFactory : public LEffectFactory
{
public:
    static constexpr int32_t kBlockMs = 45;
    static constexpr int32_t kStageLimitDb = 127;

    LCompressorFactory(int32_t nThresholdDb, int32_t nRatioIndex, int32_t nLimitDb)
        : LEffectFactory(nThresholdDb, nLimitDb), nRatioIndex(nRatioIndex)
    {
    }
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;

private:
    int32_t nRatioIndex;
};

// Gate level in dB. A latched input is handed back unwrapped.
class LNoiseReductionFactory : public LEffectFactory
{
public:
    using LEffectFactory::LEffectFactory;
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

// A source shaped by a curve: the equalizer's frequency response or the envelope's level.
class LCurveFactory : public LEffectFactory
{
public:
    enum Curve
    {
        Equalizer,
        Envelope,
    };
    LCurveFactory(Curve curve, const LPointList& points) : curve(curve), points(points) {}
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;

private:
    Curve curve;
    LPointList points;
};

// Speed in percent of the original: the audio plays that much faster (or slower) and its pitch
// moves with it; the length changes accordingly.
class LSpeedPitchFactory : public LEffectFactory
{
public:
    using LEffectFactory::LEffectFactory;
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

// Percent of the original speed with the pitch kept (a time-stretch), or of the original pitch
// with the speed kept (stretched to the longer or shorter length, then played back faster or
// slower through the rate converter so that the length comes back).
class LConstantChangeFactory : public LEffectFactory
{
public:
    enum Keep
    {
        KeepPitch,
        KeepSpeed,
    };
    LConstantChangeFactory(Keep keep, int32_t nPercent) : LEffectFactory(nPercent, keep), keep(keep) {}
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;

private:
    Keep keep;
};

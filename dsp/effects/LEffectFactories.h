// The factories of the streaming effects whose stages live in this folder.
#pragma once

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

class LReverseFactory : public LEffectFactory
{
public:
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override;
};

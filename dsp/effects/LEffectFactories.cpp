#include "dsp/effects/LEffectFactories.h"

#include "dsp/effects/LSRCEcho.h"
#include "dsp/effects/LSRCLowCut.h"
#include "dsp/effects/LSRCReverb.h"
#include "dsp/effects/LSRCReverse.h"

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

LSoundSourcePtr LReverseFactory::Create(LSoundSourceBase* pInput)
{
    return LSoundSourcePtr(new LSRCReverse(pInput));
}

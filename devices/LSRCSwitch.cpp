#include "devices/LSRCSwitch.h"

#include "core/LTrace.h"

LSRCSwitch::LSRCSwitch(LSoundSourceBase* pFirst)
    : LSoundSourceBase(pFirst->GetSampleRate(), pFirst->GetChannels(), pFirst->GetMaxAmplitude()), pCurrent(pFirst)
{
    if (pFirst->IsError())
        SetError();
}

bool LSRCSwitch::Accepts(LSoundSourceBase* pSource) const
{
    return pSource && !pSource->IsError() && pSource->GetSampleRate() == nSampleRate &&
           pSource->GetChannels() == nChans;
}

bool LSRCSwitch::SetNext(LSoundSourceBase* pSource)
{
    LSoundSourcePtr pHold(pSource);
    if (!Accepts(pSource)) {
        LTRACE("LSRCSwitch::SetNext source refused");
        pNext.Reset();
        return false;
    }
    pNext = pHold;
    return true;
}

void LSRCSwitch::SetPosition(int32_t sPosition)
{
    if (pNext) {
        pCurrent = pNext;
        pNext.Reset();
    }
    pCurrent->SetPosition(sPosition);
}

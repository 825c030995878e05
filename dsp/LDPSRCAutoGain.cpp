#include "dsp/LDPSRCAutoGain.h"

LDPSRCAutoGain::LDPSRCAutoGain(std::shared_ptr<const LDPAutoGain::Plan> pP)
    : LSoundSourceBase(pP->nRate, pP->nChans, pP->nMaxAmplitude), pPlan(std::move(pP))
{
    SetError();
}

void LDPSRCAutoGain::Read(int32_t* pBuffer, int32_t nFrames)
{
    LZeroFrames(pBuffer, nFrames, nChans);
    sPosition += nFrames;
}

int32_t LDPSRCAutoGain::GetLength()
{
    return pPlan->nLength;
}

void LDPSRCAutoGain::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
}

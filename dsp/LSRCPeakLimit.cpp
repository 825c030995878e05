#include "dsp/LSRCPeakLimit.h"

#include <algorithm>

// Interim: clamps each sample. The look-ahead gain law replaces this.
struct LSRCPeakLimit::Impl
{
    int32_t nLimit;
};

LSRCPeakLimit::LSRCPeakLimit(LSoundSourceBase* pIn, int32_t nLimit)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), std::min(nLimit, 0x3FFFFF)), pInput(pIn),
      pImpl(std::make_shared<Impl>(Impl{std::min(nLimit, 0x3FFFFF)}))
{
    if (pIn->IsError())
        SetError();
}

void LSRCPeakLimit::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    const int32_t n = nFrames * nChans;
    for (int32_t i = 0; i < n; ++i)
        pBuffer[i] = std::clamp(pBuffer[i], -pImpl->nLimit, pImpl->nLimit);
}

int32_t LSRCPeakLimit::GetPosition()
{
    return pInput->GetPosition();
}

void LSRCPeakLimit::SetPosition(int32_t sPosition)
{
    pInput->SetPosition(sPosition);
}

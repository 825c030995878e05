#include "core/LSRCLimitLength.h"

#include <algorithm>

LSRCLimitLength::LSRCLimitLength(LSoundSourceBase* pIn, int32_t sLen)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      sLength(std::max(sLen, 0))
{
    if (pInput->IsError())
        SetError();
}

void LSRCLimitLength::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sFrom = pInput->GetPosition();
    pInput->Read(pBuffer, nFrames);
    // Whatever lies past the limit is not ours to hand out.
    const int64_t nKeep = std::clamp<int64_t>(sLength - sFrom, 0, nFrames);
    LZeroFrames(pBuffer + nKeep * nChans, static_cast<int32_t>(nFrames - nKeep), nChans);
}

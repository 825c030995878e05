#include "core/LSRCConvertChannels.h"

#include <algorithm>

LSRCConvertChannels::LSRCConvertChannels(LSoundSourceBase* pIn, uint8_t nTargetChans)
    : LSoundSourceBase(pIn->GetSampleRate(), nTargetChans, pIn->GetMaxAmplitude()), pInput(pIn),
      vBuffer(static_cast<size_t>(kBlockFrames) * pIn->GetChannels())
{
    if (pIn->IsError() || !CanConvert(pIn->GetChannels(), nTargetChans))
        SetError();
}

void LSRCConvertChannels::Read(int32_t* pBuffer, int32_t nFrames)
{
    const uint8_t nInChans = pInput->GetChannels();
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kBlockFrames);
        pInput->Read(vBuffer.data(), n);
        const int32_t* pIn = vBuffer.data();
        if (nInChans == 2 && nChans == 1) {
            for (int32_t i = 0; i < n; ++i)
                pBuffer[i] = Mix(pIn[2 * i], pIn[2 * i + 1]);
        } else if (nInChans == 1 && nChans == 2) {
            for (int32_t i = 0; i < n; ++i)
                pBuffer[2 * i] = pBuffer[2 * i + 1] = pIn[i];
        } else {
            LZeroFrames(pBuffer, n, nChans);
        }
        pBuffer += static_cast<size_t>(n) * nChans;
        nFrames -= n;
    }
}

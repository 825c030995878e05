#include "dsp/effects/LSRCMix.h"

#include <algorithm>

#include "core/LFixed.h"

namespace {
constexpr int32_t kMixBlock = 8192;
}

LSRCMix::LSRCMix(LSoundSourceBase* pB, LSoundSourceBase* pC, int32_t nVolumePercent)
    : LSoundSourceBase(pB->GetSampleRate(), pB->GetChannels(), std::max(pB->GetMaxAmplitude(), 0x200000)), pBase(pB),
      pClip(pC), vClip(static_cast<size_t>(kMixBlock) * pB->GetChannels()),
      nGain(static_cast<int32_t>(static_cast<int64_t>(std::max(nVolumePercent, 0)) * kGainUnity / 100))
{
    if (pB->IsError() || pC->IsError() || pC->GetChannels() != nChans || pC->GetSampleRate() != nSampleRate)
        SetError();
}

void LSRCMix::SetPosition(int32_t sPosition)
{
    pBase->SetPosition(sPosition);
    pClip->SetPosition(sPosition);
}

void LSRCMix::Read(int32_t* pBuffer, int32_t nFrames)
{
    pBase->Read(pBuffer, nFrames);
    const size_t nC = nChans;
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kMixBlock);
        pClip->Read(vClip.data(), n);
        const size_t nSamples = static_cast<size_t>(n) * nC;
        if (nGain == kGainUnity) {
            for (size_t i = 0; i < nSamples; ++i)
                pBuffer[i] = LWrapAdd(pBuffer[i], vClip[i]);
        } else {
            for (size_t i = 0; i < nSamples; ++i)
                pBuffer[i] = LWrapAdd(pBuffer[i], LMulGain824(vClip[i], nGain));
        }
        pBuffer += nSamples;
        nFrames -= n;
    }
}

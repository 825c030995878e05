#include "dsp/effects/LSRCOffset.h"

#include "core/LFixed.h"

LSRCOffset::LSRCOffset(LSoundSourceBase* pIn, std::vector<int32_t> vOffset)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      vNegOffset(std::move(vOffset))
{
    if (pIn->IsError() || vNegOffset.size() != nChans)
        SetError();
    vNegOffset.resize(nChans, 0);
    for (int32_t& n : vNegOffset)
        n = LWrapMul(n, -1);
}

void LSRCOffset::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    if (nFrames <= 0)
        return;
    const size_t nC = nChans;
    const size_t n = static_cast<size_t>(nFrames) * nC;
    for (size_t c = 0; c < nC; ++c) {
        const int32_t nNeg = vNegOffset[c];
        for (size_t i = c; i < n; i += nC)
            pBuffer[i] = LWrapAdd(pBuffer[i], nNeg);
    }
}

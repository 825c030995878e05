#include "dsp/effects/LSRCEcho.h"

#include <algorithm>

#include "core/LFixed.h"
#include "core/LTrace.h"

LSRCEcho::LSRCEcho(LSoundSourceBase* pIn, int32_t nGainPercent, int32_t nDelayMs)
    : LSRCEffectBase(pIn), nGain((nGainPercent * 256) / 100)
{
    const int64_t nLen = static_cast<int64_t>(LMsToFrames(nDelayMs, nSampleRate)) * nChans;
    vRing.assign(static_cast<size_t>(std::max<int64_t>(nLen, kMinRing)), 0);
    LTRACE("LSRCEcho::LSRCEcho ring %zu gain %d", vRing.size(), nGain);
}

void LSRCEcho::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    const size_t nLen = vRing.size();
    int32_t* pRing = vRing.data();
    const int32_t g = nGain;
    size_t nTotal = static_cast<size_t>(nFrames) * nChans;
    size_t pos = nPos;
    // Runs up to the ring's end without a modulo per sample.
    while (nTotal > 0) {
        const size_t nRun = std::min(nTotal, nLen - pos);
        for (size_t i = 0; i < nRun; ++i) {
            const int32_t y = LWrapAdd(pBuffer[i], LWrapMul(pRing[pos + i], g) >> 8);
            pRing[pos + i] = y;
            pBuffer[i] = y;
        }
        pBuffer += nRun;
        nTotal -= nRun;
        pos += nRun;
        if (pos == nLen)
            pos = 0;
    }
    nPos = pos;
}

void LSRCEcho::SetPosition(int32_t sPosition)
{
    std::fill(vRing.begin(), vRing.end(), 0);
    pInput->SetPosition(sPosition);
}

#include "dsp/LDPSRCAutoGain.h"

#include <algorithm>

#include "core/LFixed.h"
#include "core/LTrace.h"

LDPSRCAutoGain::LDPSRCAutoGain(std::shared_ptr<const LDPAutoGain::Plan> pP)
    : LSoundSourceBase(pP->nRate, pP->nChans, pP->nMaxAmplitude), pPlan(std::move(pP))
{
    if (!file.Open(pPlan->szPath, LFile::ReadExisting)) {
        LTRACE("LDPSRCAutoGain::LDPSRCAutoGain cannot open the first pass's copy");
        SetError();
    }
}

int32_t LDPSRCAutoGain::GainAt(int64_t sFrame) const
{
    const std::vector<int32_t>& v = pPlan->vGains;
    const int64_t k = sFrame / pPlan->nBlock;
    const int64_t nInto = sFrame % pPlan->nBlock;
    const int64_t g0 = v[k];
    const int64_t g1 = k + 1 < static_cast<int64_t>(v.size()) ? v[k + 1] : g0;
    return static_cast<int32_t>(g0 + (g1 - g0) * nInto / pPlan->nBlock);
}

void LDPSRCAutoGain::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    LZeroFrames(pBuffer, nFrames, nChans);
    const int64_t sStart = sPosition;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sStart + nFrames, INT32_MAX));
    if (IsError())
        return;
    // Only the frames inside the copy are read; the rest stay silent.
    const int64_t sFrom = std::max<int64_t>(sStart, 0);
    const int64_t sTo = std::min<int64_t>(sStart + nFrames, pPlan->nLength);
    if (sFrom >= sTo)
        return;
    int32_t* pFirst = pBuffer + (sFrom - sStart) * nChans;
    const int64_t nBytes = (sTo - sFrom) * nChans * static_cast<int64_t>(sizeof(int32_t));
    if (file.Seek(sFrom * nChans * static_cast<int64_t>(sizeof(int32_t))) < 0 || file.Read(pFirst, nBytes) != nBytes)
        LTRACE("LDPSRCAutoGain::Read short read");
    for (int64_t f = sFrom; f < sTo; ++f) {
        const int32_t g = GainAt(f);
        for (uint8_t c = 0; c < nChans; ++c, ++pFirst)
            *pFirst = LMulGain824(*pFirst, g);
    }
}

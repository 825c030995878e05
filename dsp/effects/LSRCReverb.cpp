#include "dsp/effects/LSRCReverb.h"

#include <algorithm>
#include <cmath>

#include "core/LFixed.h"
#include "core/LTrace.h"

namespace {
constexpr double kTapStartShare[LSRCReverb::kTaps] = {0.7413, 0.5581, 0.3823, 0.211};
constexpr double kTapGainShare[LSRCReverb::kTaps] = {0.4, 0.1, 0.3, 0.07};
constexpr double kFeedbackShare = 0.13;
} // namespace

LSRCReverb::LSRCReverb(LSoundSourceBase* pIn, int32_t nLevelPercent, int32_t nTimeMs) : LSRCEffectBase(pIn)
{
    const int64_t nLen = static_cast<int64_t>(LMsToFrames(nTimeMs, nSampleRate)) * nChans;
    vRing.assign(static_cast<size_t>(std::max<int64_t>(nLen, kMinRing)), 0);
    const double fLen = static_cast<double>(vRing.size());
    const int32_t nBase = (nLevelPercent * 512) / 100;
    for (int k = 0; k < kTaps; ++k) {
        aTapStart[k] = static_cast<int32_t>(std::lround(fLen * kTapStartShare[k]));
        aTapPos[k] = static_cast<size_t>(aTapStart[k]);
        aTapGain[k] = static_cast<int32_t>(std::lround(nBase * kTapGainShare[k]));
    }
    nFeedbackGain = static_cast<int32_t>(std::lround(nBase * kFeedbackShare));
    LTRACE("LSRCReverb::LSRCReverb ring %zu base gain %d", vRing.size(), nBase);
}

void LSRCReverb::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    const size_t nLen = vRing.size();
    int32_t* pRing = vRing.data();
    size_t r0 = aTapPos[0], r1 = aTapPos[1], r2 = aTapPos[2], r3 = aTapPos[3], w = nWrite;
    const int32_t c0 = aTapGain[0], c1 = aTapGain[1], c2 = aTapGain[2], c3 = aTapGain[3], c4 = nFeedbackGain;
    size_t nTotal = static_cast<size_t>(nFrames) * nChans;
    // Every position advances by one per sample, so a run can go on until the first of them wraps.
    while (nTotal > 0) {
        const size_t nRun = std::min({nTotal, nLen - r0, nLen - r1, nLen - r2, nLen - r3, nLen - w});
        for (size_t i = 0; i < nRun; ++i) {
            int32_t s = LWrapAdd(pBuffer[i], LWrapMul(pRing[r0 + i], c0) >> 9);
            s = LWrapAdd(s, LWrapMul(pRing[r1 + i], c1) >> 9);
            s = LWrapAdd(s, LWrapMul(pRing[r2 + i], c2) >> 9);
            s = LWrapAdd(s, LWrapMul(pRing[r3 + i], c3) >> 9);
            s = LWrapAdd(s, LWrapMul(pRing[w + i], c4) >> 9);
            pRing[w + i] = s;
            pBuffer[i] = s;
        }
        pBuffer += nRun;
        nTotal -= nRun;
        r0 = (r0 + nRun) % nLen;
        r1 = (r1 + nRun) % nLen;
        r2 = (r2 + nRun) % nLen;
        r3 = (r3 + nRun) % nLen;
        w = (w + nRun) % nLen;
    }
    aTapPos[0] = r0;
    aTapPos[1] = r1;
    aTapPos[2] = r2;
    aTapPos[3] = r3;
    nWrite = w;
}

void LSRCReverb::SetPosition(int32_t sPosition)
{
    std::fill(vRing.begin(), vRing.end(), 0);
    pInput->SetPosition(sPosition);
}

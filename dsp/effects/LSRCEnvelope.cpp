#include "dsp/effects/LSRCEnvelope.h"

#include <algorithm>
#include <cmath>

#include "core/LFixed.h"

LSRCEnvelope::LSRCEnvelope(LSoundSourceBase* pIn, const LPointList& pts)
    : LSRCEffectBase(pIn), points(pts), nLength(std::max(pIn->GetLength(), 1))
{
    if (!points.Validate())
        SetError();
}

int32_t LSRCEnvelope::GainAt(int64_t s) const
{
    const double fPercent = std::max(points.YAt(static_cast<double>(s) * kXSpan / nLength), 0.0);
    return static_cast<int32_t>(std::min(fPercent * kGainUnity / 100.0, 2147483647.0));
}

int64_t LSRCEnvelope::RunEnd(int64_t s) const
{
    int64_t sEnd = s + kMaxRun;
    for (int32_t k = 0; k < points.nPoints; ++k) {
        // The first frame at or past the point.
        const int64_t sBend = (static_cast<int64_t>(points.aPoints[k].x) * nLength + kXSpan - 1) / kXSpan;
        if (sBend > s) {
            sEnd = std::min(sEnd, sBend);
            break;
        }
    }
    return sEnd;
}

void LSRCEnvelope::Read(int32_t* pBuffer, int32_t nFrames)
{
    int64_t s = pInput->GetPosition();
    pInput->Read(pBuffer, nFrames);
    const size_t nC = nChans;
    while (nFrames > 0) {
        // The curve is straight between its points, so the gain steps evenly from one exact
        // value to the next; runs end where the curve bends.
        const int64_t sRunEnd = RunEnd(s);
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(nFrames, sRunEnd - s));
        const int64_t g0 = GainAt(s);
        const int64_t nStep = ((GainAt(sRunEnd) - g0) * 65536) / (sRunEnd - s);
        for (int32_t i = 0; i < n; ++i) {
            const int32_t g = static_cast<int32_t>(g0 + ((nStep * i) >> 16));
            for (size_t c = 0; c < nC; ++c)
                pBuffer[c] = LMulGain824(pBuffer[c], g);
            pBuffer += nC;
        }
        s += n;
        nFrames -= n;
    }
}

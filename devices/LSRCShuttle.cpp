#include "devices/LSRCShuttle.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "core/LFixed.h"
#include "core/LTrace.h"

LSRCShuttle::LSRCShuttle(LSoundSourceBase* pIn, double fSpeed, double fSecondSpeed, int32_t nRampMs)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      fSpeed0(fSpeed), fSpeed1(fSecondSpeed)
{
    if (pIn->IsError()) {
        LTRACE("LSRCShuttle::LSRCShuttle Input Error");
        SetError();
    }
    nRampFrames = nRampMs > 0 ? static_cast<int64_t>(nRampMs) * nSampleRate / 1000 : 0;
    nGrain = GrainFramesFor(nSampleRate);
    nHop = nGrain / 2;
    vWindow.resize(nHop);
    for (int32_t i = 0; i < nHop; ++i) {
        const double w = 0.5 - 0.5 * std::cos(M_PI * i / nHop);
        vWindow[i] = static_cast<int32_t>(std::lround(w * kGainUnity));
    }
    vGrain.assign(static_cast<size_t>(nGrain) * nChans, 0);
    vTail.assign(static_cast<size_t>(nHop) * nChans, 0);
    vHopOut.assign(static_cast<size_t>(nHop) * nChans, 0);
    sInputStart = pIn->GetPosition();
    sInputLength = pIn->GetLength();
    sOutLength = ComputeLength();
    SetPosition(0);
}

int32_t LSRCShuttle::GrainFramesFor(int32_t nRate)
{
    // Even, so that the two halves of the window sum to one exactly.
    return std::clamp(nRate / 90, 20, 2730) & ~1;
}

double LSRCShuttle::SpeedAt(int64_t sOut) const
{
    if (nRampFrames <= 0)
        return fSpeed0;
    if (sOut >= nRampFrames)
        return fSpeed1;
    return fSpeed0 + (fSpeed1 - fSpeed0) * static_cast<double>(sOut) / static_cast<double>(nRampFrames);
}

// Follows the read point hop by hop through the ramp, then finishes at the constant speed.
int32_t LSRCShuttle::ComputeLength() const
{
    const double fEnd = sInputLength;
    double p = sInputStart;
    int64_t t = 0;
    for (;;) {
        const double v = SpeedAt(t);
        double fDistance = v > 0 ? fEnd - p : p;
        if (t >= nRampFrames) {
            if (std::fabs(v) < 1e-9)
                return INT32_MAX;
            fDistance = std::max(0.0, fDistance);
            return static_cast<int32_t>(std::min<double>(INT32_MAX, t + std::ceil(fDistance / std::fabs(v))));
        }
        const double fStep = v * nHop;
        if (v != 0 && std::fabs(fStep) >= fDistance)
            return static_cast<int32_t>(t + std::max(0.0, std::ceil(fDistance / std::fabs(v))));
        p += fStep;
        t += nHop;
        if (t >= INT32_MAX)
            return INT32_MAX;
    }
}

void LSRCShuttle::ReadGrain(double fPos)
{
    const bool bBackward = SpeedAt(sHopStart) < 0;
    const int64_t sFloor = static_cast<int64_t>(std::floor(fPos));
    const int64_t sStart = bBackward ? sFloor - nGrain : sFloor;
    const int32_t nSkip = static_cast<int32_t>(std::clamp<int64_t>(-sStart, 0, nGrain));
    LZeroFrames(vGrain.data(), nSkip, nChans);
    if (nSkip < nGrain) {
        if (sStart + nSkip >= INT32_MAX) {
            LZeroFrames(vGrain.data(), nGrain, nChans);
        } else {
            pInput->SetPosition(static_cast<int32_t>(sStart + nSkip));
            pInput->Read(vGrain.data() + static_cast<size_t>(nSkip) * nChans, nGrain - nSkip);
        }
    }
    if (bBackward)
        for (int32_t a = 0, b = nGrain - 1; a < b; ++a, --b)
            std::swap_ranges(vGrain.begin() + static_cast<ptrdiff_t>(a) * nChans,
                             vGrain.begin() + static_cast<ptrdiff_t>(a + 1) * nChans,
                             vGrain.begin() + static_cast<ptrdiff_t>(b) * nChans);
}

// The first hop after a start or seek has no grain before it: its own head stands in, so the
// output begins at full level instead of fading in.
void LSRCShuttle::Prime(double fPos)
{
    ReadGrain(fPos);
    for (int32_t i = 0; i < nHop; ++i)
        for (uint8_t c = 0; c < nChans; ++c) {
            const size_t k = static_cast<size_t>(i) * nChans + c;
            vTail[k] = LMulGain824(vGrain[k], kGainUnity - vWindow[i]);
        }
}

void LSRCShuttle::NextHop()
{
    ReadGrain(fReadPos);
    const size_t nHalf = static_cast<size_t>(nHop) * nChans;
    for (int32_t i = 0; i < nHop; ++i) {
        const int32_t wUp = vWindow[i];
        const int32_t wDown = kGainUnity - wUp;
        for (uint8_t c = 0; c < nChans; ++c) {
            const size_t k = static_cast<size_t>(i) * nChans + c;
            vHopOut[k] = LWrapAdd(vTail[k], LMulGain824(vGrain[k], wUp));
            vTail[k] = LMulGain824(vGrain[nHalf + k], wDown);
        }
    }
    fReadPos += SpeedAt(sHopStart) * nHop;
    nHopRead = 0;
    Publish();
}

void LSRCShuttle::Publish()
{
    const double fClamped = std::clamp<double>(std::round(fReadPos), 0, sInputLength);
    sPublishedInput.store(static_cast<int32_t>(fClamped), std::memory_order_relaxed);
}

void LSRCShuttle::SetPosition(int32_t sPosition)
{
    const int64_t s = std::clamp<int64_t>(sPosition, 0, sOutLength);
    double p = sInputStart;
    int64_t t = 0;
    while (t + nHop <= s) {
        p += SpeedAt(t) * nHop;
        t += nHop;
    }
    sHopStart = t;
    fReadPos = p;
    Prime(p);
    NextHop();
    nHopRead = static_cast<int32_t>(s - t);
    sOutPosition = static_cast<int32_t>(s);
}

void LSRCShuttle::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        return;
    }
    while (nFrames > 0) {
        if (nHopRead >= nHop) {
            sHopStart += nHop;
            NextHop();
        }
        const int32_t n = std::min(nFrames, nHop - nHopRead);
        std::copy_n(vHopOut.begin() + static_cast<ptrdiff_t>(nHopRead) * nChans, static_cast<size_t>(n) * nChans,
                    pBuffer);
        pBuffer += static_cast<size_t>(n) * nChans;
        nHopRead += n;
        nFrames -= n;
        sOutPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sOutPosition) + n, INT32_MAX));
    }
}

int32_t LSRCShuttle::GetInputPosition() const
{
    return sPublishedInput.load(std::memory_order_relaxed);
}

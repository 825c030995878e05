#include "dsp/LSRCTimeStretch.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/LTrace.h"

namespace {
// Frames read from the input at a time.
constexpr int32_t kReadBlock = 4096;
// The coarse search runs on the channel sum decimated to about this rate, then refines at the
// full rate around the best coarse match.
constexpr int32_t kSearchRate = 11025;

inline int32_t ToSample(float f)
{
    return static_cast<int32_t>(std::lrintf(std::clamp(f, -2147483520.0f, 2147483520.0f)));
}

float Dot(const float* pA, const float* pB, int32_t n)
{
    float s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        s0 += pA[i] * pB[i];
        s1 += pA[i + 1] * pB[i + 1];
        s2 += pA[i + 2] * pB[i + 2];
        s3 += pA[i + 3] * pB[i + 3];
    }
    for (; i < n; ++i)
        s0 += pA[i] * pB[i];
    return (s0 + s1) + (s2 + s3);
}
} // namespace

struct LSRCTimeStretch::Impl
{
    uint8_t nChans = 1;
    int64_t nNum = 1;
    int64_t nDen = 1;
    int32_t nHop = 1;     // output hop
    int32_t nOverlap = 1; // the cross-fade between neighbouring grains
    int32_t nGrain = 2;   // hop plus cross-fade
    int32_t nDecim = 1;  // decimation of the coarse search
    int32_t nSearch = 0; // search span each side of the nominal time, a multiple of nDecim
    std::vector<float> vWindow;

    // Input frames [sBufStart, sBufStart + nValid) per channel, and their sum.
    int32_t nCapacity = 0;
    std::vector<float> vIn;
    std::vector<float> vMix;
    int64_t sBufStart = 0;
    int32_t nValid = 0;
    int64_t sInputNext = 0;
    std::vector<int32_t> vRead;

    // The grain sequence: grain k starts at nominal input time Nominal(k).
    int64_t sOutOrigin = 0;
    int64_t sInOrigin = 0;
    int64_t k = 0;
    int64_t qPrev = 0;
    std::vector<float> vAcc;

    // Finished output frames waiting to be read.
    std::vector<int32_t> vReady;
    int32_t nReadyPos = 0;
    int32_t nReadyCount = 0;
    int64_t sPosition = 0;

    // Scratch of the coarse search.
    std::vector<float> vTarget;
    std::vector<float> vCand;

    void Setup(int32_t nRate);
    void Restart(int64_t sOut);
    int64_t Nominal(int64_t kGrain) const { return sInOrigin + kGrain * nHop * nNum / nDen - nOverlap; }
    float* Chan(uint8_t c) { return vIn.data() + static_cast<size_t>(c) * nCapacity; }
    const float* MixAt(int64_t s) const { return vMix.data() + (s - sBufStart); }
    void Ensure(LSoundSourceBase* pIn, int64_t sFrom, int64_t sTo);
    void Append(LSoundSourceBase* pIn, int32_t nFrames);
    int64_t Search(int64_t sNominal, int64_t sTarget);
    void ProduceGrain(LSoundSourceBase* pIn);
};

void LSRCTimeStretch::Impl::Setup(int32_t nRate)
{
    nDecim = std::max(1, nRate / kSearchRate);
    auto Frames = [nRate](int32_t nMs) { return static_cast<int32_t>(static_cast<int64_t>(nRate) * nMs / 1000); };
    nOverlap = std::max(nDecim, Frames(kOverlapMs) / nDecim * nDecim);
    nHop = std::max(nOverlap, Frames(kHopMs));
    nGrain = nHop + nOverlap;
    nSearch = Frames(kSearchMs) / nDecim * nDecim;
    // Flat in the middle, raised-cosine edges: a falling edge and the next grain's rising edge
    // sum to exactly one.
    vWindow.assign(nGrain, 1.0f);
    for (int32_t n = 0; n < nOverlap; ++n) {
        const double fRise = 0.5 - 0.5 * std::cos(M_PI * (n + 0.5) / nOverlap);
        vWindow[n] = static_cast<float>(fRise);
        vWindow[nHop + n] = static_cast<float>(1.0 - fRise);
    }
    // The widest span one grain needs: its search range, the previous grain's tail and a read.
    const int64_t nAnalysisHop = (nHop * nNum + nDen - 1) / nDen;
    nCapacity = static_cast<int32_t>(2 * nSearch + nGrain + nAnalysisHop + nHop + kReadBlock + 16);
    vIn.assign(static_cast<size_t>(nCapacity) * nChans, 0.0f);
    vMix.assign(nCapacity, 0.0f);
    vRead.assign(static_cast<size_t>(kReadBlock) * nChans, 0);
    vAcc.assign(static_cast<size_t>(nGrain) * nChans, 0.0f);
    vReady.assign(static_cast<size_t>(nHop) * nChans, 0);
    vTarget.assign(nOverlap / nDecim, 0.0f);
    vCand.assign((2 * nSearch + nOverlap) / nDecim + 1, 0.0f);
}

void LSRCTimeStretch::Impl::Restart(int64_t sOut)
{
    sPosition = sOut;
    sOutOrigin = sOut;
    sInOrigin = sOut * nNum / nDen;
    k = 0;
    qPrev = Nominal(0);
    std::fill(vAcc.begin(), vAcc.end(), 0.0f);
    nReadyPos = nReadyCount = 0;
    sBufStart = Nominal(0);
    nValid = 0;
    sInputNext = std::max<int64_t>(0, sBufStart);
}

// Makes the buffer hold input frames [sFrom, sTo), dropping what lies before sFrom.
void LSRCTimeStretch::Impl::Ensure(LSoundSourceBase* pIn, int64_t sFrom, int64_t sTo)
{
    if (sFrom > sBufStart) {
        const int64_t nDrop = sFrom - sBufStart;
        const int32_t nKeep = static_cast<int32_t>(std::max<int64_t>(0, nValid - nDrop));
        if (nKeep > 0) {
            for (uint8_t c = 0; c < nChans; ++c)
                std::memmove(Chan(c), Chan(c) + nDrop, nKeep * sizeof(float));
            std::memmove(vMix.data(), vMix.data() + nDrop, nKeep * sizeof(float));
        }
        sBufStart = sFrom;
        nValid = nKeep;
    }
    while (sBufStart + nValid < sTo)
        Append(pIn, std::min(kReadBlock, nCapacity - nValid));
}

void LSRCTimeStretch::Impl::Append(LSoundSourceBase* pIn, int32_t nFrames)
{
    const int64_t sAt = sBufStart + nValid;
    // Time before the input's start reads as silence.
    const int32_t nZeros = static_cast<int32_t>(std::clamp<int64_t>(-sAt, 0, nFrames));
    for (uint8_t c = 0; c < nChans; ++c)
        std::fill(Chan(c) + nValid, Chan(c) + nValid + nZeros, 0.0f);
    std::fill(vMix.data() + nValid, vMix.data() + nValid + nZeros, 0.0f);
    nValid += nZeros;
    const int32_t nFromInput = nFrames - nZeros;
    if (nFromInput <= 0)
        return;
    // A fast speed skips input between grains: it is read and passed over.
    while (sInputNext < sAt + nZeros) {
        const int32_t nSkip = static_cast<int32_t>(std::min<int64_t>(kReadBlock, sAt + nZeros - sInputNext));
        pIn->Read(vRead.data(), nSkip);
        sInputNext += nSkip;
    }
    pIn->Read(vRead.data(), nFromInput);
    sInputNext += nFromInput;
    float* pMix = vMix.data() + nValid;
    std::fill(pMix, pMix + nFromInput, 0.0f);
    for (uint8_t c = 0; c < nChans; ++c) {
        float* pDst = Chan(c) + nValid;
        const int32_t* pSrc = vRead.data() + c;
        for (int32_t i = 0; i < nFromInput; ++i) {
            pDst[i] = static_cast<float>(pSrc[static_cast<size_t>(i) * nChans]);
            pMix[i] += pDst[i];
        }
    }
    nValid += nFromInput;
}

// The grain start within nSearch of sNominal whose rising edge best matches the input that
// naturally follows the previous grain (starting at sTarget), by normalised correlation.
int64_t LSRCTimeStretch::Impl::Search(int64_t sNominal, int64_t sTarget)
{
    const int64_t sLow = sNominal - nSearch;
    const int32_t nCoarse = nOverlap / nDecim;
    const int32_t nCands = 2 * nSearch / nDecim + 1;
    const float* pTarget = MixAt(sTarget);
    const float* pLow = MixAt(sLow);
    for (int32_t m = 0; m < nCoarse; ++m) {
        float f = 0;
        for (int32_t j = 0; j < nDecim; ++j)
            f += pTarget[m * nDecim + j];
        vTarget[m] = f;
    }
    const int32_t nCandLen = nCands - 1 + nCoarse;
    for (int32_t m = 0; m < nCandLen; ++m) {
        float f = 0;
        for (int32_t j = 0; j < nDecim; ++j)
            f += pLow[m * nDecim + j];
        vCand[m] = f;
    }
    double fEnergy = 0;
    for (int32_t m = 0; m < nCoarse; ++m)
        fEnergy += static_cast<double>(vCand[m]) * vCand[m];
    // Ties and silence keep the nominal time.
    int32_t jBest = nSearch / nDecim;
    double fBest = -1e300;
    for (int32_t j = 0; j < nCands; ++j) {
        if (j > 0) {
            const double fOld = vCand[j - 1];
            const double fNew = vCand[j - 1 + nCoarse];
            fEnergy = std::max(0.0, fEnergy - fOld * fOld + fNew * fNew);
        }
        const double fScore = Dot(vTarget.data(), vCand.data() + j, nCoarse) / std::sqrt(fEnergy + 1.0);
        if (fScore > fBest || (fScore == fBest && j == nSearch / nDecim)) {
            fBest = fScore;
            jBest = j;
        }
    }
    int64_t sBest = sLow + static_cast<int64_t>(jBest) * nDecim;
    if (nDecim == 1)
        return sBest;
    const int64_t sFrom = std::max(sLow, sBest - nDecim + 1);
    const int64_t sTo = std::min(sLow + 2 * nSearch, sBest + nDecim - 1);
    fBest = -1e300;
    for (int64_t s = sFrom; s <= sTo; ++s) {
        const float* pCand = MixAt(s);
        const double fScore =
            Dot(pTarget, pCand, nOverlap) / std::sqrt(static_cast<double>(Dot(pCand, pCand, nOverlap)) + 1.0);
        if (fScore > fBest) {
            fBest = fScore;
            sBest = s;
        }
    }
    return sBest;
}

void LSRCTimeStretch::Impl::ProduceGrain(LSoundSourceBase* pIn)
{
    const int64_t sNominal = Nominal(k);
    int64_t q = sNominal;
    if (k > 0) {
        const int64_t sTarget = qPrev + nHop;
        Ensure(pIn, std::min(sNominal - nSearch, sTarget), std::max(sNominal + nSearch + nGrain, sTarget + nOverlap));
        q = Search(sNominal, sTarget);
    } else {
        Ensure(pIn, sNominal, sNominal + nGrain);
    }
    for (uint8_t c = 0; c < nChans; ++c) {
        float* pAcc = vAcc.data() + static_cast<size_t>(c) * nGrain;
        const float* pSrc = Chan(c) + (q - sBufStart);
        for (int32_t n = 0; n < nGrain; ++n)
            pAcc[n] += vWindow[n] * pSrc[n];
    }
    // One hop is finished: the next grain starts where this one begins to fall.
    for (uint8_t c = 0; c < nChans; ++c) {
        float* pAcc = vAcc.data() + static_cast<size_t>(c) * nGrain;
        for (int32_t n = 0; n < nHop; ++n)
            vReady[static_cast<size_t>(n) * nChans + c] = ToSample(pAcc[n]);
        std::memmove(pAcc, pAcc + nHop, nOverlap * sizeof(float));
        std::fill(pAcc + nOverlap, pAcc + nGrain, 0.0f);
    }
    // The first grain's rising edge lies before the origin and is dropped.
    nReadyPos = k == 0 ? nOverlap : 0;
    nReadyCount = nHop;
    qPrev = q;
    ++k;
}

LSRCTimeStretch::LSRCTimeStretch(LSoundSourceBase* pIn, int32_t nSpeedNum, int32_t nSpeedDen)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(),
                       pIn->GetMaxAmplitude() <= 0x100000 ? pIn->GetMaxAmplitude() * 2 : pIn->GetMaxAmplitude()),
      pInput(pIn), pImpl(std::make_unique<Impl>())
{
    if (pIn->IsError())
        SetError();
    if (nSpeedNum <= 0 || nSpeedDen <= 0 || static_cast<int64_t>(nSpeedNum) > 100LL * nSpeedDen ||
        100LL * nSpeedNum < nSpeedDen) {
        LTRACE("LSRCTimeStretch::LSRCTimeStretch speed %d/%d out of range", nSpeedNum, nSpeedDen);
        SetError();
    }
    Impl& im = *pImpl;
    im.nChans = nChans;
    if (IsError())
        return;
    im.nNum = nSpeedNum;
    im.nDen = nSpeedDen;
    im.Setup(nSampleRate);
    im.Restart(0);
}

LSRCTimeStretch::~LSRCTimeStretch() = default;

void LSRCTimeStretch::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    Impl& im = *pImpl;
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        im.sPosition += nFrames;
        return;
    }
    int32_t nDone = 0;
    while (nDone < nFrames) {
        if (im.nReadyPos == im.nReadyCount) {
            im.ProduceGrain(pInput.Get());
            continue;
        }
        const int32_t n = std::min(nFrames - nDone, im.nReadyCount - im.nReadyPos);
        std::memcpy(pBuffer + static_cast<size_t>(nDone) * nChans,
                    im.vReady.data() + static_cast<size_t>(im.nReadyPos) * nChans, sizeof(int32_t) * n * nChans);
        im.nReadyPos += n;
        nDone += n;
    }
    im.sPosition += nFrames;
}

int32_t LSRCTimeStretch::GetPosition()
{
    return static_cast<int32_t>(std::min<int64_t>(pImpl->sPosition, INT32_MAX));
}

int32_t LSRCTimeStretch::GetLength()
{
    const Impl& im = *pImpl;
    if (IsError())
        return pInput->GetLength();
    const int64_t nLength = (static_cast<int64_t>(pInput->GetLength()) * im.nDen + im.nNum / 2) / im.nNum;
    return static_cast<int32_t>(std::clamp<int64_t>(nLength, 0, INT32_MAX));
}

void LSRCTimeStretch::SetPosition(int32_t sPosition)
{
    Impl& im = *pImpl;
    sPosition = std::max(sPosition, 0);
    if (IsError()) {
        im.sPosition = sPosition;
        return;
    }
    im.Restart(sPosition);
    pInput->SetPosition(static_cast<int32_t>(std::min<int64_t>(im.sInputNext, INT32_MAX)));
}

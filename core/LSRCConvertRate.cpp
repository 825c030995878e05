#include "core/LSRCConvertRate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "core/LTrace.h"

namespace {

// Kaiser window shape for a little over 90 dB of stopband, the margin left for the
// single-precision dot product and the interpolated phase table.
constexpr double kKaiserBeta = 9.25;
// Cut-off as a fraction of the lower rate's Nyquist frequency: the middle of the transition
// band, so that the stopband begins at the Nyquist frequency itself.
constexpr double kCutoffFraction = 0.955;
// Phase tables larger than this (in coefficients) are replaced by a coarser table whose
// neighbouring phases are interpolated linearly (an error far below the stopband).
constexpr int64_t kTableBudget = 1 << 18;
constexpr int32_t kMinInterpolatedPhases = 256;
// Dot products run over whole blocks of this many taps (the rows are padded with zeros).
constexpr int32_t kTapAlign = 16;

typedef float LVec4 __attribute__((vector_size(16), aligned(4), may_alias));
typedef float LVec8 __attribute__((vector_size(32), aligned(4), may_alias));

float DotSse(const float* pA, const float* pB, int32_t n)
{
    LVec4 s0 = {0, 0, 0, 0};
    LVec4 s1 = s0, s2 = s0, s3 = s0;
    for (int32_t k = 0; k < n; k += kTapAlign) {
        s0 += *reinterpret_cast<const LVec4*>(pA + k) * *reinterpret_cast<const LVec4*>(pB + k);
        s1 += *reinterpret_cast<const LVec4*>(pA + k + 4) * *reinterpret_cast<const LVec4*>(pB + k + 4);
        s2 += *reinterpret_cast<const LVec4*>(pA + k + 8) * *reinterpret_cast<const LVec4*>(pB + k + 8);
        s3 += *reinterpret_cast<const LVec4*>(pA + k + 12) * *reinterpret_cast<const LVec4*>(pB + k + 12);
    }
    s0 += s1;
    s2 += s3;
    s0 += s2;
    return (s0[0] + s0[1]) + (s0[2] + s0[3]);
}

// The same with eight lanes and fused multiply-adds, for processors that have them.
__attribute__((target("avx2,fma"))) float DotAvx(const float* pA, const float* pB, int32_t n)
{
    LVec8 s0 = {0, 0, 0, 0, 0, 0, 0, 0};
    LVec8 s1 = s0;
    for (int32_t k = 0; k < n; k += kTapAlign) {
        s0 += *reinterpret_cast<const LVec8*>(pA + k) * *reinterpret_cast<const LVec8*>(pB + k);
        s1 += *reinterpret_cast<const LVec8*>(pA + k + 8) * *reinterpret_cast<const LVec8*>(pB + k + 8);
    }
    s0 += s1;
    return ((s0[0] + s0[1]) + (s0[2] + s0[3])) + ((s0[4] + s0[5]) + (s0[6] + s0[7]));
}

// A symmetric kernel of 2 nHalf taps (the last one zero) folded about its centre tap
// nHalf - 1: pFold holds its first nHalf taps, the centre halved, and pIn[k] pairs with
// pIn[2 nHalf - 2 - k]. Half the multiplications of the plain dot product.
float FoldedSse(const float* pFold, const float* pIn, int32_t nHalf)
{
    const float* pBack = pIn + 2 * nHalf - 2;
    LVec4 s0 = {0, 0, 0, 0};
    LVec4 s1 = s0;
    for (int32_t k = 0; k < nHalf; k += 8) {
        const LVec4 b0 = *reinterpret_cast<const LVec4*>(pBack - k - 3);
        const LVec4 b1 = *reinterpret_cast<const LVec4*>(pBack - k - 7);
        s0 += *reinterpret_cast<const LVec4*>(pFold + k) *
              (*reinterpret_cast<const LVec4*>(pIn + k) + __builtin_shufflevector(b0, b0, 3, 2, 1, 0));
        s1 += *reinterpret_cast<const LVec4*>(pFold + k + 4) *
              (*reinterpret_cast<const LVec4*>(pIn + k + 4) + __builtin_shufflevector(b1, b1, 3, 2, 1, 0));
    }
    s0 += s1;
    return (s0[0] + s0[1]) + (s0[2] + s0[3]);
}

__attribute__((target("avx2,fma"))) float FoldedAvx(const float* pFold, const float* pIn, int32_t nHalf)
{
    const float* pBack = pIn + 2 * nHalf - 2;
    LVec8 s0 = {0, 0, 0, 0, 0, 0, 0, 0};
    LVec8 s1 = s0;
    for (int32_t k = 0; k < nHalf; k += 16) {
        const LVec8 b0 = *reinterpret_cast<const LVec8*>(pBack - k - 7);
        const LVec8 b1 = *reinterpret_cast<const LVec8*>(pBack - k - 15);
        s0 += *reinterpret_cast<const LVec8*>(pFold + k) *
              (*reinterpret_cast<const LVec8*>(pIn + k) + __builtin_shufflevector(b0, b0, 7, 6, 5, 4, 3, 2, 1, 0));
        s1 += *reinterpret_cast<const LVec8*>(pFold + k + 8) *
              (*reinterpret_cast<const LVec8*>(pIn + k + 8) + __builtin_shufflevector(b1, b1, 7, 6, 5, 4, 3, 2, 1, 0));
    }
    s0 += s1;
    return ((s0[0] + s0[1]) + (s0[2] + s0[3])) + ((s0[4] + s0[5]) + (s0[6] + s0[7]));
}

// Both channels of a stereo frame over one walk of the folded kernel: each channel's sums are
// formed exactly as FoldedAvx forms them, so each result is the same to the last bit.
__attribute__((target("avx2,fma"))) void FoldedPairAvx(const float* pFold, const float* pInL, const float* pInR,
                                                       int32_t nHalf, float* pOut)
{
    const float* pBackL = pInL + 2 * nHalf - 2;
    const float* pBackR = pInR + 2 * nHalf - 2;
    LVec8 s0 = {0, 0, 0, 0, 0, 0, 0, 0};
    LVec8 s1 = s0, r0 = s0, r1 = s0;
    for (int32_t k = 0; k < nHalf; k += 16) {
        const LVec8 f0 = *reinterpret_cast<const LVec8*>(pFold + k);
        const LVec8 f1 = *reinterpret_cast<const LVec8*>(pFold + k + 8);
        const LVec8 b0 = *reinterpret_cast<const LVec8*>(pBackL - k - 7);
        const LVec8 b1 = *reinterpret_cast<const LVec8*>(pBackL - k - 15);
        s0 += f0 * (*reinterpret_cast<const LVec8*>(pInL + k) + __builtin_shufflevector(b0, b0, 7, 6, 5, 4, 3, 2, 1, 0));
        s1 += f1 * (*reinterpret_cast<const LVec8*>(pInL + k + 8) + __builtin_shufflevector(b1, b1, 7, 6, 5, 4, 3, 2, 1, 0));
        const LVec8 c0 = *reinterpret_cast<const LVec8*>(pBackR - k - 7);
        const LVec8 c1 = *reinterpret_cast<const LVec8*>(pBackR - k - 15);
        r0 += f0 * (*reinterpret_cast<const LVec8*>(pInR + k) + __builtin_shufflevector(c0, c0, 7, 6, 5, 4, 3, 2, 1, 0));
        r1 += f1 * (*reinterpret_cast<const LVec8*>(pInR + k + 8) + __builtin_shufflevector(c1, c1, 7, 6, 5, 4, 3, 2, 1, 0));
    }
    s0 += s1;
    r0 += r1;
    pOut[0] = ((s0[0] + s0[1]) + (s0[2] + s0[3])) + ((s0[4] + s0[5]) + (s0[6] + s0[7]));
    pOut[1] = ((r0[0] + r0[1]) + (r0[2] + r0[3])) + ((r0[4] + r0[5]) + (r0[6] + r0[7]));
}

using LDotFn = float (*)(const float*, const float*, int32_t);

LDotFn ChooseDot()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? DotAvx : DotSse;
}

const LDotFn Dot = ChooseDot();
const LDotFn Folded = Dot == DotAvx ? FoldedAvx : FoldedSse;
const bool bFoldedPair = Dot == DotAvx;

inline int32_t ToSample(float f)
{
    // Clamped first: converting an out-of-range float to an integer is undefined.
    const float fClamped = std::clamp(f, -2147483520.0f, 2147483520.0f);
#if defined(__SSE2__)
    // Rounds to nearest, ties to even, as lrintf does, inline instead of a library call per sample.
    return _mm_cvtss_si32(_mm_set_ss(fClamped));
#else
    return static_cast<int32_t>(std::lrintf(fClamped));
#endif
}

double BesselI0(double x)
{
    double fSum = 1.0;
    double fTerm = 1.0;
    const double fQuarter = x * x / 4.0;
    for (int k = 1; k < 64 && fTerm > fSum * 1e-17; ++k) {
        fTerm *= fQuarter / (static_cast<double>(k) * k);
        fSum += fTerm;
    }
    return fSum;
}

// Windowed sinc at distance x input frames from the output instant.
double Kernel(double x, double fCutoff, double fHalfWidth)
{
    if (std::fabs(x) >= fHalfWidth)
        return 0.0;
    const double fArg = 2.0 * fCutoff * x;
    const double fSinc = fArg == 0.0 ? 1.0 : std::sin(M_PI * fArg) / (M_PI * fArg);
    const double fRel = x / fHalfWidth;
    const double fWindow = BesselI0(kKaiserBeta * std::sqrt(1.0 - fRel * fRel)) / BesselI0(kKaiserBeta);
    return 2.0 * fCutoff * fSinc * fWindow;
}

} // namespace

struct LSRCConvertRate::State
{
    bool bPassThrough = false;
    // Output frame n lies at input time n x nDown / nUp.
    int64_t nUp = 1;
    int64_t nDown = 1;
    int64_t nStepInt = 1;
    int64_t nStepRem = 0;
    // Kernel: nTaps coefficients per phase, stored nTapsPadded apart.
    int32_t nHalf = 0;
    int32_t nTaps = 0;
    int32_t nTapsPadded = 0;
    int32_t nPhases = 0;
    bool bExact = true;
    // An integer step down uses one phase, whose kernel is symmetric: it is folded.
    bool bFolded = false;
    std::vector<float> vFold;
    double fPhaseScale = 1.0;
    std::vector<float> vTable;
    // One float window of input per channel, nCapacity frames each.
    int32_t nCapacity = 0;
    std::vector<float> vWindow;
    std::vector<int32_t> vRead;
    int64_t sWindowStart = 0;
    int32_t nWindowValid = 0;
    int64_t sInputNext = 0;
    // Output position and the input frame and phase it maps to.
    int64_t sPosition = 0;
    int64_t iInput = 0;
    int64_t nPhase = 0;

    void Design(int32_t nInRate, int32_t nOutRate);
    void Restart(int64_t sOutput);
    void Fill(LSoundSourceBase* pIn, uint8_t nChans, int64_t sFirst, int64_t sLast);
    void AppendBlock(LSoundSourceBase* pIn, uint8_t nChans);
    void Advance();
    float Interpolate(const float* pIn) const;
};

void LSRCConvertRate::State::Design(int32_t nInRate, int32_t nOutRate)
{
    const int64_t nGcd = std::gcd(nInRate, nOutRate);
    nUp = nOutRate / nGcd;
    nDown = nInRate / nGcd;
    nStepInt = nDown / nUp;
    nStepRem = nDown % nUp;

    const double fStretch = std::max(1.0, static_cast<double>(nInRate) / nOutRate);
    const double fHalfWidth = (kFilterLength + 1) / 2 * kKernelScale * fStretch;
    const double fCutoff = kCutoffFraction * 0.5 * std::min(nInRate, nOutRate) / nInRate;
    nHalf = static_cast<int32_t>(std::ceil(fHalfWidth));
    nTaps = 2 * nHalf;
    nTapsPadded = (nTaps + kTapAlign - 1) / kTapAlign * kTapAlign;

    bExact = nUp * nTapsPadded <= kTableBudget;
    nPhases = bExact ? static_cast<int32_t>(nUp)
                     : std::max<int32_t>(kMinInterpolatedPhases, static_cast<int32_t>(kTableBudget / nTapsPadded));
    fPhaseScale = static_cast<double>(nPhases) / nUp;
    const int32_t nRows = bExact ? nPhases : nPhases + 1;
    vTable.assign(static_cast<size_t>(nRows) * nTapsPadded, 0.0f);
    std::vector<double> vRow(nTaps);
    for (int32_t p = 0; p < nRows; ++p) {
        const double fFrac = static_cast<double>(p) / nPhases;
        double fSum = 0.0;
        for (int32_t k = 0; k < nTaps; ++k) {
            vRow[k] = Kernel(fFrac + nHalf - 1 - k, fCutoff, fHalfWidth);
            fSum += vRow[k];
        }
        // Each phase sums to exactly one, so a constant passes at its own level.
        for (int32_t k = 0; k < nTaps; ++k)
            vTable[static_cast<size_t>(p) * nTapsPadded + k] = static_cast<float>(vRow[k] / fSum);
    }
    bFolded = nUp == 1 && nHalf % kTapAlign == 0;
    if (bFolded) {
        vFold.assign(vTable.begin(), vTable.begin() + nHalf);
        vFold[nHalf - 1] *= 0.5f;
    }
    nCapacity = nTaps + kInputBlockFrames + kTapAlign;
}

void LSRCConvertRate::State::Restart(int64_t sOutput)
{
    sPosition = sOutput;
    iInput = sOutput * nDown / nUp;
    nPhase = sOutput * nDown % nUp;
    // Frames before the first input frame read as zeros: the history starts out silent.
    sWindowStart = iInput - nHalf + 1;
    sInputNext = sWindowStart;
    nWindowValid = 0;
}

// Makes the window hold input frames sFirst..sLast, keeping what is still needed.
void LSRCConvertRate::State::Fill(LSoundSourceBase* pIn, uint8_t nChans, int64_t sFirst, int64_t sLast)
{
    while (sLast >= sWindowStart + nWindowValid) {
        const int64_t sEnd = sWindowStart + nWindowValid;
        const int64_t sKeepFrom = std::max(sFirst, sWindowStart);
        const int32_t nKeep = static_cast<int32_t>(std::max<int64_t>(0, sEnd - sKeepFrom));
        if (nKeep > 0 && sKeepFrom > sWindowStart) {
            for (uint8_t c = 0; c < nChans; ++c) {
                float* pChan = vWindow.data() + static_cast<size_t>(c) * nCapacity;
                std::memmove(pChan, pChan + (sKeepFrom - sWindowStart), nKeep * sizeof(float));
            }
        }
        sWindowStart = sEnd - nKeep;
        nWindowValid = nKeep;
        AppendBlock(pIn, nChans);
    }
}

void LSRCConvertRate::State::AppendBlock(LSoundSourceBase* pIn, uint8_t nChans)
{
    const int32_t nZeros = static_cast<int32_t>(std::clamp<int64_t>(-sInputNext, 0, kInputBlockFrames));
    const int32_t nFromInput = kInputBlockFrames - nZeros;
    for (uint8_t c = 0; c < nChans; ++c) {
        float* pDst = vWindow.data() + static_cast<size_t>(c) * nCapacity + nWindowValid;
        std::fill(pDst, pDst + nZeros, 0.0f);
    }
    if (nFromInput > 0) {
        pIn->Read(vRead.data(), nFromInput);
        for (uint8_t c = 0; c < nChans; ++c) {
            float* pDst = vWindow.data() + static_cast<size_t>(c) * nCapacity + nWindowValid + nZeros;
            const int32_t* pSrc = vRead.data() + c;
            for (int32_t i = 0; i < nFromInput; ++i)
                pDst[i] = static_cast<float>(pSrc[static_cast<size_t>(i) * nChans]);
        }
    }
    nWindowValid += kInputBlockFrames;
    sInputNext += kInputBlockFrames;
}

void LSRCConvertRate::State::Advance()
{
    ++sPosition;
    iInput += nStepInt;
    nPhase += nStepRem;
    if (nPhase >= nUp) {
        nPhase -= nUp;
        ++iInput;
    }
}

float LSRCConvertRate::State::Interpolate(const float* pIn) const
{
    if (bFolded)
        return Folded(vFold.data(), pIn, nHalf);
    if (bExact)
        return Dot(vTable.data() + static_cast<size_t>(nPhase) * nTapsPadded, pIn, nTapsPadded);
    const double fPos = static_cast<double>(nPhase) * fPhaseScale;
    const int32_t iRow = static_cast<int32_t>(fPos);
    const float fFrac = static_cast<float>(fPos - iRow);
    const float* pRow = vTable.data() + static_cast<size_t>(iRow) * nTapsPadded;
    const float f0 = Dot(pRow, pIn, nTapsPadded);
    const float f1 = Dot(pRow + nTapsPadded, pIn, nTapsPadded);
    return f0 + fFrac * (f1 - f0);
}

LSRCConvertRate::LSRCConvertRate(LSoundSourceBase* pIn, int32_t nTargetRate)
    : LSoundSourceBase(nTargetRate < 1 ? 44100 : nTargetRate, pIn->GetChannels(),
                       pIn->GetMaxAmplitude() <= 0x100000 ? pIn->GetMaxAmplitude() * 2 : pIn->GetMaxAmplitude()),
      pInput(pIn), pState(std::make_unique<State>())
{
    if (nTargetRate < 1) {
        LTRACE("LSRCConvertRate::LSRCConvertRate target rate < 1");
        SetError();
    }
    if (pIn->IsError())
        SetError();
    if (nChans != 1 && nChans != 2)
        LTRACE("Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set");
    State& st = *pState;
    st.bPassThrough = pIn->GetSampleRate() == nSampleRate;
    if (IsError() || st.bPassThrough)
        return;
    st.Design(pIn->GetSampleRate(), nSampleRate);
    st.vWindow.assign(static_cast<size_t>(st.nCapacity) * nChans, 0.0f);
    st.vRead.assign(static_cast<size_t>(kInputBlockFrames) * nChans, 0);
    st.Restart(0);
}

LSRCConvertRate::~LSRCConvertRate() = default;

void LSRCConvertRate::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    State& st = *pState;
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        st.sPosition += nFrames;
        return;
    }
    if (st.bPassThrough) {
        pInput->Read(pBuffer, nFrames);
        st.sPosition += nFrames;
        return;
    }
    for (int32_t f = 0; f < nFrames; ++f) {
        const int64_t sFirst = st.iInput - st.nHalf + 1;
        if (sFirst + st.nTaps - 1 >= st.sWindowStart + st.nWindowValid)
            st.Fill(pInput.Get(), nChans, sFirst, sFirst + st.nTaps - 1);
        const float* pIn = st.vWindow.data() + (sFirst - st.sWindowStart);
        int32_t* pOut = pBuffer + static_cast<size_t>(f) * nChans;
        if (st.bFolded && nChans == 2 && bFoldedPair) {
            float aOut[2];
            FoldedPairAvx(st.vFold.data(), pIn, pIn + st.nCapacity, st.nHalf, aOut);
            pOut[0] = ToSample(aOut[0]);
            pOut[1] = ToSample(aOut[1]);
        } else {
            for (uint8_t c = 0; c < nChans; ++c)
                pOut[c] = ToSample(st.Interpolate(pIn + static_cast<size_t>(c) * st.nCapacity));
        }
        st.Advance();
    }
}

int32_t LSRCConvertRate::GetPosition()
{
    return static_cast<int32_t>(std::min<int64_t>(pState->sPosition, INT32_MAX));
}

int32_t LSRCConvertRate::GetLength()
{
    return AtOutputRate(pInput->GetLength());
}

int32_t LSRCConvertRate::GetLengthInFile()
{
    return AtOutputRate(pInput->GetLengthInFile());
}

int32_t LSRCConvertRate::AtOutputRate(int32_t nInputFrames) const
{
    const int64_t nLength = static_cast<int64_t>(nInputFrames) * nSampleRate / pInput->GetSampleRate();
    return static_cast<int32_t>(std::clamp<int64_t>(nLength, 0, INT32_MAX));
}

void LSRCConvertRate::SetPosition(int32_t sPosition)
{
    State& st = *pState;
    sPosition = std::max(sPosition, 0);
    if (IsError() || st.bPassThrough) {
        st.sPosition = sPosition;
        if (st.bPassThrough)
            pInput->SetPosition(sPosition);
        return;
    }
    st.Restart(sPosition);
    pInput->SetPosition(static_cast<int32_t>(std::max<int64_t>(0, st.sWindowStart)));
}

#include "dsp/LSRCCompressor.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/LFixed.h"
#include "core/LTrace.h"

namespace {

// Extended-precision reciprocal of 8388626: the mean square that reads as 0 dB.
constexpr long double kLevelScale = 1.1920903375594525e-07L;
constexpr long double kLevelZero = 8388626.0L;
// -1 dB per dB above the limit.
constexpr double kLimitFactor = 0.8913;

int32_t ToGain(double f)
{
    // Clamped first: a converted value outside 32 bits would be undefined.
    return static_cast<int32_t>(std::clamp(f, -2147483648.0, 2147483647.0));
}

int32_t Divide(int64_t nNum, int64_t nDen)
{
    return static_cast<int32_t>(std::clamp<int64_t>(nNum / nDen, INT32_MIN, INT32_MAX));
}

} // namespace

LSRCCompressor::LSRCCompressor(LSoundSourceBase* pIn, int32_t nThresholdDb, double fFactorPerDb, int32_t nBlockMs,
                               int32_t nLimitDb)
    : LSRCBlockOutput(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      aGains(BuildGainTable(nThresholdDb, fFactorPerDb, nLimitDb)), nBlock(BlockFrames(nBlockMs, pIn->GetSampleRate())),
      vCurrent(static_cast<size_t>(nBlock) * nChans), vNext(static_cast<size_t>(nBlock) * nChans)
{
    if (pIn->IsError()) {
        LTRACE("LSRCCompressor::LSRCCompressor input error");
        SetError();
        return;
    }
    sPosition = pIn->GetPosition();
    Prime();
}

LSRCCompressor::GainTable LSRCCompressor::BuildGainTable(int32_t nThresholdDb, double f, int32_t nLimitDb)
{
    const int32_t t = std::clamp(nThresholdDb, -127, 127);
    const int32_t l = std::clamp(nLimitDb, -127, 127);
    GainTable a{};
    double g = 16777216.0;
    if (t < 0)
        g = 16777216.0 / std::pow(f, -t); // a block at 0 dB comes out at unity: make-up gain
    int32_t i = 0;
    for (; i < t + 128; ++i)
        a[i] = ToGain(g);
    for (i = t + 128; i < l + 128; ++i) {
        a[i] = ToGain(g);
        g *= f;
    }
    for (i = l + 128; i < 256; ++i) {
        a[i] = ToGain(g);
        g *= kLimitFactor;
    }
    return a;
}

int32_t LSRCCompressor::BlockLevel(const int32_t* pSamples, int32_t nSamples)
{
    // Squares are summed in two exact parts: the bits above 13 and the 13 bits below.
    int64_t nHigh = 0;
    int64_t nLow = 0;
    for (int32_t i = 0; i < nSamples; ++i) {
        const int64_t s = pSamples[i] >> 5;
        const int64_t nSquare = s * s;
        nHigh += nSquare >> 13;
        nLow += nSquare & 8191;
    }
    if (nSamples <= 0 || (nHigh == 0 && nLow == 0))
        return -127;
    // The mean square with 13 fractional bits.
    const long double m = (static_cast<long double>(nHigh) + static_cast<long double>(nLow) / 8192.0L) / nSamples;
    if (m == 0.0L)
        return -127;
    long double fDb = 10.0L * std::log10(m * kLevelScale);
    fDb += m < kLevelZero ? -0.5L : 0.5L;
    return static_cast<int32_t>(std::clamp(fDb, -127.0L, 127.0L));
}

int32_t LSRCCompressor::BlockFrames(int32_t nMs, int32_t nRate)
{
    const int64_t n = static_cast<int64_t>(nMs / 1000) * nRate + static_cast<int64_t>(nMs % 1000) * nRate / 1000;
    return static_cast<int32_t>(std::clamp<int64_t>(n, kMinBlockFrames, kMaxBlockFrames));
}

int32_t LSRCCompressor::ReadBlockTarget(std::vector<int32_t>& vBlock)
{
    pInput->Read(vBlock.data(), nBlock);
    return aGains[BlockLevel(vBlock.data(), nBlock * nChans) + 128];
}

// A louder block coming gets a fast attack, reaching its target a quarter block after it
// begins; otherwise a slow release aims halfway between the two targets over two blocks.
void LSRCCompressor::AimAt(int32_t nTarget, int32_t nPrevious)
{
    if (nTarget < nGain)
        nSlope = Divide(static_cast<int64_t>(nTarget) - nGain, nBlock + nBlock / 4);
    else
        nSlope = Divide((static_cast<int64_t>(nTarget) + nPrevious) / 2 - nGain, 2 * nBlock);
}

void LSRCCompressor::Prime()
{
    const int32_t nTargetA = ReadBlockTarget(vCurrent);
    nPreviousTarget = nTargetA;
    nGain = nTargetA;
    nNextTarget = ReadBlockTarget(vNext);
    AimAt(nNextTarget, nPreviousTarget);
    nOutPos = 0;
}

void LSRCCompressor::NextBlock()
{
    vCurrent.swap(vNext);
    nPreviousTarget = nNextTarget;
    nNextTarget = ReadBlockTarget(vNext);
    AimAt(nNextTarget, nPreviousTarget);
    nOutPos = 0;
}

void LSRCCompressor::CopyWithGain(const int32_t* pIn, int32_t* pOut, int32_t nFrames)
{
    nGain = LApplyGainRamp(pIn, pOut, nFrames, nChans, nGain, nSlope);
}

void LSRCCompressor::HandOut(int32_t* pOut, int32_t nFrames)
{
    CopyWithGain(vCurrent.data() + static_cast<size_t>(nOutPos) * nChans, pOut, nFrames);
    nOutPos += nFrames;
}

void LSRCCompressor::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    if (IsError())
        return;
    pInput->SetPosition(sNewPosition);
    Prime();
}

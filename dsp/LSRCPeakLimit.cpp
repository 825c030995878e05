#include "dsp/LSRCPeakLimit.h"

#include <algorithm>
#include <cstring>

#include "core/LFixed.h"
#include "core/LSoundLimiter.h"
#include "core/LTrace.h"

LSRCPeakLimit::LSRCPeakLimit(LSoundSourceBase* pIn, int32_t nLim)
    : LSRCBlockOutput(pIn->GetSampleRate(), pIn->GetChannels(), std::clamp(nLim, 0, kMaxLimit)), pInput(pIn),
      nLimit(std::clamp(nLim, 0, kMaxLimit)), nBlock(BlockFrames(nSampleRate)),
      vOut(static_cast<size_t>(nBlock) * nChans), vNext(vOut.size()), vNewest(vOut.size())
{
    if (pIn->IsError()) {
        LTRACE("LSRCPeakLimit::LSRCPeakLimit input error");
        SetError();
    }
    sPosition = pIn->GetPosition();
}

int32_t LSRCPeakLimit::BlockFrames(int32_t nRate)
{
    return std::clamp(nRate / 35, kMinBlockFrames, kMaxBlockFrames);
}

int32_t LSRCPeakLimit::BlockGain(const int32_t* pSamples, int32_t nSamples, int32_t nLim)
{
    int32_t nMax = 0;
    int32_t nMin = 0;
    for (int32_t i = 0; i < nSamples; ++i) {
        nMax = std::max(nMax, pSamples[i]);
        nMin = std::min(nMin, pSamples[i]);
    }
    const int64_t nPeak = std::max<int64_t>(nMax, -static_cast<int64_t>(nMin));
    if (nPeak <= nLim)
        return kGainUnity;
    // L / P in 8.24, in steps that stay inside 32 bits.
    return static_cast<int32_t>((static_cast<int64_t>(nLim) * 512 / ((nPeak + 64) / 64)) * 512);
}

int32_t LSRCPeakLimit::ReadBlock(std::vector<int32_t>& vBlock)
{
    pInput->Read(vBlock.data(), nBlock);
    return BlockGain(vBlock.data(), nBlock * nChans, nLimit);
}

// The output block aims at the smaller of its own and the next block's gain (never above the
// average of the four), reached exactly on its last frame: the remainder is taken at once.
void LSRCPeakLimit::AimAtTarget()
{
    const int64_t nAverage = (static_cast<int64_t>(nGainDone) + nGainOut + nGainNext + nGainNewest) / 4;
    const int64_t nTarget = std::min<int64_t>(std::min(nGainOut, nGainNext), nAverage);
    const int64_t nDiff = nTarget - nGain;
    nDelta = static_cast<int32_t>(nDiff / nBlock);
    nGain = static_cast<int32_t>(nGain + nDiff % nBlock);
}

// Refills all three blocks from the input's position. Nothing came before, so the finished
// block counts as unity and the gain starts at unity unless the first block is already too loud.
void LSRCPeakLimit::Restart()
{
    LTRACE("LSRCPeakLimit::LSRCPeakLimit Restart");
    nGainDone = kGainUnity;
    nGainOut = ReadBlock(vOut);
    nGainNext = ReadBlock(vNext);
    nGainNewest = ReadBlock(vNewest);
    nGain = std::min(kGainUnity, nGainOut);
    AimAtTarget();
    nOutPos = 0;
    bRestart = false;
}

void LSRCPeakLimit::NextBlock()
{
    vOut.swap(vNext);
    vNext.swap(vNewest);
    nGainDone = nGainOut;
    nGainOut = nGainNext;
    nGainNext = nGainNewest;
    nGainNewest = ReadBlock(vNewest);
    AimAtTarget();
    nOutPos = 0;
}

void LSRCPeakLimit::CopyWithGain(const int32_t* pIn, int32_t* pOut, int32_t nFrames)
{
    const size_t nSamples = static_cast<size_t>(nFrames) * nChans;
    if (nGain >= kGainUnity && nDelta == 0) {
        std::memcpy(pOut, pIn, nSamples * sizeof(int32_t));
        return;
    }
    nGain = LApplyGainRamp(pIn, pOut, nFrames, nChans, nGain, nDelta);
}

void LSRCPeakLimit::BeforeRead()
{
    if (bRestart)
        Restart();
}

void LSRCPeakLimit::HandOut(int32_t* pOut, int32_t nFrames)
{
    CopyWithGain(vOut.data() + static_cast<size_t>(nOutPos) * nChans, pOut, nFrames);
    nOutPos += nFrames;
}

void LSRCPeakLimit::SetPosition(int32_t sNewPosition)
{
    LTRACE("LSRCPeakLimit::LSRCPeakLimit Seek");
    pInput->SetPosition(sNewPosition);
    sPosition = sNewPosition;
    bRestart = true;
}

namespace {
LSoundSourceBase* MakePeakLimit(LSoundSourceBase* pInput, int32_t nCeiling)
{
    return new LSRCPeakLimit(pInput, nCeiling);
}
} // namespace

// The pump finds the limiter through the stream layer; the build keeps this object linked in
// wherever the engine is (it names this symbol as undefined).
extern "C" const bool sonitra_peak_limit_registered = (LSoundLimiter::Register(&MakePeakLimit), true);

// Dynamic range compressor: measures each block's level, looks its target gain up in a table
// and glides the gain towards it frame by frame. The next block is read ahead, so the gain
// falls before a loud passage begins and the output is not delayed.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dsp/LSRCBlockOutput.h"

class LSRCCompressor : public LSRCBlockOutput
{
public:
    static constexpr int32_t kMinBlockFrames = 128;
    static constexpr int32_t kMaxBlockFrames = 8192;
    using GainTable = std::array<int32_t, 256>;

    // nThresholdDb and nLimitDb in -127..127; fFactorPerDb from CompressorRatioList.
    LSRCCompressor(LSoundSourceBase* pInput, int32_t nThresholdDb, double fFactorPerDb, int32_t nBlockMs,
                   int32_t nLimitDb);

    int32_t GetLength() override { return pInput->GetLength(); }
    void SetPosition(int32_t sNewPosition) override;

    int32_t GetBlockFrames() const { return nBlock; }
    const GainTable& GetGainTable() const { return aGains; }
    // The gain for the next frame and what is added to it after each frame (8.24).
    int32_t GetGain() const { return nGain; }
    int32_t GetSlope() const { return nSlope; }

    // Target gain (8.24) for each block level from -128 to 127 dB, index = level + 128.
    static GainTable BuildGainTable(int32_t nThresholdDb, double fFactorPerDb, int32_t nLimitDb);
    // Level in whole decibels (-127..127) of nSamples interleaved samples; silence is -127.
    static int32_t BlockLevel(const int32_t* pSamples, int32_t nSamples);
    // Frames in a block of nMs milliseconds, kept within 128..8192.
    static int32_t BlockFrames(int32_t nMs, int32_t nRate);

private:
    void Prime();
    int32_t FramesLeftInBlock() const override { return nBlock - nOutPos; }
    void NextBlock() override;
    void HandOut(int32_t* pOut, int32_t nFrames) override;
    int32_t ReadBlockTarget(std::vector<int32_t>& vBlock);
    void AimAt(int32_t nTarget, int32_t nPreviousTarget);
    void CopyWithGain(const int32_t* pIn, int32_t* pOut, int32_t nFrames);

    LSoundSourcePtr pInput;
    GainTable aGains{};
    int32_t nBlock;
    std::vector<int32_t> vCurrent;
    std::vector<int32_t> vNext;
    int32_t nOutPos = 0;
    int32_t nPreviousTarget = 0;
    int32_t nNextTarget = 0;
    int32_t nGain = 0;
    int32_t nSlope = 0;
};

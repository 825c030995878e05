// A look-ahead peak limiter: keeps a source whose samples may exceed a limit inside it. The
// stream is cut into blocks of 1/35 s; each block's peak gives it a gain, and the gain glides
// linearly across each block towards the smaller of its own and the next block's, so it has
// already fallen when a loud block begins. Blocks are read two ahead of the output, which stays
// aligned with the input frame for frame. A stream that never exceeds the limit passes unchanged.
#pragma once

#include <cstdint>
#include <vector>

#include "dsp/LSRCBlockOutput.h"

class LSRCPeakLimit : public LSRCBlockOutput
{
public:
    static constexpr int32_t kMaxLimit = 0x3FFFFF;
    static constexpr int32_t kMinBlockFrames = 20;
    static constexpr int32_t kMaxBlockFrames = 8192;

    // nLimit is capped at kMaxLimit; it is also the source's maximum amplitude.
    LSRCPeakLimit(LSoundSourceBase* pInput, int32_t nLimit);

    int32_t GetLength() override { return pInput->GetLength(); }
    int32_t GetLengthInFile() override { return pInput->GetLengthInFile(); }
    void SetPosition(int32_t sNewPosition) override;

    int32_t GetBlockFrames() const { return nBlock; }
    // rate / 35 frames, kept within 20..8192.
    static int32_t BlockFrames(int32_t nRate);
    // The 8.24 gain that brings a block's peak down to the limit; unity when it is not above it.
    static int32_t BlockGain(const int32_t* pSamples, int32_t nSamples, int32_t nLimit);

private:
    void Restart();
    void BeforeRead() override;
    int32_t FramesLeftInBlock() const override { return nBlock - nOutPos; }
    void NextBlock() override;
    void HandOut(int32_t* pOut, int32_t nFrames) override;
    int32_t ReadBlock(std::vector<int32_t>& vBlock);
    void AimAtTarget();
    void CopyWithGain(const int32_t* pIn, int32_t* pOut, int32_t nFrames);

    LSoundSourcePtr pInput;
    int32_t nLimit;
    int32_t nBlock;
    // The block being output, the next one and the newest one read.
    std::vector<int32_t> vOut, vNext, vNewest;
    // Gains of the block just finished, the output block, the next block and the newest block.
    int32_t nGainDone = 0, nGainOut = 0, nGainNext = 0, nGainNewest = 0;
    int32_t nGain = 0;  // applied to the next frame
    int32_t nDelta = 0; // added to the gain after each frame
    int32_t nOutPos = 0;
    bool bRestart = true;
};

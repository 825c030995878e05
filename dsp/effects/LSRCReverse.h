// Reads its input backwards: output frame p is input frame (length - 1 - p). The input is read in
// chunks from the end towards the start, so memory stays one chunk however long the input is.
#pragma once

#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCReverse : public LSoundSourceBase
{
public:
    static constexpr int32_t kChunkFrames = 65536;

    explicit LSRCReverse(LSoundSourceBase* pInput);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override;

private:
    // Loads the chunk that ends at input frame sInputEnd (exclusive), reversed.
    void LoadChunkEndingAt(int32_t sInputEnd);

    LSoundSourcePtr pInput;
    std::vector<int32_t> vChunk;
    int32_t sLength;
    int32_t sPosition = 0;
    int32_t sChunkStart = 0; // output position of the chunk's first frame
    int32_t nChunkFrames = 0;
};

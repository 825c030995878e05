// Reads headerless samples from an open file, from where its pointer stands. The sample type
// decides only how a block of bytes becomes internal samples (LRawFileDataSoundSource<T>).
#pragma once

#include <vector>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"

class LRawFileDataSoundSourceBase : public LSoundSourceBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr int64_t kUnspecifiedLength = -1;

    // Takes over the file. nDataBytes < 0: the data runs to the end of the file.
    LRawFileDataSoundSourceBase(LFile&& file, size_t nSizeofT, int32_t nSampleRate, int64_t nDataBytes, uint8_t nChans);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override;
    // The whole frames the file really holds, when a header's size claims more.
    int32_t GetLengthInFile() override;

protected:
    virtual void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const = 0;

private:
    void ReadFromFile(int32_t* pOut, int64_t sFrom, int64_t nFrames);
    bool SeekFileTo(int64_t sFrame);

    LFile file;
    int64_t nDataStart = 0;
    int64_t sFileFrame = -1; // frame the file pointer stands at; -1 when unknown
    int32_t sPosition = 0;
    int32_t sLength = 0;
    int64_t nFrameSize = 1;
    std::vector<uint8_t> vBuffer;
};

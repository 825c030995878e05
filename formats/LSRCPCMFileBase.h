// Reads uncompressed samples from the data of an open file. The variants for 8- and 16-bit
// samples differ only in how a block of bytes becomes internal samples.
#pragma once

#include <vector>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"

class LSRCPCMFileBase : public LSoundSourceBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    // A data size of all ones marks a file that is still being written.
    static constexpr uint32_t kStreamingSize = 0xFFFFFFFF;

    // Takes over the file, whose pointer stands at the first sample.
    LSRCPCMFileBase(LFile&& file, uint32_t nDataSize, int32_t nSampleRate, uint8_t nChans, int nBytesPerSample);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override;
    int32_t GetLengthInFile() override;

protected:
    // Converts nSamples file samples at pBytes into the internal layout.
    virtual void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const = 0;

private:
    void ReadFromFile(int32_t* pOut, int64_t sFrom, int64_t nFrames);
    bool SeekFileTo(int64_t sFrame);

    LFile file;
    int64_t nDataStart = 0;
    int64_t sFileFrame = -1; // frame the file pointer stands at; -1 when unknown
    int32_t sPosition = 0;
    int32_t sLength = 0;
    int32_t nFrameSize = 2;
    int nBytesPerSample;
    std::vector<uint8_t> vBuffer;
};

// Writes uncompressed WAV: the header in its open form (sizes all ones, so an unfinished file
// still reads as streaming; 46 bytes for 8- and 16-bit PCM), the samples as they come, and the
// real sizes when the sink is completed. The variants differ only in the sample conversion.
#pragma once

#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"
#include "formats/LWaveFormatRecord.h"
#include "formats/LWaveHeader.h"

class LSNKPCMFileBase : public LSoundSinkBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr int64_t kHeaderBytes = 46; // of 8- and 16-bit PCM

    // Opens (keeping an existing file) and continues it from sStartFrame (0 when negative). The
    // format chunk holds pRecord, or when null plain PCM of nBytesPerSample bytes.
    LSNKPCMFileBase(const std::string& szPath, int32_t nSampleRate, int32_t sStartFrame, uint8_t nChans,
                    int nBytesPerSample, const LWaveFormatRecord* pRecord = nullptr);
    ~LSNKPCMFileBase() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Backwards only: cuts the file after frame sNewPosition.
    void SetPosition(int32_t sNewPosition) override;
    // Writes the real sizes into the header and closes the file.
    bool Complete() override;
    // Before the first frame: a file that will pass 4 GB keeps room for the ds64 chunk of RF64.
    void ExpectFrames(int64_t nFrames) override;

protected:
    // Converts nSamples internal samples into file samples at pBytes (rounding, wrapping).
    virtual void Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const = 0;

private:
    bool WriteHeader(int64_t nDataBytes);
    void CutAt(int32_t sFrame);

    LFile file;
    LWaveHeader header;
    int32_t nFrameSize;
    int nBytesPerSample;
    std::vector<uint8_t> vBuffer;
    bool bCompleted = false;
};

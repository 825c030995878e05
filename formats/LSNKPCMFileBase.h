// Writes uncompressed WAV: a 46-byte header in its open form (both sizes all ones, so an
// unfinished file still reads as streaming), the samples as they come, and the real sizes
// when the sink is destroyed. The 8- and 16-bit variants differ only in the sample conversion.
#pragma once

#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"

class LSNKPCMFileBase : public LSoundSinkBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr int64_t kHeaderBytes = 46;

    // Opens (keeping an existing file) and continues it from sStartFrame (0 when negative).
    LSNKPCMFileBase(const std::string& szPath, int32_t nSampleRate, int32_t sStartFrame, uint8_t nChans,
                    int nBytesPerSample);
    ~LSNKPCMFileBase() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Backwards only: cuts the file after frame sNewPosition.
    void SetPosition(int32_t sNewPosition) override;
    // Writes the real sizes into the header and closes the file.
    bool Complete() override;

protected:
    // Converts nSamples internal samples into file samples at pBytes (rounding, wrapping).
    virtual void Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const = 0;

private:
    bool WriteHeader(uint32_t nRiffSize, uint32_t nDataSize);
    void CutAt(int32_t sFrame);

    LFile file;
    int32_t nFrameSize;
    int nBytesPerSample;
    std::vector<uint8_t> vBuffer;
    bool bCompleted = false;
};

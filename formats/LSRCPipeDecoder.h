// Sound from another program: a decoder started with an argument vector writes a RIFF WAVE
// stream to its standard output, and this source reads it as it comes. The stream cannot seek;
// its length is an estimate (the stream's own header, or a probe of the file) until the decoder
// ends, and then it is the count of frames decoded. Destroying the source mid-stream (a
// cancelled load) kills and reaps the decoder.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/LSoundSourceBase.h"

class LChildProcess;

class LSRCPipeDecoder : public LSoundSourceBase
{
public:
    // How long the decoder may stay silent before it is taken as hung.
    static constexpr int kIdleLimitMs = 30000;

    // szWhat names the decoder in messages ("ffmpeg"). A decoder that cannot start or sends no valid stream leaves the source latched
    // with the reason in GetErrorText().
    LSRCPipeDecoder(const std::vector<std::string>& vArgs, const std::string& szWhat, int nIdleLimitMs = kIdleLimitMs);
    ~LSRCPipeDecoder() override;

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override;

    const std::string& GetErrorText() const { return szError; }
    // A length found elsewhere (a probe of the file), for progress until the end is met.
    void SetEstimate(int64_t nFrames) { sEstimate = nFrames < 0 ? 0 : nFrames; }

private:
    bool ReadHeader();
    // The parts of ReadHeader: "RIFF"/"RF64" ... "WAVE", and a "fmt " chunk of nSize bytes. False
    // after failing the source.
    bool ReadRiffHead();
    bool ReadFormat(uint32_t nSize);
    bool Skip(uint32_t nBytes);
    void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const;
    void Finish();
    void Fail(const std::string& szWhy);

    std::unique_ptr<LChildProcess> pChild;
    std::string szWhat;
    std::string szError;
    std::vector<uint8_t> vBytes;
    int32_t sPosition = 0;
    int64_t sEstimate = 0;
    int64_t sDecoded = 0;
    bool bEnded = false;
    int nBits = 16;
    int nFloat = 0;
    int nFrameBytes = 2;
    int nIdleLimitMs;
};

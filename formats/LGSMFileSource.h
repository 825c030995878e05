// Reads a ".gsm" file: a plain run of 33-byte GSM full-rate frames, 160 samples of 8000 Hz mono
// each. A trailing part frame is ignored; a frame without the signature reads as silence.
#pragma once

#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"
#include "formats/LGSMFrame.h"

class LGSMFileSource : public LSoundSourceBase
{
public:
    static constexpr int32_t kSampleRate = 8000;
    // A seek this many frames or fewer ahead decodes its way there and is exact; a longer one,
    // or one backwards, restarts the decoder this many frames early, where its memory settles.
    static constexpr int64_t kWarmUpFrames = 25;

    explicit LGSMFileSource(const std::string& szPath);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override { sPosition = sNewPosition; }

    // Frames met so far that lacked the signature.
    int64_t GetBadFrames() const { return nBadFrames; }

private:
    static constexpr int64_t kBufferFrames = 256;

    void DecodeFrame(int64_t nFrame);
    const uint8_t* FrameBytes(int64_t nFrame);

    LFile file;
    LGSMFrame codec;
    int16_t aDecoded[LGSMFrame::kSamples] = {};
    int64_t nDecodedFrame = -1; // the frame aDecoded holds
    int64_t nNextFrame = 0;     // the frame the decoder's memory follows on to
    int64_t nFileFrames = 0;
    std::vector<uint8_t> vBytes; // frames read ahead from the file
    int64_t nBufferFirst = 0;
    int64_t nBufferCount = 0;
    int64_t nBadFrames = 0;
    int32_t sPosition = 0;
    int32_t sLength = 0;
};

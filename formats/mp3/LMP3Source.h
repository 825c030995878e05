// The pull-model source over an MPEG audio Layer III file. Frames are found by a header search,
// the length is estimated from the first frames (or a Xing/VBRI frame count) and refined while
// reading, and a seek goes by the average frame size with a few frames of warm-up.
#pragma once

#include <cstdint>
#include <string>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"
#include "formats/mp3/LMP3ByteReader.h"
#include "formats/mp3/LMP3Decoder.h"
#include "formats/mp3/LMP3Header.h"

class LMP3Source : public LSoundSourceBase
{
public:
    explicit LMP3Source(const std::string& szFileName);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    // A frame count in the first frame may claim more frames than the bytes could hold even at
    // the lowest bit rate: what they can hold.
    int32_t GetLengthInFile() override;
    void SetPosition(int32_t sNewPosition) override;

    // What the first frames tell about the file.
    const MP3Header& GetFirstHeader() const { return first; }
    int32_t GetAverageBitRate() const { return nAverageBitRate; }
    double GetAverageFrameBytes() const { return fAverageFrameBytes; }
    uint32_t GetVbrFrameCount() const { return nVbrFrames; }
    // True when the first frames' bit rates differed or a VBR header gave the count.
    bool IsVariableBitRate() const { return bVariable || nVbrFrames > 0; }

    static constexpr int kWarmUpFrames = 4;
    static constexpr int kMaxMismatches = 10;
    static constexpr int kTrailingTagBytes = 128;

private:
    bool DecodeInitialHeader();
    bool DecodeHeader(MP3Header& h);
    enum FrameResult
    {
        FrameDecoded,
        FrameSkipped, // its main data begins before what the reservoir holds
        FrameFailed,
    };
    FrameResult DecodeOneFrame(int32_t* pOut);
    // The next frame that can be decoded; false at the end of the stream.
    bool DecodeFrame(int32_t* pOut);
    bool ReadVbrHeader(const MP3Header& h);
    void EstimateLength();
    void RefineLength();

    LFile file;
    LMP3ByteReader in;
    MP3Header first;
    LMP3Decoder decoder;
    int32_t nSamplesPerFrame = 1152;
    int32_t nAverageBitRate = 0;
    double fAverageFrameBytes = 1.0;
    uint32_t nVbrFrames = 0;
    bool bVariable = false;

    int32_t sPosition = 0;
    int32_t sLength = 0;
    int64_t nFramesDecoded = 0; // frames of the file taken so far (the next one's index)
    int32_t aFrame[1152 * 2];
    int32_t nFrameSamples = 0; // samples per channel in hand
    int32_t nCursor = 0;
    uint8_t aFrameBytes[LMP3Decoder::kMaxFrameBytes];
};

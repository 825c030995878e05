// The pull-model source over an MPEG audio Layer III file. The tags around the audio are passed
// over, frames are found by a header search, the length is estimated from the first frames (or
// taken from a Xing/Info/VBRI frame count, less the encoder's delay and padding where its tag
// gives them) and refined while reading, and a seek goes by the average frame size with a few
// frames of warm-up.
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
    // An "Info" tag frame marks a constant-rate file.
    bool IsVariableBitRate() const { return !bInfo && (bVariable || bXing || nVbrFrames > 0); }
    // The encoder's delay and padding from its tag, when the file has them (else 0, 0).
    int32_t GetEncoderDelay() const { return nEncoderDelay; }
    int32_t GetEncoderPadding() const { return nEncoderPadding; }
    // Where the audio lies in the file: the bytes before it (leading tags) and after it.
    int64_t GetLeadingTagBytes() const { return nLeadingBytes; }
    int64_t GetTrailingTagBytes() const { return nTrailingBytes; }

    static constexpr int kWarmUpFrames = 4;
    static constexpr int kMaxMismatches = 10;
    // The synthesis filter bank delays its output by this many samples: what a gapless file's
    // encoder delay does not count.
    static constexpr int kDecoderDelay = 529;
    // A loud master decodes above full scale: the pump limits it on the way to a 16-bit file.
    static constexpr int32_t kMaxAmplitude = 0x200000;

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
    void ReadEncoderTag(const uint8_t* pTag, int nBytes);
    void SetGaplessLength();
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
    bool bXing = false; // the first frame is the encoder's tag of a variable-rate file ("Xing")
    bool bInfo = false; // or of a constant-rate one ("Info")
    int64_t nLeadingBytes = 0;
    int64_t nTrailingBytes = 0;
    int64_t nAudioStart = 0;   // offset of the first audio frame in the stream
    int64_t nNextFrameAt = -1; // where the last frame read ends; -1 after a jump
    int32_t nEncoderDelay = 0;
    int32_t nEncoderPadding = 0;
    int32_t nSkip = 0;        // decoded samples before position 0
    int32_t nDropPending = 0; // of those, still to drop

    int32_t sPosition = 0;
    int32_t sLength = 0;
    int64_t nFramesDecoded = 0; // frames of the file taken so far (the next one's index)
    int32_t aFrame[1152 * 2];
    int32_t nFrameSamples = 0; // samples per channel in hand
    int32_t nCursor = 0;
    uint8_t aFrameBytes[LMP3Decoder::kMaxFrameBytes];
};

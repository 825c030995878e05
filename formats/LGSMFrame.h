// The GSM 06.10 full-rate codec of one frame at a time: 160 samples of 8000 Hz speech to 33
// bytes and back. The encoder's and the decoder's memories carry from one call to the next, so a
// stream is coded by one object from its first frame on; Reset() starts a new stream.
#pragma once

#include <cstdint>

#include "formats/LGSMDecoder.h"
#include "formats/LGSMEncoder.h"
#include "formats/LGSMParams.h"

class LGSMFrame
{
public:
    static constexpr int kSamples = 160;
    static constexpr int kBytes = static_cast<int>(kGSMFrameBytes);
    // GSM in WAV: two frames in one 65-byte block.
    static constexpr int kWavBlockSamples = 2 * kSamples;
    static constexpr int kWavBlockBytes = static_cast<int>(kGSMWavBlockBytes);

    void Reset();

    // Samples are 16-bit; the codec keeps their top 13 bits.
    void EncodeNormal(const int16_t* pSamples, uint8_t* pFrame);
    // False, with 160 zeros out and the memory untouched, when the frame lacks the 0xD signature.
    bool DecodeNormal(const uint8_t* pFrame, int16_t* pSamples);

    void EncodeWavBlock(const int16_t* pSamples, uint8_t* pBlock);
    void DecodeWavBlock(const uint8_t* pBlock, int16_t* pSamples);

    // The decoder's memory, kept and put back around seeks.
    LGSMDecoder& Decoder() { return decoder; }
    const LGSMDecoder& Decoder() const { return decoder; }

private:
    LGSMEncoder encoder;
    LGSMDecoder decoder;
};

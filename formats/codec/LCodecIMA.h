// IMA ADPCM (tag 0x11): blocks of a 4-byte header per channel (first sample, step index), then
// 4-bit codes in 4-byte groups of 8 per channel, low nibble first. Decoding builds each
// difference from shifts of the step, as the IMA reference does.
#pragma once

#include "formats/codec/LCodecAdpcm.h"

class LCodecIMA : public LCodecAdpcm
{
public:
    static constexpr uint16_t kTag = 0x11;

    LCodecIMA() : LCodecAdpcm(kTag) {}

    const char* GetName() const override { return "IMA ADPCM"; }
    const char* GetShortName() const override { return "ima"; }
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    // Frames in a block of nBytes of nChans channels (0 when it cannot hold the headers).
    static uint32_t FramesIn(uint32_t nBytes, uint32_t nChans);

protected:
    uint32_t FramesInBlock(uint32_t nBytes, uint32_t nChans) const override { return FramesIn(nBytes, nChans); }
    bool TakesBlock(uint32_t nBytes, uint32_t nChans) const override;
    std::vector<uint8_t> RecordExtra(uint32_t nFrames) const override;
};

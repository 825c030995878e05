// IMA ADPCM (tag 0x11): blocks of a 4-byte header per channel (first sample, step index), then
// 4-bit codes in 4-byte groups of 8 per channel, low nibble first. Decoding builds each
// difference from shifts of the step, as the IMA reference does.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecIMA : public LCodec
{
public:
    static constexpr uint16_t kTag = 0x11;

    const char* GetName() const override { return "IMA ADPCM"; }
    const char* GetShortName() const override { return "ima"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::string WhyRefused(const LWaveFormatRecord& record) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    void FitShape(int32_t& nRate, uint8_t& nChans) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    // Frames in a block of nBytes of nChans channels (0 when it cannot hold the headers).
    static uint32_t FramesIn(uint32_t nBytes, uint32_t nChans);
};

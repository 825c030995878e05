// MPEG audio Layer III inside WAV (tag 0x55), decoding only. Frames vary in size (padding, and
// bit rates in variable streams), so the decoder finds its own frames in the bytes it is given;
// the record's average bytes per second stand for the ratio of bytes to frames.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecMP3 : public LCodec
{
public:
    static constexpr uint16_t kTag = 0x55;

    const char* GetName() const override { return "MPEG Layer 3"; }
    const char* GetShortName() const override { return "mp3"; }
    bool CanEncode() const override { return false; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::string WhyRefused(const LWaveFormatRecord& record) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override { return false; }
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override
    {
        return nullptr;
    }
};

// GSM 6.10 (tag 0x31): 65-byte blocks of two 160-sample frames, mono. The decoder's and the
// encoder's memories run from block to block; a seek starts them afresh.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecGSM : public LCodec
{
public:
    static constexpr uint16_t kTag = 0x31;

    const char* GetName() const override { return "GSM 6.10"; }
    const char* GetShortName() const override { return "gsm"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::string WhyRefused(const LWaveFormatRecord& record) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    // The codec is made for telephone speech: 8000 Hz, one channel.
    void FitShape(int32_t& nRate, uint8_t& nChans) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
};

// Microsoft ADPCM (tag 2): blocks of a header per channel (predictor number, step, two samples),
// then 4-bit codes high nibble first (stereo: left in the high nibble). The prediction divides its
// sum by 256 truncating toward zero, as the published decoder does.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecMSADPCM : public LCodec
{
public:
    static constexpr uint16_t kTag = 0x0002;

    const char* GetName() const override { return "Microsoft ADPCM"; }
    const char* GetShortName() const override { return "msadpcm"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::string WhyRefused(const LWaveFormatRecord& record) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    void FitShape(int32_t& nRate, uint8_t& nChans) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    static uint32_t FramesIn(uint32_t nBytes, uint32_t nChans);
};

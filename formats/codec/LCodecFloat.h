// IEEE float samples of 32 and 64 bits (full scale 1.0), in the plain or the extensible record.
// Decoding rounds to 16 bits and saturates; NaN reads as 0.
#pragma once

#include "formats/codec/LCodecTwoWidths.h"

class LCodecFloat : public LCodecTwoWidths
{
public:
    LCodecFloat() : LCodecTwoWidths(32, 64) {}
    const char* GetName() const override { return "IEEE Float"; }
    const char* GetShortName() const override { return "float"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    static LWaveFormatRecord MakeFloat(uint32_t nRate, uint16_t nChans, uint16_t nBits);

protected:
    LWaveFormatRecord MakeOfWidth(uint32_t nRate, uint16_t nChans, uint16_t nBits) const override
    {
        return MakeFloat(nRate, nChans, nBits);
    }
};

// PCM of more than 16 bits (24- and 32-bit containers), in the plain or the extensible record.
// Decoding rounds to 16 bits and saturates; encoding widens exactly.
#pragma once

#include "formats/codec/LCodecTwoWidths.h"

class LCodecPCM : public LCodecTwoWidths
{
public:
    LCodecPCM() : LCodecTwoWidths(24, 32) {}
    const char* GetName() const override { return "PCM"; }
    const char* GetShortName() const override { return "pcm24"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    // The extensible record of nBits (24 or 32) in containers of as many bits.
    static LWaveFormatRecord MakeWide(uint32_t nRate, uint16_t nChans, uint16_t nBits);

protected:
    LWaveFormatRecord MakeOfWidth(uint32_t nRate, uint16_t nChans, uint16_t nBits) const override
    {
        return MakeWide(nRate, nChans, nBits);
    }
};

// G.711 A-law (tag 6) and µ-law (tag 7): one byte per sample, through the program's G.711
// functions. One class, an instance per law.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecG711 : public LCodec
{
public:
    enum Law
    {
        ALaw,
        ULaw
    };
    explicit LCodecG711(Law law) : law(law) {}

    const char* GetName() const override { return law == ALaw ? "CCITT A-Law" : "CCITT u-Law"; }
    const char* GetShortName() const override { return law == ALaw ? "alaw" : "ulaw"; }
    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

private:
    uint16_t Tag() const { return law == ALaw ? 6 : 7; }
    Law law;
};

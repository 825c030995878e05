// A codec of plain samples in two widths (24- and 32-bit integers, 32- and 64-bit floats): it
// writes the narrower, lists both at the usual high rates, and hands each width its own decoder
// and encoder.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecTwoWidths : public LCodec
{
public:
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    std::vector<LWaveFormatRecord> ListRecords() const override;

protected:
    LCodecTwoWidths(uint16_t nNarrowBits, uint16_t nWideBits) : nNarrowBits(nNarrowBits), nWideBits(nWideBits) {}
    // The record of one width.
    virtual LWaveFormatRecord MakeOfWidth(uint32_t nRate, uint16_t nChans, uint16_t nBits) const = 0;

    // The coder of the narrower width when bNarrow, else the wider one's.
    template <class TNarrow, class TWide, class TCoder, class TArg>
    static std::unique_ptr<TCoder> ForWidth(bool bNarrow, const TArg& arg)
    {
        if (bNarrow)
            return std::make_unique<TNarrow>(arg);
        return std::make_unique<TWide>(arg);
    }

private:
    uint16_t nNarrowBits;
    uint16_t nWideBits;
};

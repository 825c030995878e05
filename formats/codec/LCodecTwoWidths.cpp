#include "formats/codec/LCodecTwoWidths.h"

bool LCodecTwoWidths::MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const
{
    if (nChans == 0 || nChans > 255)
        return false;
    record = MakeOfWidth(nRate, nChans, nNarrowBits);
    return true;
}

std::vector<LWaveFormatRecord> LCodecTwoWidths::ListRecords() const
{
    std::vector<LWaveFormatRecord> v;
    for (uint16_t nBits : {nNarrowBits, nWideBits})
        for (uint32_t nRate : {44100u, 48000u, 96000u})
            for (uint16_t nChans : {1, 2})
                v.push_back(MakeOfWidth(nRate, nChans, nBits));
    return v;
}

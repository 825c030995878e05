#include "formats/codec/LCodecG711.h"

#include "core/LFixed.h"
#include "formats/LG711.h"

namespace {

// Decoding is a look-up in a table of the 256 bytes' 16-bit values, made once per stream.
class LG711Decoder : public LCodecDecoder
{
public:
    LG711Decoder(LCodecG711::Law law, uint32_t nChans) : nChans(nChans)
    {
        for (uint32_t b = 0; b < 256; ++b) {
            const int32_t s = law == LCodecG711::ALaw ? LG711::ALawToSample(static_cast<uint8_t>(b))
                                                      : LG711::ULawToSample(static_cast<uint8_t>(b));
            nTable[b] = static_cast<int16_t>(s >> 4); // every G.711 level is a whole 16-bit step
        }
    }
    void DecodeBlocks(const uint8_t* pIn, uint32_t nFrames, int16_t* pOut) override
    {
        const uint32_t nSamples = nFrames * nChans;
        for (uint32_t i = 0; i < nSamples; ++i)
            pOut[i] = nTable[pIn[i]];
    }

private:
    uint32_t nChans;
    int16_t nTable[256];
};

class LG711Encoder : public LCodecEncoder
{
public:
    LG711Encoder(LCodecG711::Law law, const LCodecShape& shape) : LCodecEncoder(shape), law(law) {}
    void EncodeBlocks(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut) override
    {
        const uint32_t nSamples = nFrames * shape.nChans;
        for (uint32_t i = 0; i < nSamples; ++i)
            pOut[i] = law == LCodecG711::ALaw ? LG711::SampleToALaw(LFrom16(pIn[i])) : LG711::SampleToULaw(LFrom16(pIn[i]));
    }

private:
    LCodecG711::Law law;
};

} // namespace

bool LCodecG711::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    if (record.EffectiveTag() != Tag() || record.nChannels == 0 || record.nBlockAlign != record.nChannels)
        return false;
    shape = {record.nBlockAlign, 1, record.nChannels};
    return true;
}

bool LCodecG711::MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const
{
    if (nChans == 0 || nChans > 255)
        return false;
    record = LWaveFormatRecord::Make(Tag(), nChans, nRate, nRate * nChans, nChans, 8);
    return true;
}

std::unique_ptr<LCodecDecoder> LCodecG711::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LG711Decoder>(law, shape.nChans);
}

std::unique_ptr<LCodecEncoder> LCodecG711::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LG711Encoder>(law, shape);
}

#include "formats/codec/LCodecPCM.h"

#include "formats/codec/LCodecBytes.h"

namespace {

// Bytes per sample of a record this codec takes; 0 when it is not one.
uint32_t ContainerBytes(const LWaveFormatRecord& r)
{
    if (!r.IsPCM() || r.nChannels == 0 || r.nBlockAlign % r.nChannels != 0)
        return 0;
    const uint32_t nBytes = r.nBlockAlign / r.nChannels;
    if ((nBytes != 3 && nBytes != 4) || r.wBitsPerSample <= 16 || r.wBitsPerSample > nBytes * 8)
        return 0;
    return nBytes;
}

// Samples are left-justified in their container: the top two bytes, rounded by the next one.
template <uint32_t nBytes> class LDecoderWide : public LCodecDecoder
{
public:
    explicit LDecoderWide(uint32_t nChans) : nChans(nChans) {}
    void DecodeBlocks(const uint8_t* pIn, uint32_t nFrames, int16_t* pOut) override
    {
        const uint32_t nSamples = nFrames * nChans;
        for (uint32_t i = 0; i < nSamples; ++i, pIn += nBytes) {
            const int32_t nTop = static_cast<int16_t>(pIn[nBytes - 2] | (pIn[nBytes - 1] << 8));
            pOut[i] = LClamp16(nTop + (pIn[nBytes - 3] >> 7));
        }
    }

private:
    uint32_t nChans;
};

template <uint32_t nBytes> class LEncoderWide : public LCodecEncoder
{
public:
    explicit LEncoderWide(const LCodecShape& shape) : LCodecEncoder(shape) {}
    void EncodeBlocks(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut) override
    {
        const uint32_t nSamples = nFrames * shape.nChans;
        for (uint32_t i = 0; i < nSamples; ++i, pOut += nBytes) {
            for (uint32_t b = 0; b < nBytes - 2; ++b)
                pOut[b] = 0;
            LPut16(pOut + nBytes - 2, static_cast<uint16_t>(pIn[i]));
        }
    }
};

uint32_t ChannelMask(uint16_t nChans)
{
    return nChans == 1 ? 0x4 : (nChans == 2 ? 0x3 : 0);
}

} // namespace

bool LCodecPCM::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    if (!ContainerBytes(record))
        return false;
    shape = {record.nBlockAlign, 1, record.nChannels};
    return true;
}

LWaveFormatRecord LCodecPCM::MakeWide(uint32_t nRate, uint16_t nChans, uint16_t nBits)
{
    const uint16_t nBlock = static_cast<uint16_t>(nChans * (nBits / 8));
    std::vector<uint8_t> vExtra(22, 0);
    LPut16(vExtra.data(), nBits); // valid bits
    const uint32_t nMask = ChannelMask(nChans);
    LPut16(vExtra.data() + 2, nMask & 0xFFFF);
    LPut16(vExtra.data() + 4, nMask >> 16);
    const uint8_t kGuidPCM[16] = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                  0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
    std::copy(kGuidPCM, kGuidPCM + 16, vExtra.begin() + 6);
    return LWaveFormatRecord::Make(LWaveFormatRecord::kTagExtensible, nChans, nRate, nRate * nBlock, nBlock, nBits,
                                   vExtra);
}

std::unique_ptr<LCodecDecoder> LCodecPCM::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return ForWidth<LDecoderWide<3>, LDecoderWide<4>, LCodecDecoder>(ContainerBytes(record) == 3, shape.nChans);
}

std::unique_ptr<LCodecEncoder> LCodecPCM::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return ForWidth<LEncoderWide<3>, LEncoderWide<4>, LCodecEncoder>(ContainerBytes(record) == 3, shape);
}

#include "formats/codec/LCodecFloat.h"

#include <cstring>

#include "formats/codec/LCodecBytes.h"

namespace {

uint32_t SampleBytes(const LWaveFormatRecord& r)
{
    if (r.EffectiveTag() != LWaveFormatRecord::kTagFloat || r.nChannels == 0)
        return 0;
    if ((r.wBitsPerSample != 32 && r.wBitsPerSample != 64) || r.nBlockAlign != r.nChannels * (r.wBitsPerSample / 8))
        return 0;
    return r.wBitsPerSample / 8;
}

// Scaled, rounded to nearest and saturated; the comparisons are written so that NaN gives 0.
inline int16_t FloatTo16(double f)
{
    const double x = f * 32768.0;
    if (x >= 32767.0)
        return 32767;
    if (x <= -32768.0)
        return -32768;
    if (!(x == x))
        return 0;
    return static_cast<int16_t>(x < 0 ? -static_cast<int32_t>(0.5 - x) : static_cast<int32_t>(x + 0.5));
}

template <typename T> class LDecoderFloat : public LCodecDecoder
{
public:
    explicit LDecoderFloat(uint32_t nChans) : nChans(nChans) {}
    void DecodeBlocks(const uint8_t* pIn, uint32_t nFrames, int16_t* pOut) override
    {
        const uint32_t nSamples = nFrames * nChans;
        for (uint32_t i = 0; i < nSamples; ++i, pIn += sizeof(T)) {
            T f;
            std::memcpy(&f, pIn, sizeof(T)); // the file is little-endian, as is every machine we build for
            pOut[i] = FloatTo16(f);
        }
    }

private:
    uint32_t nChans;
};

template <typename T> class LEncoderFloat : public LCodecEncoder
{
public:
    explicit LEncoderFloat(const LCodecShape& shape) : LCodecEncoder(shape) {}
    void EncodeBlocks(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut) override
    {
        const uint32_t nSamples = nFrames * shape.nChans;
        for (uint32_t i = 0; i < nSamples; ++i, pOut += sizeof(T)) {
            const T f = static_cast<T>(pIn[i]) / static_cast<T>(32768);
            std::memcpy(pOut, &f, sizeof(T));
        }
    }
};

} // namespace

bool LCodecFloat::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    if (!SampleBytes(record))
        return false;
    shape = {record.nBlockAlign, 1, record.nChannels};
    return true;
}

LWaveFormatRecord LCodecFloat::MakeFloat(uint32_t nRate, uint16_t nChans, uint16_t nBits)
{
    const uint16_t nBlock = static_cast<uint16_t>(nChans * (nBits / 8));
    return LWaveFormatRecord::Make(LWaveFormatRecord::kTagFloat, nChans, nRate, nRate * nBlock, nBlock, nBits);
}

std::unique_ptr<LCodecDecoder> LCodecFloat::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return ForWidth<LDecoderFloat<float>, LDecoderFloat<double>, LCodecDecoder>(SampleBytes(record) == 4, shape.nChans);
}

std::unique_ptr<LCodecEncoder> LCodecFloat::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return ForWidth<LEncoderFloat<float>, LEncoderFloat<double>, LCodecEncoder>(SampleBytes(record) == 4, shape);
}

#include "formats/LRawSampleTypes.h"

#include <array>

#include "core/LFixed.h"
#include "formats/LG711.h"

namespace {

// Decoding a byte code is one table look-up.
template <int32_t (*Decode)(uint8_t)>
const int32_t* DecodeTable()
{
    static const std::array<int32_t, 256> table = [] {
        std::array<int32_t, 256> a{};
        for (int i = 0; i < 256; ++i)
            a[i] = Decode(static_cast<uint8_t>(i));
        return a;
    }();
    return table.data();
}

void FromTable(const int32_t* pTable, const uint8_t* pIn, int32_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = pTable[pIn[i]];
}

} // namespace

void LRawULaw::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    FromTable(DecodeTable<LG711::ULawToSample>(), pIn, pOut, n);
}

void LRawULaw::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LG711::SampleToULaw(pIn[i]);
}

void LRawALaw::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    FromTable(DecodeTable<LG711::ALawToSample>(), pIn, pOut, n);
}

void LRawALaw::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LG711::SampleToALaw(pIn[i]);
}

void LRawPcm16LE::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LFrom16(static_cast<int16_t>(pIn[2 * i] | (pIn[2 * i + 1] << 8)));
}

void LRawPcm16LE::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i) {
        const uint16_t v = static_cast<uint16_t>(LTo16(pIn[i]));
        pOut[2 * i] = static_cast<uint8_t>(v);
        pOut[2 * i + 1] = static_cast<uint8_t>(v >> 8);
    }
}

void LRawPcm16BE::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LFrom16(static_cast<int16_t>((pIn[2 * i] << 8) | pIn[2 * i + 1]));
}

void LRawPcm16BE::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i) {
        const uint16_t v = static_cast<uint16_t>(LTo16(pIn[i]));
        pOut[2 * i] = static_cast<uint8_t>(v >> 8);
        pOut[2 * i + 1] = static_cast<uint8_t>(v);
    }
}

void LRawPcm8Unsigned::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LFrom8(pIn[i]);
}

void LRawPcm8Unsigned::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = LTo8(pIn[i]);
}

void LRawPcm8Signed::ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        pOut[i] = static_cast<int32_t>(static_cast<int8_t>(pIn[i])) * 4096;
}

void LRawPcm8Signed::FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    // The unsigned form with its offset taken off again: the same rounding, wrapping alike.
    for (size_t i = 0; i < n; ++i)
        pOut[i] = static_cast<uint8_t>(LTo8(pIn[i]) ^ 0x80);
}

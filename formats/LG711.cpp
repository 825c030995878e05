#include "formats/LG711.h"

namespace {

// The sixth µ-law offset is 65408, four 16-bit steps below the textbook value; files we
// wrote before decode to the same samples because of it.
constexpr int32_t kULawOffset[8] = {0, 2112, 6336, 14784, 31680, 65408, 133056, 268224};
// Where each µ-law segment above the first begins; the first begins at 0.
constexpr uint32_t kULawBase[8] = {0, 1984, 6080, 14272, 30656, 63360, 128960, 260032};

constexpr int32_t kALawOffset[8] = {128, 4224, 8448, 16896, 33792, 67584, 135168, 270336};
constexpr int32_t kALawStep[8] = {256, 256, 512, 1024, 2048, 4096, 8192, 16384};
constexpr uint32_t kALawBase[8] = {0, 4096, 8192, 16384, 32768, 65536, 131072, 262144};

// The magnitude of a sample; unsigned so that the most negative sample has one too.
constexpr uint32_t MagnitudeOf(int32_t s)
{
    return s < 0 ? 0u - static_cast<uint32_t>(s) : static_cast<uint32_t>(s);
}

// How many segment starts after the first the magnitude reaches.
int SegmentOf(uint32_t nMag, const uint32_t (&aBase)[8])
{
    int e = 0;
    while (e < 7 && nMag >= aBase[e + 1])
        ++e;
    return e;
}

} // namespace

int32_t LG711::ULawToSample(uint8_t nByte)
{
    const uint8_t b = static_cast<uint8_t>(~nByte);
    const int e = (b >> 4) & 7;
    const int32_t nValue = ((b & 15) << (e + 7)) + kULawOffset[e];
    return (b & 0x80) ? -nValue : nValue;
}

uint8_t LG711::SampleToULaw(int32_t s)
{
    const uint8_t nSign = s < 0 ? 0x80 : 0;
    const uint32_t nMag = MagnitudeOf(s);
    const int e = SegmentOf(nMag, kULawBase);
    uint32_t m = (nMag - kULawBase[e]) >> (e + 7);
    if (m > 15)
        m = 15;
    return static_cast<uint8_t>(~(nSign | (e << 4) | m));
}

int32_t LG711::ALawToSample(uint8_t nByte)
{
    const uint8_t b = nByte ^ 0x55;
    const int e = (b >> 4) & 7;
    const int32_t nValue = kALawOffset[e] + kALawStep[e] * (b & 15);
    return b < 128 ? -nValue : nValue;
}

uint8_t LG711::SampleToALaw(int32_t s)
{
    const uint8_t nSign = s >= 0 ? 0x80 : 0;
    const uint32_t nMag = MagnitudeOf(s);
    const int e = SegmentOf(nMag, kALawBase);
    uint32_t m = (nMag - kALawBase[e]) / static_cast<uint32_t>(kALawStep[e]);
    if (m > 15)
        m = 15;
    return static_cast<uint8_t>((nSign | (e << 4) | m) ^ 0x55);
}

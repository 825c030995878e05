#include "formats/LWaveFormatRecord.h"

#include <algorithm>
#include <cstring>

namespace {
uint16_t Get16(const uint8_t* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}
uint32_t Get32(const uint8_t* p)
{
    return static_cast<uint32_t>(Get16(p)) | (static_cast<uint32_t>(Get16(p + 2)) << 16);
}
void Put(std::vector<uint8_t>& v, uint32_t x, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

// The extensible record's sub-format GUIDs share these last 14 bytes; the first two are the tag.
const uint8_t kSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                    0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
constexpr size_t kSubFormatOffset = 24; // after cbSize, valid bits and the channel mask
} // namespace

bool LWaveFormatRecord::Decode(const uint8_t* pBytes, size_t nBytes)
{
    if (nBytes < 16 || nBytes > kMaxBytes)
        return false;
    vBytes.assign(pBytes, pBytes + nBytes);
    wFormatTag = Get16(pBytes);
    nChannels = Get16(pBytes + 2);
    nSamplesPerSec = Get32(pBytes + 4);
    nAvgBytesPerSec = Get32(pBytes + 8);
    nBlockAlign = Get16(pBytes + 12);
    wBitsPerSample = Get16(pBytes + 14);
    cbSize = nBytes < 18 ? 0 : Get16(pBytes + 16);
    return true;
}

LWaveFormatRecord LWaveFormatRecord::Make(uint16_t wTag, uint16_t nChans, uint32_t nRate, uint32_t nAvgBytes,
                                          uint16_t nBlock, uint16_t wBits, const std::vector<uint8_t>& vExtra)
{
    std::vector<uint8_t> v;
    for (auto [x, n] : {std::pair<uint32_t, int>{wTag, 2}, {nChans, 2}, {nRate, 4}, {nAvgBytes, 4}, {nBlock, 2},
                        {wBits, 2}, {static_cast<uint32_t>(vExtra.size()), 2}})
        Put(v, x, n);
    v.insert(v.end(), vExtra.begin(), vExtra.end());
    LWaveFormatRecord record;
    record.Decode(v.data(), v.size());
    return record;
}

LWaveFormatRecord LWaveFormatRecord::PCM16(uint32_t nRate, uint16_t nChans)
{
    return Make(kTagPCM, nChans, nRate, nRate * nChans * 2u, static_cast<uint16_t>(nChans * 2), 16);
}

bool LWaveFormatRecord::IsPCM() const
{
    return EffectiveTag() == kTagPCM;
}

uint16_t LWaveFormatRecord::EffectiveTag() const
{
    if (wFormatTag != kTagExtensible || cbSize < 22 || vBytes.size() < kSubFormatOffset + 16)
        return wFormatTag;
    const uint8_t* pGuid = vBytes.data() + kSubFormatOffset;
    if (std::memcmp(pGuid + 2, kSubFormatTail, sizeof(kSubFormatTail)) != 0)
        return wFormatTag;
    return Get16(pGuid);
}

size_t LWaveFormatRecord::ExtraBytes() const
{
    return vBytes.size() > kFixedBytes ? std::min<size_t>(cbSize, vBytes.size() - kFixedBytes) : 0;
}

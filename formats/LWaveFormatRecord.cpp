#include "formats/LWaveFormatRecord.h"

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

// The extensible record's sub-format GUID for PCM, as stored in the file.
const uint8_t kSubFormatPCM[16] = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                   0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
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

bool LWaveFormatRecord::IsPCM() const
{
    if (wFormatTag == kTagPCM)
        return true;
    if (wFormatTag != kTagExtensible || vBytes.size() < kSubFormatOffset + sizeof(kSubFormatPCM))
        return false;
    return std::memcmp(vBytes.data() + kSubFormatOffset, kSubFormatPCM, sizeof(kSubFormatPCM)) == 0;
}

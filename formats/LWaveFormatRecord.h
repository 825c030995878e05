// The wave-format record of a RIFF WAVE "fmt " chunk: the fixed fields, then cbSize bytes of
// codec data. Kept as the bytes read (at most kMaxBytes) with the fields decoded from them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct LWaveFormatRecord
{
    static constexpr uint16_t kTagPCM = 1;
    static constexpr uint16_t kTagExtensible = 0xFFFE;
    static constexpr size_t kMaxBytes = 8192;

    uint16_t wFormatTag = kTagPCM;
    uint16_t nChannels = 0;
    uint32_t nSamplesPerSec = 0;
    uint32_t nAvgBytesPerSec = 0;
    uint16_t nBlockAlign = 0;
    uint16_t wBitsPerSample = 0;
    uint16_t cbSize = 0;
    std::vector<uint8_t> vBytes; // the record as stored, 16..kMaxBytes bytes

    // Decodes a record of 16..kMaxBytes bytes; a record shorter than 18 bytes has cbSize 0.
    bool Decode(const uint8_t* pBytes, size_t nBytes);
    // PCM in either spelling: tag 1, or the extensible tag with the PCM sub-format.
    bool IsPCM() const;
};

// The wave-format record of a RIFF WAVE "fmt " chunk: the fixed fields, then cbSize bytes of
// codec data. Kept as the bytes read (at most kMaxBytes) with the fields decoded from them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct LWaveFormatRecord
{
    static constexpr uint16_t kTagPCM = 1;
    static constexpr uint16_t kTagFloat = 3;
    static constexpr uint16_t kTagExtensible = 0xFFFE;
    static constexpr size_t kMaxBytes = 8192;
    static constexpr size_t kFixedBytes = 18; // up to and including cbSize

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
    // A record from its fields and codec data (cbSize is the data's size).
    static LWaveFormatRecord Make(uint16_t wTag, uint16_t nChans, uint32_t nRate, uint32_t nAvgBytes,
                                  uint16_t nBlock, uint16_t wBits, const std::vector<uint8_t>& vExtra = {});
    // 16-bit PCM of a rate and channel count: one side of every codec stream.
    static LWaveFormatRecord PCM16(uint32_t nRate, uint16_t nChans);

    // PCM in either spelling: tag 1, or the extensible tag with the PCM sub-format.
    bool IsPCM() const;
    // The tag the record stands for: an extensible record's sub-format when it has a standard
    // one, else the tag itself.
    uint16_t EffectiveTag() const;
    // The codec data after cbSize, as much of it as was stored.
    const uint8_t* Extra() const { return vBytes.size() > kFixedBytes ? vBytes.data() + kFixedBytes : nullptr; }
    size_t ExtraBytes() const;
};

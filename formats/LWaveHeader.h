// The chunks our WAV writers put ahead of the samples: RIFF, an optional place kept for ds64,
// "fmt ", "fact" for every encoding that is not PCM, and the "data" chunk header. While a file
// is being written its sizes are all ones (readers then take it as streaming); when it is
// finished they are filled in, and a file too large for 32-bit sizes becomes RF64 when room for
// the ds64 chunk was kept (else its sizes stay all ones, which readers still follow).
#pragma once

#include <cstdint>
#include <vector>

#include "formats/LWaveFormatRecord.h"

class LWaveHeader
{
public:
    static constexpr uint32_t kOpenSize = 0xFFFFFFFF;
    static constexpr int64_t kUnknown = -1;

    // vFmt: the format chunk's contents as they will stand in the file.
    LWaveHeader(const std::vector<uint8_t>& vFmt, bool bFact, bool bRoomForDs64);
    // The same chunks, with or without room for ds64.
    LWaveHeader(const LWaveHeader& other, bool bRoomForDs64)
        : vFmt(other.vFmt), bFact(other.bFact), bRoomForDs64(bRoomForDs64)
    {
    }

    // The header's size: where the samples start.
    int64_t GetBytes() const;
    bool HasRoomForDs64() const { return bRoomForDs64; }
    // The header for nDataBytes of samples holding nFrames frames; kUnknown gives the open form.
    std::vector<uint8_t> Build(int64_t nDataBytes, int64_t nFrames) const;

    // Whether a file of nDataBytes of samples needs 64-bit sizes.
    bool NeedsRF64(int64_t nDataBytes) const;

    // The RIFF size beyond which a file is written as RF64: 0xFFFFFFFF, lowered only by tests
    // so that the switch can be seen without writing gigabytes.
    static void SetSizeLimit(uint64_t nLimit);
    static uint64_t GetSizeLimit();

private:
    std::vector<uint8_t> vFmt;
    bool bFact;
    bool bRoomForDs64;
};

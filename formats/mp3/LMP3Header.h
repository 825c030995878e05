// One accepted 4-byte MPEG audio Layer III frame header, and the search that finds the next one.
#pragma once

#include <cstdint>

class LMP3ByteReader;

struct MP3Header
{
    uint8_t nVersion = 0;     // 0 MPEG-1, 1 MPEG-2, 2 MPEG-2.5
    uint8_t bNoCrc = 1;       // the protection bit: 1 when no CRC follows the header
    int32_t nBitRate = 0;     // bits per second
    uint8_t nSampleIndex = 0; // 0..2
    uint8_t nPadding = 0;
    uint8_t nMode = 0; // 0 stereo, 1 joint stereo, 2 dual channel, 3 single channel
    uint8_t nModeExt = 0;

    static constexpr int kMaxShifts = 65535;

    // Finds and reads the next acceptable header (and skips its CRC); false when none is found.
    // A header found where the search starts is taken when bTrustFirst is set (the previous
    // frame ended there); any other is taken only when the headers of the nConfirm frames that
    // follow it lie where it says it ends and agree with it, as a chance pattern's do not.
    bool ReadHeader(LMP3ByteReader& in, bool bTrustFirst = false, int nConfirm = 1);
    // The acceptance test of four bytes; fills the fields when they pass.
    bool Accept(const uint8_t* pBytes);
    // The same stream: version, sampling frequency and one channel or two.
    bool Agrees(const MP3Header& other) const
    {
        return nVersion == other.nVersion && nSampleIndex == other.nSampleIndex && IsMono() == other.IsMono();
    }

    int32_t SampleRate() const { return kRates[nSampleIndex] >> nVersion; }
    int FrameBytes() const { return (nVersion == 0 ? 144 : 72) * nBitRate / SampleRate() + nPadding; }
    int SideInfoBytes() const { return nVersion == 0 ? (IsMono() ? 17 : 32) : (IsMono() ? 9 : 17); }
    int HeaderBytes() const { return bNoCrc ? 4 : 6; }
    int SamplesPerFrame() const { return nVersion == 0 ? 1152 : 576; }
    bool IsMono() const { return nMode == 3; }
    // Index into the band tables: version * 3 + sampling index.
    int RateIndex() const { return nVersion * 3 + nSampleIndex; }

    static constexpr int32_t kRates[3] = {44100, 48000, 32000};

private:
    // True when the frames after this header (its 4 bytes just read) continue the stream.
    bool Confirmed(LMP3ByteReader& in, int nConfirm) const;
};

// How headerless files (".vox", ".raw") are read and written: they say nothing about
// themselves, so the user states the encoding, rate and channel count, kept in the settings.
#pragma once

#include <cstdint>
#include <string>

#include "formats/LAudioFile.h"
#include "formats/LRawWideSamples.h"

// The encodings of headerless files; the stored setting is the position in this list.
enum LRawEncoding : int32_t
{
    RawDialogicAdpcm = 0,
    RawULaw = 1,
    RawALaw = 2,
    RawPcm16LE = 3,
    RawPcm8Unsigned = 4,
    RawPcm8Signed = 5,
    RawPcm16BE = 6,
    // Read and written inside AU, AIFF and WAV files only; never offered for headerless files.
    RawPcm24BE = 16,
    RawPcm32BE = 17,
    RawFloat32BE = 18,
    RawFloat64BE = 19,
    RawPcm24LE = 20,
    RawPcm32LE = 21,
    RawFloat32LE = 22,
    RawFloat64LE = 23,
};

// The wide encodings and their sample layout.
inline bool LRawIsWide(int32_t nEncoding) { return nEncoding >= RawPcm24BE && nEncoding <= RawFloat64LE; }
inline bool LRawIsBigEndian(int32_t nEncoding) { return nEncoding >= RawPcm24BE && nEncoding <= RawFloat64BE; }
inline LWideSample LRawWideKind(int32_t nEncoding)
{
    return static_cast<LWideSample>((nEncoding - RawPcm24BE) % 4);
}
// The wide encoding of a layout.
inline int32_t LRawWideEncoding(LWideSample kind, bool bBigEndian)
{
    return (bBigEndian ? RawPcm24BE : RawPcm24LE) + static_cast<int32_t>(kind);
}

struct LVoxRawSettings
{
    static constexpr int32_t kEncodings = 7;
    static constexpr int32_t kMinRate = 1000;
    static constexpr int32_t kMaxRate = 196000;
    static constexpr int32_t kMaxChans = 8;

    int32_t nFormat = RawDialogicAdpcm;
    int32_t nSampleRate = 8000;
    uint8_t nChans = 1;

    // "Dialogic ADPCM", ... as the settings list shows them.
    static const char* ListText(int32_t nFormat);
    // "vox", "ulaw", "alaw", "s16le", "u8", "s8", "s16be": the encoding names of the door.
    static const char* ShortName(int32_t nFormat);
    // A list position "0".."6" or a short name; false for anything else.
    static bool ParseFormat(const std::string& szText, int32_t& nFormat);
    // Bytes per sample of an encoding; 0 for the ADPCM one, which packs two samples in a byte.
    static int32_t ElementSize(int32_t nFormat);

    // The stored values, each out-of-range one replaced by its default.
    static LVoxRawSettings Load();
    void Store() const;

    // The layout as a door encoding, and back; what the encoding lacks comes from the stored values.
    LAudioEncoding ToEncoding() const;
    static LVoxRawSettings FromEncoding(const LAudioEncoding& encoding);
};

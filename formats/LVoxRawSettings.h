// How headerless files (".vox", ".raw") are read and written: they say nothing about
// themselves, so the user states the encoding, rate and channel count, kept in the settings.
#pragma once

#include <cstdint>
#include <string>

#include "formats/LAudioFile.h"

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
};

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

// One open file in a project: 540 packed bytes, little-endian, followed in the file by the
// document's cut list.
//   0   path of the file (260, NUL-terminated; empty for a file never saved)
//   260 cursor (4) | 264 selection start (4) | 268 selection end (4)
//   272 view start (4) | 276 view end (4)
//   280 sample rate (4) | 284 channels (1)
//   285 vertical zoom (1, 0 or 1) | 286 display mode (1: 0 "+ /-", 1 "L / R")
//   287 flags (1): bit 0 the document has changes not saved to its file
//   288 encoding to save with (16, NUL-terminated short name such as "pcm16"; empty: the default)
//   304 name shown for the window (236, NUL-terminated; "Untitled 3" for a new file)
// With flag bit 1 the name field is shared: the name takes its first 140 bytes and the last 96
// hold the folder of the project's audio, named relative to the project file (one folder name
// beside it, NUL-terminated). Entries without the bit (files of earlier saves, or a name too
// long to share its field) say nothing about the folder.
// A path too long for its field is not stored: the file then comes back as a new, unsaved one
// under its name (its audio is in the project all the same).
#pragma once

#include <cstdint>
#include <string>

class LByteReader;
class LByteWriter;

class LEdFileEntry
{
public:
    static constexpr size_t kRecordSize = 540;
    static constexpr size_t kPathSize = 260;
    static constexpr size_t kEncodingSize = 16;
    static constexpr size_t kNameSize = 236;
    static constexpr size_t kSharedNameSize = 140;
    static constexpr size_t kAudioFolderSize = kNameSize - kSharedNameSize;
    static constexpr uint8_t kFlagModified = 1;
    static constexpr uint8_t kFlagAudioFolder = 2;

    LEdFileEntry();

    std::string GetPath() const;
    std::string GetName() const;
    std::string GetEncoding() const;
    // A path that does not fit is left empty (see above).
    void SetPath(const std::string& sz);
    void SetName(const std::string& sz);
    void SetEncoding(const std::string& sz);
    // The project's audio folder as this entry records it; empty when it does not. A name that
    // does not fit its field is not recorded.
    std::string GetAudioFolder() const;
    void SetAudioFolder(const std::string& sz);
    // A name the folder field may hold: one folder beside the project, not "." or "..".
    static bool IsFolderName(const std::string& sz);
    bool IsModified() const { return (nFlags & kFlagModified) != 0; }

    void Write(LByteWriter& out) const;
    // The texts are forced to end inside their fields.
    bool Read(LByteReader& in);

    char szPath[kPathSize];
    int32_t sCursor = 0;
    int32_t sSelStart = 0;
    int32_t sSelEnd = 0;
    int32_t sViewStart = 0;
    int32_t sViewEnd = 0;
    int32_t nSampleRate = 44100;
    uint8_t nChans = 1;
    uint8_t bVerticalZoom = 0;
    uint8_t nDisplayMode = 0;
    uint8_t nFlags = 0;
    char szEncoding[kEncodingSize];
    char szName[kNameSize];
    char szAudioFolder[kAudioFolderSize];
};

// Everything a project file holds: the open files in window order (each with its entry and
// document), one byte of state, all bookmarks and all regions.
//
// The ".snp" file, in order: version (1 byte, 1) | number of files (1 byte, low 8 bits) |
// per file its 540-byte entry and its cut list | the state byte | number of bookmarks (1 byte,
// low 8 bits of the total) | the bookmarks grouped by file in file order (those of files not
// in the project are counted but not written) | number of regions (1 byte) | per region its
// 528-byte record and its cut list.
//
// The state byte is the index of the file that was current when the project was saved
// (255: none); it is given back as it was read.
//
// The counts are single bytes, so a project of more than 255 files, bookmarks or regions is
// never written: it would read back short.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "project/LCutListSerial.h"
#include "project/LEdBookMark.h"
#include "project/LEdFileEntry.h"
#include "project/LEdRegion.h"

class LByteReader;
class LByteWriter;

struct LEdProjectFile
{
    LEdFileEntry entry;
    LCutListAudioPtr pDoc;
};

class LEdProject
{
public:
    static constexpr uint8_t kVersion = 1;
    static constexpr uint8_t kNoCurrentFile = 255;
    static constexpr size_t kMaxRecords = 255;

    // How far a read got, for the loading process.
    enum Stage
    {
        StageFiles,
        StageBookmarks,
        StageRegions,
    };
    enum ReadResult
    {
        ReadDone,
        ReadBadVersion, // nothing read
        ReadDamaged,    // what was read before the damage is kept
    };

    // What bookmarks and regions call their file: its path, or its name when it has none yet.
    static std::string FileKey(const LEdFileEntry& entry);

    // Whether the counts fit their bytes.
    bool FitsCounts() const;
    // The whole file; false when the counts do not fit or a cut list could not be written (a
    // segment not kept).
    bool Write(LByteWriter& out, const LCutListSerial::RefOut& mapRef, void (*fnStage)(void*, Stage) = nullptr,
               void* pStageArg = nullptr) const;
    // Fills this (cleared first). fnStage is told when each part begins.
    ReadResult Read(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string* pszWhy = nullptr,
                    void (*fnStage)(void*, Stage) = nullptr, void* pStageArg = nullptr);

private:
    // Notes the folder an entry records; the reason when it is not one the project can use.
    const char* TakeAudioFolder(const std::string& szFolder);
    // The parts of Read; false with the reason the file is damaged.
    bool ReadFiles(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string& szWhy);
    bool ReadBookmarks(LByteReader& in, std::string& szWhy);
    bool ReadRegions(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string& szWhy);

public:
    std::vector<LEdProjectFile> vFiles;
    // The folder beside the project file that holds its audio, recorded in every file entry
    // that has room for it; empty when the file does not say (saves made before it was kept).
    std::string szAudioFolder;
    uint8_t nState = kNoCurrentFile;
    std::vector<LEdBookMark> vBookmarks;
    std::vector<LEdRegion> vRegions;
};

// Keeps bookmarks and regions on the audio they were set on while their file is edited, undone
// and redone. Each open file's audio is remembered as last seen and as it is on disk: the marks
// move from version to version, and a bookmark list written beside the file gives positions in
// the file on disk, so that edits thrown away never leave the list pointing at other audio.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/LPositionMap.h"
#include "project/LEdBookMark.h"
#include "project/LEdRegion.h"

class LEdFile;

class LMarkFollower
{
public:
    // Moves the marks named szKey when the file's audio changed since it was last seen; a file
    // seen for the first time is taken as it is on disk. True when a bookmark moved. The marks'
    // positions are always in the audio as last seen here.
    bool Follow(const LEdFile& file, const std::string& szKey, std::vector<LEdBookMark>& vBookmarks,
                std::vector<LEdRegion>& vRegions);
    // The file's audio as it is now has been written to its file.
    void Saved(const LEdFile& file);
    // The bookmarks, with those named szKey at their places in the file on disk.
    std::vector<LEdBookMark> OnDisk(const LEdFile& file, const std::string& szKey,
                                    const std::vector<LEdBookMark>& vBookmarks) const;
    // Bookmarks read from beside the file (positions on disk), moved to the audio as it is now.
    void FromDisk(const LEdFile& file, std::vector<LEdBookMark>& vRead);
    void Forget(const LEdFile& file) { mapFiles.erase(&file); }
    // Forgets every file but these, the ones open now.
    void Retain(const std::vector<const LEdFile*>& vOpen);

private:
    struct Versions
    {
        LPositionMap::Version seen;
        LPositionMap::Version onDisk;
    };
    Versions& VersionsOf(const LEdFile& file);

    std::map<const LEdFile*, Versions> mapFiles;
};

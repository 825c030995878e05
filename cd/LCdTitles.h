// The names of a disc's tracks: from a CDDB server when it knows the disc, else from the disc's
// own CD-TEXT, else "Track NN".
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "cd/LCdToc.h"
#include "cd/LCddbClient.h"

struct LCdTitles
{
    std::string szAlbum;
    std::string szArtist;
    std::vector<std::string> vTitles; // in the order of the table of contents
    std::string szSource;             // "CDDB", "CD-TEXT" or "" when the tracks are only numbered
    std::string szMessage;            // why the server gave no titles, for the user; empty when it did

    // CD-TEXT where the disc has it, "Track NN" elsewhere.
    static LCdTitles FromDisc(const LCdToc& toc);
    // The entry's titles; a track the entry leaves out keeps the one it had.
    void Apply(const LCddbEntry& entry);
    std::string TitleOf(const LCdToc& toc, int nTrack) const;
};

namespace LCd {
// Picks one of several matches; returns its index, or -1 for none of them.
using LChooseMatch = std::function<int(const std::vector<LCddbMatch>&)>;

// Asks the server (when enabled) and falls back as described above. A null chooser takes the first.
LCdTitles LookUpTitles(const LCdToc& toc, const LCddbServer& server, const std::atomic<bool>* pbCancel,
                       const LChooseMatch& choose);

// "07 - Title.wav", with what file names cannot hold replaced.
std::string TrackFileName(int nTrack, const std::string& szTitle, const std::string& szExtension);
} // namespace LCd

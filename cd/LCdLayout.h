// Where each track of a disc to be written lies: the same layout goes into a disc image and onto
// a disc, so an image burnt elsewhere matches one burnt here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LSoundSourceBase.h"

struct LCdLayoutTrack
{
    std::string szTitle;
    std::string szPerformer;
    int32_t lsnGap = 0;   // where the silence before the track begins (== lsnStart when none)
    int32_t lsnStart = 0; // where its sound begins (index 1)
    int32_t nSectors = 0; // its sound, the last sector padded with silence
};

struct LCdLayout
{
    std::string szAlbum;
    std::string szPerformer;
    std::vector<LCdLayoutTrack> vTracks;

    int32_t TotalSectors() const; // the data of the image, without the lead-in

    // The lead-in counts: a disc's first track begins 2 s in.
    static bool Fits(int32_t nSectors, int nDiscMinutes);
    static int32_t DiscSectors(int nDiscMinutes) { return nDiscMinutes * 60 * 75; }
    // "The tracks take 81:02 but an 80-minute disc holds 80:00." or empty when they fit.
    static std::string FitMessage(int32_t nSectors, int nDiscMinutes);
    // Sectors a source of this rate and length takes once converted to 44100 Hz.
    static int32_t SectorsFor(int32_t nFrames, int32_t nSampleRate);
};

// One track to be written: a source of any rate and channel count, and its CD-TEXT.
struct LCdSourceItem
{
    LSoundSourcePtr pSource;
    std::string szTitle;
    std::string szPerformer;
};

// What a disc holds: its tracks with their places in sectors, and the titles it carries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LCd {
constexpr int32_t kFramesPerSector = 588; // 44100 Hz stereo frames in one 2352-byte sector
constexpr int32_t kBytesPerSector = 2352;
constexpr int32_t kSectorsPerSecond = 75;
constexpr int32_t kLeadInSectors = 150; // the 2 s every disc has before track 1
constexpr int32_t kSampleRate = 44100;

// "00:02:00" style minutes:seconds:sectors, as cue sheets write them.
std::string FormatMsf(int32_t nSectors);
// "Track 07".
std::string DefaultTitle(int nTrack);
// "4:33" for a length in sectors.
std::string FormatLength(int32_t nSectors);
} // namespace LCd

struct LCdTrackInfo
{
    int nNumber = 0;
    int32_t lsnStart = 0;   // where index 1 begins
    int32_t lsnPregap = -1; // where index 0 begins when the track has a gap before it; else -1
    int32_t nSectors = 0;   // from index 1 to where the next track's gap (or the track) begins
    bool bAudio = true;
    std::string szTitle;     // from CD-TEXT, empty when the disc has none
    std::string szPerformer; // from CD-TEXT
};

struct LCdToc
{
    std::vector<LCdTrackInfo> vTracks;
    int32_t lsnLeadOut = 0;
    std::string szAlbum;  // from CD-TEXT
    std::string szArtist; // from CD-TEXT

    const LCdTrackInfo* Track(int nNumber) const;
    int32_t AudioTrackCount() const;
};

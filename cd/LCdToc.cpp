#include "cd/LCdToc.h"

#include <cstdio>

std::string LCd::FormatMsf(int32_t nSectors)
{
    char sz[32];
    std::snprintf(sz, sizeof sz, "%02d:%02d:%02d", nSectors / (60 * kSectorsPerSecond),
                  (nSectors / kSectorsPerSecond) % 60, nSectors % kSectorsPerSecond);
    return sz;
}

std::string LCd::DefaultTitle(int nTrack)
{
    char sz[32];
    std::snprintf(sz, sizeof sz, "Track %02d", nTrack);
    return sz;
}

std::string LCd::FormatLength(int32_t nSectors)
{
    const int32_t nSeconds = (nSectors + kSectorsPerSecond / 2) / kSectorsPerSecond;
    char sz[32];
    std::snprintf(sz, sizeof sz, "%d:%02d", nSeconds / 60, nSeconds % 60);
    return sz;
}

const LCdTrackInfo* LCdToc::Track(int nNumber) const
{
    for (const LCdTrackInfo& t : vTracks)
        if (t.nNumber == nNumber)
            return &t;
    return nullptr;
}

int32_t LCdToc::AudioTrackCount() const
{
    int32_t n = 0;
    for (const LCdTrackInfo& t : vTracks)
        n += t.bAudio ? 1 : 0;
    return n;
}

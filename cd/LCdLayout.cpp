#include "cd/LCdLayout.h"

#include "cd/LCdToc.h"

int32_t LCdLayout::TotalSectors() const
{
    if (vTracks.empty())
        return 0;
    return vTracks.back().lsnStart + vTracks.back().nSectors;
}

bool LCdLayout::Fits(int32_t nSectors, int nDiscMinutes)
{
    return static_cast<int64_t>(nSectors) + LCd::kLeadInSectors <= DiscSectors(nDiscMinutes);
}

std::string LCdLayout::FitMessage(int32_t nSectors, int nDiscMinutes)
{
    if (Fits(nSectors, nDiscMinutes))
        return {};
    return "The tracks take " + LCd::FormatLength(nSectors + LCd::kLeadInSectors) + " but a " + std::to_string(nDiscMinutes) +
           "-minute disc holds " + LCd::FormatLength(DiscSectors(nDiscMinutes)) + ".";
}

int32_t LCdLayout::SectorsFor(int32_t nFrames, int32_t nSampleRate)
{
    if (nFrames <= 0 || nSampleRate <= 0)
        return 0;
    const int64_t nCdFrames = (static_cast<int64_t>(nFrames) * LCd::kSampleRate + nSampleRate - 1) / nSampleRate;
    return static_cast<int32_t>((nCdFrames + LCd::kFramesPerSector - 1) / LCd::kFramesPerSector);
}

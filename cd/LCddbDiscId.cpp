#include "cd/LCddbDiscId.h"

#include <cstdio>

namespace {
uint32_t DigitSum(uint32_t n)
{
    uint32_t nSum = 0;
    for (; n > 0; n /= 10)
        nSum += n % 10;
    return nSum;
}

uint32_t Seconds(int32_t lsn)
{
    return static_cast<uint32_t>(lsn + LCd::kLeadInSectors) / LCd::kSectorsPerSecond;
}
} // namespace

uint32_t LCddb::DiscId(const LCdToc& toc)
{
    if (toc.vTracks.empty())
        return 0;
    uint32_t nSum = 0;
    for (const LCdTrackInfo& t : toc.vTracks)
        nSum += DigitSum(Seconds(t.lsnStart));
    const uint32_t nTotal = Seconds(toc.lsnLeadOut) - Seconds(toc.vTracks.front().lsnStart);
    return ((nSum % 0xFF) << 24) | ((nTotal & 0xFFFF) << 8) | (static_cast<uint32_t>(toc.vTracks.size()) & 0xFF);
}

std::string LCddb::DiscIdText(uint32_t nId)
{
    char sz[16];
    std::snprintf(sz, sizeof sz, "%08x", nId);
    return sz;
}

std::string LCddb::QueryArguments(const LCdToc& toc)
{
    std::string sz = DiscIdText(DiscId(toc)) + " " + std::to_string(toc.vTracks.size());
    for (const LCdTrackInfo& t : toc.vTracks)
        sz += " " + std::to_string(t.lsnStart + LCd::kLeadInSectors);
    sz += " " + std::to_string(Seconds(toc.lsnLeadOut));
    return sz;
}

// The CDDB disc id: the published examples, and libdiscid's computation for many tables.
#include <gtest/gtest.h>

#include <discid/discid.h>

#include "cd/LCddbDiscId.h"

namespace {

// A table from the frame offsets a query sends (lead-in included) and the disc length in seconds.
LCdToc TocFrom(const std::vector<int32_t>& vOffsets, int32_t nSeconds)
{
    LCdToc toc;
    int n = 1;
    for (int32_t nOffset : vOffsets) {
        LCdTrackInfo t;
        t.nNumber = n++;
        t.lsnStart = nOffset - LCd::kLeadInSectors;
        toc.vTracks.push_back(t);
    }
    toc.lsnLeadOut = nSeconds * 75 - LCd::kLeadInSectors;
    return toc;
}

TEST(CddbDiscId, PublishedExamples)
{
    // A disc whose first track does not start at the lead-in's end.
    const LCdToc a = TocFrom({15037, 33615, 47637, 64202, 80665, 99150, 112272, 129287, 150072, 167990, 187560, 199785, 218482}, 3053);
    EXPECT_EQ(LCddb::DiscIdText(LCddb::DiscId(a)), "a20b250d");
    EXPECT_EQ(LCddb::QueryArguments(a),
              "a20b250d 13 15037 33615 47637 64202 80665 99150 112272 129287 150072 167990 187560 199785 218482 3053");
    const LCdToc b = TocFrom({150, 15095, 28530, 40556, 60479, 81952, 100762, 112675, 128656, 145954}, 2260);
    EXPECT_EQ(LCddb::DiscIdText(LCddb::DiscId(b)), "6808d20a");
    const LCdToc c = TocFrom({150, 20972, 36331, 50117, 69524, 86255, 101371, 112896, 131608, 138844, 157390, 174137,
                              193697, 208667, 224774, 238280},
                             3342);
    EXPECT_EQ(LCddb::DiscIdText(LCddb::DiscId(c)), "f00d0c10");
    EXPECT_EQ(LCddb::DiscId(LCdToc()), 0u);
}

std::string LibDiscId(const LCdToc& toc)
{
    DiscId* pDisc = discid_new();
    std::vector<int> vOffsets(100, 0);
    vOffsets[0] = toc.lsnLeadOut + LCd::kLeadInSectors;
    for (size_t i = 0; i < toc.vTracks.size(); ++i)
        vOffsets[i + 1] = toc.vTracks[i].lsnStart + LCd::kLeadInSectors;
    std::string szId;
    if (discid_put(pDisc, 1, static_cast<int>(toc.vTracks.size()), vOffsets.data()))
        szId = discid_get_freedb_id(pDisc);
    discid_free(pDisc);
    return szId;
}

TEST(CddbDiscId, AgreesWithLibdiscidOnManyTables)
{
    uint32_t x = 12345;
    auto next = [&](uint32_t nMod) {
        x = x * 1103515245u + 12345u;
        return (x >> 8) % nMod;
    };
    for (int nCase = 0; nCase < 300; ++nCase) {
        LCdToc toc;
        const int nTracks = 1 + static_cast<int>(next(99));
        int32_t lsn = static_cast<int32_t>(next(3) == 0 ? next(15000) : 0);
        for (int i = 0; i < nTracks; ++i) {
            LCdTrackInfo t;
            t.nNumber = i + 1;
            t.lsnStart = lsn;
            toc.vTracks.push_back(t);
            lsn += 4 * 75 + static_cast<int32_t>(next(static_cast<uint32_t>(330000 / nTracks - 300)));
        }
        toc.lsnLeadOut = lsn;
        ASSERT_EQ(LCddb::DiscIdText(LCddb::DiscId(toc)), LibDiscId(toc)) << "case " << nCase << " with " << nTracks << " tracks";
    }
}

} // namespace

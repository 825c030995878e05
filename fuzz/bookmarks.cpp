// Feeds arbitrary bytes to the bookmark-list reader; a list it accepts holds exactly the records
// it counts, and writes back and reads again to the same bookmarks.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "project/LBookmarkFile.h"
#include "project/LBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<LEdBookMark> v;
    LByteReader in(pData, nSize);
    std::string szWhy;
    if (LBookmarkFile::Read(in, v, &szWhy) != LBookmarkFile::Loaded)
        return 0;
    if (nSize != 2 + v.size() * LEdBookMark::kRecordSize)
        std::abort();
    // Every record under one path, so that all of them are written back.
    for (LEdBookMark& b : v)
        b.SetPath("/x.wav");
    const std::vector<uint8_t> bytes = LBookmarkFile::Serialize("/x.wav", v);
    std::vector<LEdBookMark> again;
    LByteReader in2(bytes.data(), bytes.size());
    if (LBookmarkFile::Read(in2, again, &szWhy) != LBookmarkFile::Loaded || again.size() != v.size())
        std::abort();
    for (size_t i = 0; i < v.size(); ++i)
        if (again[i].GetName() != v[i].GetName() || again[i].sPosition != v[i].sPosition ||
            again[i].nTimesVisited != v[i].nTimesVisited || again[i].nLastVisited != v[i].nLastVisited)
            std::abort();
    return 0;
}

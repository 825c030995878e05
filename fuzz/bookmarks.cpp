// Feeds arbitrary bytes to the bookmark-list reader and writes back what it accepted.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "project/LBookmarkFile.h"
#include "project/LBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<LEdBookMark> v;
    LByteReader in(pData, nSize);
    if (LBookmarkFile::Read(in, v) == LBookmarkFile::Loaded && !v.empty()) {
        const std::vector<uint8_t> bytes = LBookmarkFile::Serialize(v.front().GetPath(), v);
        std::vector<LEdBookMark> again;
        LByteReader in2(bytes.data(), bytes.size());
        LBookmarkFile::Read(in2, again);
    }
    return 0;
}

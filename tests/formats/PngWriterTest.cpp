// The PNG writer's checksums against their published check values, and the file's framing:
// chunk lengths and order, and stored deflate blocks that add up to the filtered rows.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "formats/LPngWriter.h"

namespace {
uint32_t Be32(const std::vector<uint8_t>& v, size_t i)
{
    return (uint32_t{v[i]} << 24) | (uint32_t{v[i + 1]} << 16) | (uint32_t{v[i + 2]} << 8) | v[i + 3];
}
} // namespace

TEST(PngWriter, ChecksumsMatchTheirCheckValues)
{
    const char sz[] = "123456789";
    EXPECT_EQ(LPngWriter::Crc32(reinterpret_cast<const uint8_t*>(sz), 9), 0xCBF43926u);
    const char szWiki[] = "Wikipedia";
    EXPECT_EQ(LPngWriter::Adler32(reinterpret_cast<const uint8_t*>(szWiki), 9), 0x11E60398u);
    // Long runs of 0xFF reduce as they go, with no overflow.
    const std::vector<uint8_t> v(100000, 0xFF);
    uint32_t a = 1, b = 0;
    for (uint8_t n : v) {
        a = (a + n) % 65521;
        b = (b + a) % 65521;
    }
    EXPECT_EQ(LPngWriter::Adler32(v.data(), v.size()), (b << 16) | a);
}

TEST(PngWriter, ChunksAndStoredBlocksFrameTheRows)
{
    // 200 x 150 RGB: 150 rows of 601 bytes, more than one stored block.
    const int32_t w = 200, h = 150;
    std::vector<uint8_t> vRgb(static_cast<size_t>(w) * h * 3);
    for (size_t i = 0; i < vRgb.size(); ++i)
        vRgb[i] = static_cast<uint8_t>(i * 7);
    const std::vector<uint8_t> v = LPngWriter::Encode(w, h, vRgb);
    ASSERT_GT(v.size(), 8u);
    EXPECT_EQ(std::memcmp(v.data(), "\x89PNG\r\n\x1a\n", 8), 0);
    size_t i = 8;
    std::vector<std::string> vTypes;
    std::vector<uint8_t> vIdat;
    while (i + 12 <= v.size()) {
        const uint32_t n = Be32(v, i);
        const std::string szType(v.begin() + i + 4, v.begin() + i + 8);
        vTypes.push_back(szType);
        EXPECT_EQ(Be32(v, i + 8 + n), LPngWriter::Crc32(v.data() + i + 4, n + 4)) << szType;
        if (szType == "IHDR") {
            EXPECT_EQ(Be32(v, i + 8), static_cast<uint32_t>(w));
            EXPECT_EQ(Be32(v, i + 12), static_cast<uint32_t>(h));
        }
        if (szType == "IDAT")
            vIdat.assign(v.begin() + i + 8, v.begin() + i + 8 + n);
        i += 12 + n;
    }
    EXPECT_EQ(i, v.size());
    EXPECT_EQ(vTypes, (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
    // Walk the stored blocks and rebuild the filtered rows.
    ASSERT_GE(vIdat.size(), 6u);
    std::vector<uint8_t> vRaw;
    size_t p = 2;
    bool bLast = false;
    while (!bLast) {
        bLast = vIdat[p] & 1;
        const uint32_t n = vIdat[p + 1] | (vIdat[p + 2] << 8);
        EXPECT_EQ(n ^ 0xFFFFu, static_cast<uint32_t>(vIdat[p + 3] | (vIdat[p + 4] << 8)));
        vRaw.insert(vRaw.end(), vIdat.begin() + p + 5, vIdat.begin() + p + 5 + n);
        p += 5 + n;
    }
    ASSERT_EQ(vRaw.size(), static_cast<size_t>(h) * (3 * w + 1));
    EXPECT_EQ(Be32(vIdat, p), LPngWriter::Adler32(vRaw.data(), vRaw.size()));
    for (int32_t y = 0; y < h; ++y) {
        EXPECT_EQ(vRaw[y * (3 * w + 1)], 0) << "no filter on row " << y;
        EXPECT_EQ(std::memcmp(vRaw.data() + y * (3 * w + 1) + 1, vRgb.data() + y * 3 * w, 3 * w), 0) << y;
    }
}

TEST(PngWriter, RefusesAnEmptyPictureOrAShortBuffer)
{
    EXPECT_TRUE(LPngWriter::Encode(0, 10, {}).empty());
    EXPECT_TRUE(LPngWriter::Encode(4, 4, std::vector<uint8_t>(47)).empty());
    std::string szError;
    EXPECT_FALSE(LPngWriter::Write("/nonexistent-folder/x.png", 1, 1, {1, 2, 3}, &szError));
    EXPECT_FALSE(szError.empty());
}

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "formats/LG711.h"
#include "support/TestSupport.h"

namespace {

// The textbook decoders, written from the bias-and-shift form rather than from offset tables;
// in 16-bit units, times 16 for the internal layout.
int32_t TextbookULaw(uint8_t nByte)
{
    const int b = static_cast<uint8_t>(~nByte);
    const int e = (b >> 4) & 7;
    const int32_t v = ((((b & 15) << 3) + 132) << e) - 132;
    return ((b & 0x80) ? -v : v) * 16;
}

int32_t TextbookALaw(uint8_t nByte)
{
    const int b = nByte ^ 0x55;
    const int e = (b >> 4) & 7;
    int32_t v = ((b & 15) << 4) + 8;
    if (e > 0)
        v = (v + 256) << (e - 1);
    return ((b & 0x80) ? v : -v) * 16;
}

// The 32 µ-law codes whose segment starts four 16-bit steps lower than the textbook's.
bool InLoweredSegment(uint8_t nByte) { return ((~nByte >> 4) & 7) == 5; }

// What sox decodes every byte value 0..255 of a G.711 layout ("ul" or "al") to, in 16-bit units.
std::vector<int16_t> SoxDecodeAll(const testsupport::TempDir& dir, const char* szType)
{
    std::vector<uint8_t> vAll(256);
    for (int i = 0; i < 256; ++i)
        vAll[i] = static_cast<uint8_t>(i);
    const std::string szIn = dir.File(std::string("all.") + szType), szOut = dir.File("all.s16");
    testsupport::WriteFileBytes(szIn, vAll);
    if (testsupport::RunCommand("sox -D -t " + std::string(szType) + " -r 8000 -c 1 " + szIn + " -t s16 " + szOut) != 0)
        return {};
    const std::vector<uint8_t> v = testsupport::ReadFileBytes(szOut);
    std::vector<int16_t> vOut;
    for (size_t i = 0; i + 1 < v.size(); i += 2)
        vOut.push_back(static_cast<int16_t>(v[i] | (v[i + 1] << 8)));
    return vOut;
}

// What sox encodes 16-bit samples to.
std::vector<uint8_t> SoxEncode(const testsupport::TempDir& dir, const char* szType, const std::vector<int16_t>& vSamples)
{
    std::vector<uint8_t> vBytes;
    for (int16_t s : vSamples) {
        vBytes.push_back(static_cast<uint8_t>(s & 0xFF));
        vBytes.push_back(static_cast<uint8_t>((s >> 8) & 0xFF));
    }
    const std::string szIn = dir.File("enc.s16"), szOut = dir.File(std::string("enc.") + szType);
    testsupport::WriteFileBytes(szIn, vBytes);
    if (testsupport::RunCommand("sox -D -t s16 -r 8000 -c 1 " + szIn + " -t " + szType + " " + szOut + " 2>/dev/null") != 0)
        return {};
    return testsupport::ReadFileBytes(szOut);
}

} // namespace

TEST(G711, ULawDecodesEveryByteToItsLevel)
{
    for (int i = 0; i < 256; ++i) {
        const uint8_t n = static_cast<uint8_t>(i);
        const int32_t sExpected = TextbookULaw(n) + (InLoweredSegment(n) ? -64 : 0) * ((~n & 0x80) ? -1 : 1);
        EXPECT_EQ(LG711::ULawToSample(n), sExpected) << "byte " << i;
    }
    EXPECT_EQ(LG711::ULawToSample(0xFF), 0);
    EXPECT_EQ(LG711::ULawToSample(0x7F), 0);
    EXPECT_EQ(LG711::ULawToSample(0x80), 32124 * 16);
    EXPECT_EQ(LG711::ULawToSample(0x00), -32124 * 16);
    EXPECT_EQ(LG711::ULawToSample(0xAF), 65408); // first code of the lowered segment
}

TEST(G711, ALawDecodesEveryByteToItsLevel)
{
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(LG711::ALawToSample(static_cast<uint8_t>(i)), TextbookALaw(static_cast<uint8_t>(i))) << "byte " << i;
    EXPECT_EQ(LG711::ALawToSample(0xD5), 128);
    EXPECT_EQ(LG711::ALawToSample(0x55), -128);
    EXPECT_EQ(LG711::ALawToSample(0xAA), 32256 * 16);
    EXPECT_EQ(LG711::ALawToSample(0x2A), -32256 * 16);
}

TEST(G711, EveryLevelEncodesBackToItsByte)
{
    for (int i = 0; i < 256; ++i) {
        const uint8_t n = static_cast<uint8_t>(i);
        // Both zero codes of µ-law decode to 0, which encodes as the positive one.
        EXPECT_EQ(LG711::SampleToULaw(LG711::ULawToSample(n)), n == 0x7F ? 0xFF : n) << "byte " << i;
        EXPECT_EQ(LG711::SampleToALaw(LG711::ALawToSample(n)), n) << "byte " << i;
    }
}

TEST(G711, EncodersSplitSegmentsAtTheirThresholdsAndSaturate)
{
    // Segment e begins where the magnitude reaches its threshold; the mantissa saturates at 15.
    const int32_t aULaw[] = {1984, 6080, 14272, 30656, 63360, 128960, 260032};
    for (int e = 1; e <= 7; ++e) {
        const int32_t t = aULaw[e - 1];
        EXPECT_EQ(static_cast<uint8_t>(~LG711::SampleToULaw(t)), e << 4) << e;
        EXPECT_EQ(static_cast<uint8_t>(~LG711::SampleToULaw(t - 1)), ((e - 1) << 4) | 15) << e;
        EXPECT_EQ(static_cast<uint8_t>(~LG711::SampleToULaw(-t)), 0x80 | (e << 4)) << e;
    }
    const int32_t aALaw[] = {4096, 8192, 16384, 32768, 65536, 131072, 262144};
    for (int e = 1; e <= 7; ++e) {
        const int32_t t = aALaw[e - 1];
        EXPECT_EQ(LG711::SampleToALaw(t) ^ 0x55, 0x80 | (e << 4)) << e;
        EXPECT_EQ(LG711::SampleToALaw(t - 1) ^ 0x55, 0x80 | ((e - 1) << 4) | 15) << e;
        EXPECT_EQ(LG711::SampleToALaw(-t) ^ 0x55, e << 4) << e;
    }
    for (int32_t s : {0x7FFFFFFF, 0x7FFF0 * 4, static_cast<int32_t>(0x80000000), -0x7FFF0 * 4}) {
        EXPECT_EQ(LG711::SampleToULaw(s), s > 0 ? 0x80 : 0x00) << s;
        EXPECT_EQ(LG711::SampleToALaw(s), s > 0 ? 0xAA : 0x2A) << s;
    }
    EXPECT_EQ(LG711::SampleToULaw(0), 0xFF);
    EXPECT_EQ(LG711::SampleToALaw(0), 0xD5);
    EXPECT_EQ(LG711::SampleToALaw(-1), 0x55);
}

TEST(G711, AgreesWithSox)
{
    if (!testsupport::HaveTool("sox"))
        GTEST_SKIP() << "sox is not installed";
    testsupport::TempDir dir;
    const std::vector<int16_t> vULaw = SoxDecodeAll(dir, "ul"), vALaw = SoxDecodeAll(dir, "al");
    ASSERT_EQ(vULaw.size(), 256u);
    ASSERT_EQ(vALaw.size(), 256u);
    std::vector<int16_t> vULevels, vALevels;
    for (int i = 0; i < 256; ++i) {
        const uint8_t n = static_cast<uint8_t>(i);
        if (!InLoweredSegment(n))
            EXPECT_EQ(LG711::ULawToSample(n), vULaw[i] * 16) << "µ-law byte " << i;
        else // four 16-bit steps nearer zero
            EXPECT_EQ(LG711::ULawToSample(n), (vULaw[i] + (vULaw[i] < 0 ? 4 : -4)) * 16) << "µ-law byte " << i;
        EXPECT_EQ(LG711::ALawToSample(n), vALaw[i] * 16) << "A-law byte " << i;
        vULevels.push_back(static_cast<int16_t>(LG711::ULawToSample(n) / 16));
        vALevels.push_back(static_cast<int16_t>(LG711::ALawToSample(n) / 16));
    }
    // sox encodes each of our levels, the lowered ones too, to the byte it came from.
    const std::vector<uint8_t> vUBytes = SoxEncode(dir, "ul", vULevels);
    ASSERT_EQ(vUBytes.size(), 256u);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(vUBytes[i], i == 0x7F ? 0xFF : i) << "µ-law byte " << i;
    const std::vector<uint8_t> vABytes = SoxEncode(dir, "al", vALevels);
    ASSERT_EQ(vABytes.size(), 256u);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(vABytes[i], i) << "A-law byte " << i;
}

#include <gtest/gtest.h>

#include "dsp/EffectDocSupport.h"
#include "dsp/effects/LEfAutotrim.h"

using namespace efftest;

namespace {
class EffectAutotrim : public EffectDocTest
{
protected:
    // Mono, 21 overview blocks; loud (400000, overview byte 195) over [sLoudStart, sLoudEnd).
    LCutListAudioPtr MakeLoud(int32_t sLoudStart, int32_t sLoudEnd, int32_t nFrames = 20 * 256)
    {
        std::vector<int32_t> v(nFrames, 1000);
        for (int32_t i = sLoudStart; i < sLoudEnd; ++i)
            v[i] = (i & 1) ? 400000 : -400000;
        return MakeDoc(v, 1, 8000);
    }
    int32_t Trim(LCutListAudio& doc, int32_t nDb = -20)
    {
        BodyDialog dlg;
        return LEfAutotrim::Run(dlg, doc, nDb);
    }
};
} // namespace

TEST_F(EffectAutotrim, KeepsOneQuietBlockBeforeAndNoneAfter)
{
    LCutListAudioPtr pDoc = MakeLoud(5 * 256 + 10, 12 * 256 + 100);
    auto vBefore = ReadDoc(*pDoc);
    ASSERT_EQ(Trim(*pDoc), 0);
    // Start one block before block 5, end at the end of block 12.
    ASSERT_EQ(pDoc->GetLength(), 13 * 256 - 4 * 256);
    auto v = ReadDoc(*pDoc);
    EXPECT_EQ(v.front(), vBefore[4 * 256]);
    EXPECT_EQ(v.back(), vBefore[13 * 256 - 1]);
}

TEST_F(EffectAutotrim, SkipsTheFirstBlockAndTheLastGoingBackward)
{
    // Loud only in block 0 and in the last (partial) block: the bounds would cross, nothing goes.
    std::vector<int32_t> v(20 * 256 + 50, 0);
    v[10] = 400000;
    v[20 * 256 + 10] = 400000;
    LCutListAudioPtr pDoc = MakeDoc(v, 1, 8000);
    ASSERT_EQ(Trim(*pDoc), 0);
    EXPECT_EQ(pDoc->GetLength(), 20 * 256 + 50);
}

TEST_F(EffectAutotrim, QuietThroughoutDeletesNothingAndCutGainsCount)
{
    LCutListAudioPtr pQuiet = MakeDoc(std::vector<int32_t>(5000, 0), 1, 8000);
    ASSERT_EQ(Trim(*pQuiet), 0);
    EXPECT_EQ(pQuiet->GetLength(), 5000);
    // An even hum is loud everywhere: only the partial last block, never scanned, goes.
    LCutListAudioPtr pHum = MakeDoc(std::vector<int32_t>(5000, 3000), 1, 8000);
    ASSERT_EQ(Trim(*pHum), 0);
    EXPECT_EQ(pHum->GetLength(), 19 * 256);

    // Two equal loud passages; the first turned down to 5 % falls under the threshold.
    std::vector<int32_t> vIn(20 * 256, 0);
    for (int i = 2 * 256; i < 4 * 256; ++i)
        vIn[i] = 400000;
    for (int i = 10 * 256; i < 12 * 256; ++i)
        vIn[i] = 400000;
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    pDoc->EfAmplify(0, 8 * 256, 5);
    ASSERT_EQ(Trim(*pDoc), 0);
    EXPECT_EQ(pDoc->GetLength(), 12 * 256 - 9 * 256);
}

TEST_F(EffectAutotrim, BoundsOnAStereoTable)
{
    // 6 blocks x 2 channels; block 2 loud on the right channel only.
    std::vector<uint8_t> vTable(6 * 2 * 2, 0);
    vTable[(2 * 2 + 1) * 2] = 200;
    int32_t s = -1, e = -1;
    LEfAutotrim::FindBounds(vTable, 2, -20, 6 * 256 - 10, &s, &e);
    EXPECT_EQ(s, 256);
    EXPECT_EQ(e, 3 * 256);
}

#include <gtest/gtest.h>

#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "core/LFixed.h"
#include "dsp/effects/LEfNormalize.h"

using namespace efftest;

namespace {
class EffectNormalize : public EffectDocTest
{
protected:
    int32_t Run(LCutListAudio* pDoc, int32_t s, int32_t e, int32_t nLevel, int nCancelAt = 0)
    {
        CancellingFactory fact(nCancelAt);
        struct Proc : LProgressDialog
        {
            Proc(LEffectData d) : LProgressDialog("Normalizing"), d(d) {}
            int32_t Process() override { return LEfNormalize::Run(*this, d); }
            LEffectData d;
        };
        LEffectData d;
        d.pCutList = pDoc;
        d.sStart = s;
        d.sEnd = e;
        d.nParam1 = nLevel;
        Proc proc(d);
        return proc.Run(&fact);
    }
};
} // namespace

TEST_F(EffectNormalize, GainIsLevelOfFullScaleOverPeakAtMost400)
{
    EXPECT_EQ(LEfNormalize::GainPercent(100, 0x7FFF0), 100);
    EXPECT_EQ(LEfNormalize::GainPercent(100, 262136), 200);
    EXPECT_EQ(LEfNormalize::GainPercent(100, 262137), 199); // truncates
    EXPECT_EQ(LEfNormalize::GainPercent(100, 131068), 400);
    EXPECT_EQ(LEfNormalize::GainPercent(100, 1000), 400);
    EXPECT_EQ(LEfNormalize::GainPercent(50, 0x7FFF0 * 2), 25);
    const int32_t v[] = {5, -7, 3};
    EXPECT_EQ(LEfNormalize::BlockPeak(v, 3), 7);
    const int32_t vNeg[] = {-5, -9};
    EXPECT_EQ(LEfNormalize::BlockPeak(vNeg, 2), 9);
}

TEST_F(EffectNormalize, AmplifiesTheCutsOfTheRange)
{
    std::vector<int32_t> vIn(20000, 0);
    vIn[15000] = -262136; // peak by the negated least sample
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    ASSERT_EQ(Run(pDoc.Get(), 10000, 20000, 100), 0);
    EXPECT_EQ(ReadDoc(*pDoc)[15000], LMulGain824(-262136, 0x1FFFFE0)); // 200 % with the gain's lost digits
    EXPECT_NE(DescribeCuts(*pDoc).find(std::to_string(0x1FFFFE0)), std::string::npos);
}

TEST_F(EffectNormalize, QuietIsCappedSilentAndEmptyAreLeftAlone)
{
    std::vector<int32_t> vIn(1000, 100);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    ASSERT_EQ(Run(pDoc.Get(), 0, 1000, 100), 0);
    EXPECT_EQ(ReadDoc(*pDoc)[500], 399); // 400 %, with the gain's lost digits

    LCutListAudioPtr pSilent = MakeDoc(std::vector<int32_t>(1000, 0), 1, 8000);
    const std::string szBefore = DescribeCuts(*pSilent);
    ASSERT_EQ(Run(pSilent.Get(), 0, 1000, 100), 0);
    EXPECT_EQ(DescribeCuts(*pSilent), szBefore);

    // An empty range is refused here, although the streaming effects accept it.
    LCutListAudioPtr pDoc2 = MakeDoc(vIn, 1, 8000);
    const std::string szBefore2 = DescribeCuts(*pDoc2);
    ASSERT_EQ(Run(pDoc2.Get(), 500, 500, 100), 0);
    EXPECT_EQ(DescribeCuts(*pDoc2), szBefore2);
}

TEST_F(EffectNormalize, NegativeStartCountsFromZeroAndCancelReturnsOne)
{
    std::vector<int32_t> vIn(30000, 1000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    const std::string szBefore = DescribeCuts(*pDoc);
    EXPECT_EQ(Run(pDoc.Get(), -500, 30000, 100, 2), 1);
    EXPECT_EQ(DescribeCuts(*pDoc), szBefore);
    ASSERT_EQ(Run(pDoc.Get(), -500, 30000, 100), 0);
    EXPECT_EQ(pDoc->GetLength(), 30000);
    EXPECT_EQ(ReadDoc(*pDoc)[0], 3999);
}

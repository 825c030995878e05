#include <gtest/gtest.h>

#include "core/LMemorySound.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LDCOffsetCorrection.h"

using namespace efftest;

TEST(EffectDCOffset, SubtractsTheRoundedMeanOfEachChannel)
{
    // left: mean 1000.5 rounds away to 1001; right: mean -250
    std::vector<int32_t> vIn;
    for (int i = 0; i < 20000; ++i) {
        vIn.push_back(i % 2 ? 2001 : 0);
        vIn.push_back(i % 2 ? -500 : 0);
    }
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 8000, 2));
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(8000, 2));
    BodyDialog dlg;
    ASSERT_EQ(LDCOffsetCorrection::Run(dlg, pSrc.Get(), pSink.Get()), 0);
    const auto& v = pSink->GetSamples();
    ASSERT_EQ(v.size(), vIn.size());
    EXPECT_EQ(v[0], -1001);
    EXPECT_EQ(v[2], 1000);
    EXPECT_EQ(v[1], 250);
    EXPECT_EQ(v[3], -250);
}

TEST(EffectDCOffset, FormatMismatchIsResultTwoAndEmptySourceDividesByOne)
{
    LSoundSourcePtr pSrc(new LSRCMemory({1, 2, 3, 4}, 8000, 2));
    LCountedPtr<LSNKMemory> pMono(new LSNKMemory(8000, 1));
    LCountedPtr<LSNKMemory> pRate(new LSNKMemory(11025, 2));
    BodyDialog dlg;
    EXPECT_EQ(LDCOffsetCorrection::Run(dlg, pSrc.Get(), pMono.Get()), 2);
    EXPECT_EQ(LDCOffsetCorrection::Run(dlg, pSrc.Get(), pRate.Get()), 2);
    EXPECT_TRUE(pMono->GetSamples().empty());
    LSoundSourcePtr pLatched(new LSRCSilence);
    LCountedPtr<LSNKMemory> pSilentSink(new LSNKMemory(11025, 1));
    EXPECT_EQ(LDCOffsetCorrection::Run(dlg, pLatched.Get(), pSilentSink.Get()), 2);

    LSoundSourcePtr pEmpty(new LSRCMemory({}, 8000, 1));
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(8000, 1));
    EXPECT_EQ(LDCOffsetCorrection::Run(dlg, pEmpty.Get(), pSink.Get()), 0);
    EXPECT_TRUE(pSink->GetSamples().empty());
}

namespace {
class EffectDCOffsetDoc : public EffectDocTest
{
};
} // namespace

TEST_F(EffectDCOffsetDoc, CorrectsTheRangeOfADocument)
{
    std::vector<int32_t> vIn(10000, 5000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    BodyDialog dlg;
    LEffectData d;
    d.pCutList = pDoc;
    d.sStart = 2000;
    d.sEnd = 4000;
    ASSERT_EQ(LDCOffsetCorrection::RunOnDocument(dlg, d), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 10000u);
    EXPECT_EQ(v[1999], 5000);
    EXPECT_EQ(v[2000], 0);
    EXPECT_EQ(v[3999], 0);
    EXPECT_EQ(v[4000], 5000);
}

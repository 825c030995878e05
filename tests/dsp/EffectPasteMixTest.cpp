#include <gtest/gtest.h>

#include "core/LMemorySound.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/effects/LEfPasteMix.h"

using namespace efftest;

namespace {
class EffectPasteMix : public EffectDocTest
{
protected:
    // A document of 1000 frames of 100 and a clip of 300 frames of 1000, at 1000 frames a second.
    void SetUp() override
    {
        EffectDocTest::SetUp();
        pDoc = MakeDoc(std::vector<int32_t>(1000, 100), 1, 1000);
    }
    void TearDown() override
    {
        pDoc.Reset();
        EffectDocTest::TearDown();
    }
    int32_t Mix(int32_t s, int32_t e, LEfPasteMix::Options opt, int32_t nClip = 300)
    {
        LSoundSourcePtr pClip(new LSRCMemory(std::vector<int32_t>(nClip, 1000), 1000, 1));
        LEffectData d;
        d.pCutList = pDoc;
        d.sStart = s;
        d.sEnd = e;
        BodyDialog dlg;
        return LEfPasteMix::Run(dlg, d, pClip.Get(), opt);
    }
    LCutListAudioPtr pDoc;
};
} // namespace

TEST_F(EffectPasteMix, ShortClipMixesAtVolumeFromTheSelectionStart)
{
    LEfPasteMix::Options opt;
    opt.nVolumePercent = 50;
    ASSERT_EQ(Mix(100, 900, opt), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 1000u);
    EXPECT_EQ(v[99], 100);
    EXPECT_NEAR(v[100], 600, 1);
    EXPECT_NEAR(v[399], 600, 1);
    EXPECT_EQ(v[400], 100);
}

TEST_F(EffectPasteMix, LongerClipInsertsSilenceOrExtendsOrFadesOut)
{
    LEfPasteMix::Options opt;
    opt.nLonger = LEfPasteMix::InsertSilence;
    ASSERT_EQ(Mix(100, 200, opt), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 1200u);
    EXPECT_EQ(v[150], 1100);
    EXPECT_EQ(v[250], 1000); // the clip over the inserted silence
    EXPECT_EQ(v[399], 1000);
    EXPECT_EQ(v[400], 100);  // the rest of the document, moved back

    pDoc = MakeDoc(std::vector<int32_t>(1000, 100), 1, 1000);
    opt.nLonger = LEfPasteMix::ExtendSelection;
    ASSERT_EQ(Mix(900, 950, opt), 0);
    v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 1200u); // the clip runs past the end
    EXPECT_EQ(v[999], 1100);
    EXPECT_EQ(v[1000], 1000);

    pDoc = MakeDoc(std::vector<int32_t>(1000, 100), 1, 1000);
    opt.nLonger = LEfPasteMix::FadeMixOut;
    opt.nFadeOutMs = 50;
    ASSERT_EQ(Mix(100, 200, opt), 0);
    v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 1000u);
    EXPECT_EQ(v[149], 1100);
    EXPECT_NEAR(v[175], 600, 2);
    EXPECT_LT(v[199], 130);
    EXPECT_EQ(v[200], 100);
}

TEST_F(EffectPasteMix, NoSelectionMixesTheWholeClip)
{
    LEfPasteMix::Options opt;
    ASSERT_EQ(Mix(500, 500, opt), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 1000u);
    EXPECT_EQ(v[799], 1100);
    EXPECT_EQ(v[800], 100);
}

#include <gtest/gtest.h>

#include "core/LFixed.h"
#include "core/LSettings.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LSRCEnvelope.h"
#include "support/TestSupport.h"

using namespace efftest;

TEST(EffectEnvelope, FlatFullLevelPassesAndARampShapesTheLevel)
{
    auto vIn = Noise(2 * 10000, 0x7FFF0);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 8000, 2));
    LSRCEnvelope flat(pSrc.Get(), LCurveFile::DefaultEnvelope());
    EXPECT_EQ(ReadAll(flat, 10000), vIn);

    std::vector<int32_t> vConst(10000, 400000);
    LSoundSourcePtr pConst(new LSRCMemory(vConst, 8000, 1));
    LPointList ramp;
    ramp.Add(0, 0);
    ramp.Add(500, 100);
    ramp.Add(1000, 0);
    LSRCEnvelope env(pConst.Get(), ramp);
    auto v = ReadAll(env, 10000);
    EXPECT_EQ(v[0], 0);
    EXPECT_NEAR(v[2500], 200000, 50);
    EXPECT_NEAR(v[5000], 400000, 50);
    EXPECT_NEAR(v[7500], 200000, 50);
    for (int i = 1; i < 5000; ++i)
        ASSERT_GE(v[i], v[i - 1]);
}

TEST(EffectEnvelope, BadCurveLatches)
{
    LSoundSourcePtr pSrc(new LSRCMemory({1, 2, 3}, 8000, 1));
    LPointList bad;
    bad.nPoints = 2;
    bad.aPoints[0] = {500, 10};
    bad.aPoints[1] = {100, 10};
    LSRCEnvelope env(pSrc.Get(), bad);
    EXPECT_TRUE(env.IsError());
}

TEST(EffectCurveFile, SavesLoadsAndFallsBackOnDamage)
{
    testsupport::TempDir dir;
    LPointList list;
    list.Add(30, -6);
    list.Add(1000, 3);
    list.Add(12000, 0);
    const std::string szPath = dir.File("sub/equalizer.dat");
    ASSERT_TRUE(LCurveFile::Save(szPath, list));
    LPointList back;
    ASSERT_TRUE(LCurveFile::Load(szPath, back));
    ASSERT_EQ(back.nPoints, 3);
    EXPECT_EQ(back.aPoints[1].x, 1000);
    EXPECT_EQ(back.aPoints[0].y, -6);

    auto vBytes = testsupport::ReadFileBytes(szPath);
    vBytes.pop_back();
    testsupport::WriteFileBytes(szPath, vBytes);
    LPointList keep = LCurveFile::DefaultEnvelope();
    EXPECT_FALSE(LCurveFile::Load(szPath, keep));
    EXPECT_EQ(keep.nPoints, 2);
    EXPECT_EQ(keep.aPoints[1].x, 1000);

    // x not ascending, and a count beyond the list, are refused.
    const unsigned char aDescending[] = {2, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_FALSE(LCurveFile::Parse(aDescending, sizeof aDescending, keep));
    const unsigned char aHuge[] = {0xFF, 0, 0, 0};
    EXPECT_FALSE(LCurveFile::Parse(aHuge, sizeof aHuge, keep));
}

TEST(EffectCurveFile, DataFolderSettingChoosesWhereCurvesLive)
{
    LSettings::SetString("Folders", "Current", "/some/where");
    EXPECT_EQ(LCurveFile::PathOf("envelope.dat"), "/some/where/envelope.dat");
    LSettings::Store().DeleteValue("Folders", "Current");
    EXPECT_NE(LCurveFile::PathOf("envelope.dat").find("Korvane/Sonitra/Current/envelope.dat"), std::string::npos);
}

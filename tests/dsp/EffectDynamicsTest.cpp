#include <gtest/gtest.h>

#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LEffectRunner.h"

using namespace efftest;

namespace {
class EffectDynamics : public EffectDocTest
{
};

std::vector<int32_t> RunOnCopy(const std::vector<int32_t>& vIn, const char* szEffect, const LEffectArgs& args)
{
    LCutListAudioPtr pDoc = MakeDoc(vIn, 2, 22050);
    CancellingFactory fact(0);
    LEffectProcess proc(*LEffectCatalog::ByCliName(szEffect), pDoc.Get(), 0, pDoc->GetLength(), args);
    EXPECT_EQ(proc.Run(&fact), 0);
    return ReadDoc(*pDoc);
}
} // namespace

TEST_F(EffectDynamics, CompressorLimitSettingDoesNotChangeTheSound)
{
    auto vIn = Noise(2 * 30000, 300000);
    for (size_t i = 0; i < vIn.size() / 2; ++i)
        vIn[i] /= 20; // a quiet half, then a loud one
    LEffectArgs a;
    a.mapValues = {{"CompressorThreshold", -20}, {"CompressorRatio", 4}, {"CompressorLimit", 3}};
    LEffectArgs b = a;
    b.mapValues["CompressorLimit"] = -60;
    auto vA = RunOnCopy(vIn, "dynamic-range-compressor", a);
    EXPECT_EQ(vA, RunOnCopy(vIn, "dynamic-range-compressor", b));
    EXPECT_NE(vA, vIn);
    EXPECT_EQ(vA.size(), vIn.size());
}

TEST_F(EffectDynamics, CompressorRatioOneToOnePassesTheAudio)
{
    auto vIn = Noise(2 * 20000, 300000);
    LEffectArgs a;
    a.mapValues = {{"CompressorThreshold", -30}, {"CompressorRatio", 0}};
    EXPECT_EQ(RunOnCopy(vIn, "dynamic-range-compressor", a), vIn);
}

TEST_F(EffectDynamics, NoiseReductionHandsALatchedInputBack)
{
    LSoundSourcePtr pSilent(new LSRCSilence);
    LEffectArgs args;
    args.mapValues["NoiseGateLevel"] = -30;
    LEffectFactoryPtr pFactory = LEffectCatalog::ByCliName("noise-reduction")->pfnFactory(args);
    EXPECT_EQ(pFactory->Create(pSilent.Get()).Get(), pSilent.Get());
}

TEST_F(EffectDynamics, SimpleSpeedChangeShortensAndRaisesPitch)
{
    std::vector<int32_t> vIn;
    for (int i = 0; i < 8000; ++i)
        vIn.push_back(i % 16 < 8 ? 100000 : -100000); // 500 Hz square at 8000 Hz
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    LEffectArgs a;
    a.mapValues = {{"SpSpeedPitch", 200}};
    CancellingFactory fact(0);
    LEffectProcess proc(*LEffectCatalog::ByCliName("simple-speed-and-pitch-change"), pDoc.Get(), 0, 8000, a);
    ASSERT_EQ(proc.Run(&fact), 0);
    auto v = ReadDoc(*pDoc);
    EXPECT_NEAR(static_cast<int>(v.size()), 4000, 2);
    int nCrossings = 0;
    for (size_t i = 1001; i < 3000; ++i)
        nCrossings += (v[i - 1] < 0) != (v[i] < 0);
    EXPECT_NEAR(nCrossings, 500, 10); // 1000 Hz over a quarter second
}

#include <gtest/gtest.h>

#include "core/LFixed.h"
#include "dsp/effects/LSRCFade.h"
#include "dsp/EffectTestUtil.h"

using namespace efftest;

TEST(EffectFade, FadeInRisesFromSilenceToUnity)
{
    const int n = 10000;
    auto vIn = Noise(2 * n, 0x7FFF0);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 44100, 2));
    LSRCFade fade(pSrc.Get(), LSRCFade::FadeIn);
    auto v = ReadAll(fade, n);
    EXPECT_EQ(v[0], 0);
    EXPECT_EQ(v[1], 0);
    for (int i : {1, 2500, 5000, 9999}) {
        const int32_t g = fade.GainAt(i);
        EXPECT_NEAR(g, static_cast<int64_t>(i) * kGainUnity / n, 1);
        EXPECT_NEAR(v[2 * i], LMulGain824(vIn[2 * i], g), 3);
        EXPECT_NEAR(v[2 * i + 1], LMulGain824(vIn[2 * i + 1], g), 3);
    }
}

TEST(EffectFade, FadeOutFallsToSilenceAndHoldsOutsideItsStretch)
{
    std::vector<int32_t> vIn(1000, 400000);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 1000, 1));
    LSRCFade fade(pSrc.Get(), LSRCFade::FadeOut, 500, 400);
    auto v = ReadAll(fade, 1000);
    EXPECT_EQ(v[0], 400000);
    EXPECT_EQ(v[499], 400000);
    EXPECT_EQ(v[500], 400000);
    EXPECT_NEAR(v[700], 200000, 2);
    EXPECT_LT(v[899], 1200);
    EXPECT_EQ(v[900], 0);
    EXPECT_EQ(v[999], 0);
    for (int i = 501; i < 900; ++i)
        ASSERT_LE(v[i], v[i - 1]);
}

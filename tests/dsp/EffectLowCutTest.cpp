#include <gtest/gtest.h>

#include "dsp/effects/LSRCLowCut.h"
#include "dsp/EffectTestUtil.h"

using namespace efftest;

TEST(EffectLowCut, CoefficientIsRoundedFromTheExponential)
{
    EXPECT_EQ(LSRCLowCut::Coefficient(250, 44100), 9);   // 8.958
    EXPECT_EQ(LSRCLowCut::Coefficient(1000, 8000), 139); // 139.28
    EXPECT_EQ(LSRCLowCut::Coefficient(0, 44100), 0);
    EXPECT_EQ(LSRCLowCut::Coefficient(20000, 8000), 256);
}

TEST(EffectLowCut, AccumulatorWorksPerChannelWithFlooringShift)
{
    // rate 8000, 1000 Hz: a = 139. Left a constant 1000, right a constant -1000.
    std::vector<int32_t> vIn;
    for (int i = 0; i < 4; ++i) {
        vIn.push_back(1000);
        vIn.push_back(-1000);
    }
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 8000, 2));
    LSRCLowCut f(pSrc.Get(), 1000);
    auto v = ReadAll(f, 4);
    // left: 1000; acc 139000 -> 1000 - 542 = 458; acc 202662 -> 1000 - 791 = 209
    EXPECT_EQ(v[0], 1000);
    EXPECT_EQ(v[2], 458);
    EXPECT_EQ(v[4], 209);
    // right: -1000; acc -139000 >> 8 = -543 (floors) -> -457
    EXPECT_EQ(v[1], -1000);
    EXPECT_EQ(v[3], -457);
}

TEST(EffectLowCut, RemovesDcAndKeepsHighFrequencies)
{
    const int n = 44100;
    std::vector<int32_t> vIn(n);
    for (int i = 0; i < n; ++i)
        vIn[i] = 100000 + ((i & 1) ? 50000 : -50000); // DC plus the highest frequency
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 44100, 1));
    LSRCLowCut f(pSrc.Get(), 250);
    auto v = ReadAll(f, n);
    int64_t nSum = 0;
    for (int i = n - 1000; i < n; ++i)
        nSum += v[i];
    EXPECT_LT(std::abs(nSum / 1000), 300);               // DC gone
    EXPECT_GT(std::abs(v[n - 1] - v[n - 2]), 95000);      // Nyquist kept
}

TEST(EffectLowCut, SeekRestartsTheAccumulators)
{
    std::vector<int32_t> vIn(100, 5000);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 8000, 1));
    LSRCLowCut f(pSrc.Get(), 1000);
    std::vector<int32_t> v(50);
    f.Read(v.data(), 50);
    f.SetPosition(10);
    f.Read(v.data(), 1);
    EXPECT_EQ(v[0], 5000);
}

#include <gtest/gtest.h>

#include "core/LFixed.h"
#include "dsp/effects/LSRCReverb.h"
#include "dsp/EffectTestUtil.h"

using namespace efftest;

namespace {
std::vector<int32_t> ReverbModel(std::vector<int32_t> v, const LSRCReverb& r)
{
    const size_t L = r.GetRingLength();
    std::vector<int32_t> ring(L, 0);
    size_t rp[4], w = 0;
    for (int k = 0; k < 4; ++k)
        rp[k] = r.GetTapStart(k);
    for (auto& x : v) {
        int32_t s = x;
        for (int k = 0; k < 4; ++k) {
            s = LWrapAdd(s, LWrapMul(ring[rp[k]], r.GetTapGain(k)) >> 9);
            rp[k] = (rp[k] + 1) % L;
        }
        s = LWrapAdd(s, LWrapMul(ring[w], r.GetFeedbackGain()) >> 9);
        ring[w] = s;
        w = (w + 1) % L;
        x = s;
    }
    return v;
}
} // namespace

TEST(EffectReverb, TapsAndGainsAreRoundedFromTheRing)
{
    LSoundSourcePtr pSrc(new LSRCMemory({}, 2000, 1));
    LSRCReverb r(pSrc.Get(), 100, 100);
    EXPECT_EQ(r.GetRingLength(), 200);
    EXPECT_EQ(r.GetTapStart(0), 148); // 148.26
    EXPECT_EQ(r.GetTapStart(1), 112); // 111.62
    EXPECT_EQ(r.GetTapStart(2), 76);  // 76.46
    EXPECT_EQ(r.GetTapStart(3), 42);  // 42.2
    EXPECT_EQ(r.GetTapGain(0), 205); // 512 x 0.4 = 204.8
    EXPECT_EQ(r.GetTapGain(1), 51);
    EXPECT_EQ(r.GetTapGain(2), 154);
    EXPECT_EQ(r.GetTapGain(3), 36);
    EXPECT_EQ(r.GetFeedbackGain(), 67);

    LSRCReverb r50(pSrc.Get(), 50, 10); // 10 samples raised to 128
    EXPECT_EQ(r50.GetRingLength(), 128);
    EXPECT_EQ(r50.GetTapStart(0), 95);   // 94.886
    EXPECT_EQ(r50.GetTapGain(0), 102);   // base 256 x 0.4 = 102.4
    EXPECT_EQ(r50.GetFeedbackGain(), 33); // 33.28
}

TEST(EffectReverb, EachTapHearsTheOutputItsDistanceEarlier)
{
    // Ring of 200: the taps hear 52, 88, 124 and 158 samples back, the feedback 200.
    LSoundSourcePtr pSrc(new LSRCMemory(Impulse(300, 0, 512), 2000, 1));
    LSRCReverb r(pSrc.Get(), 100, 100);
    auto v = ReadAll(r, 300);
    EXPECT_EQ(v[52], 205);
    EXPECT_EQ(v[88], 51);
    EXPECT_EQ(v[124], 154);
    EXPECT_EQ(v[158], 36);
    EXPECT_EQ(v[200], 67);
    EXPECT_EQ(v[1], 0);
    EXPECT_EQ(v[51], 0);
}

TEST(EffectReverb, StereoTapsWithOddOffsetsCrossChannels)
{
    // Ring of 256 samples (128 frames): taps hear 66, 113, 158 and 202 samples back; 113 is odd.
    LSoundSourcePtr pSrc(new LSRCMemory(Impulse(2 * 200, 0, 512), 2560, 2));
    LSRCReverb r(pSrc.Get(), 100, 50);
    ASSERT_EQ(r.GetRingLength(), 256);
    auto v = ReadAll(r, 200);
    EXPECT_EQ(v[2 * 33], 205);      // left, frame 33
    EXPECT_EQ(v[2 * 56 + 1], 51);   // right, frame 56: heard from the left channel
    EXPECT_EQ(v[2 * 56], 0);
    EXPECT_EQ(v[2 * 79], 154);      // left, frame 79
    EXPECT_EQ(v[2 * 101], 36);      // left, frame 101
}

TEST(EffectReverb, MatchesTheLiteralLoopAcrossBlocksAndForgetsOnSeek)
{
    auto vIn = Noise(2 * 20000, 0x7FFF0, 11);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 11025, 2));
    LSRCReverb r(pSrc.Get(), 77, 333);
    EXPECT_EQ(ReadAll(r, 20000), ReverbModel(vIn, r));

    LSoundSourcePtr pImp(new LSRCMemory(Impulse(300, 0, 512), 1000, 1));
    LSRCReverb r2(pImp.Get(), 100, 100);
    std::vector<int32_t> v(20);
    r2.Read(v.data(), 20);
    r2.SetPosition(20);
    v.assign(100, 0);
    r2.Read(v.data(), 100);
    for (int32_t s : v)
        EXPECT_EQ(s, 0);
}

#include <gtest/gtest.h>

#include "core/LFixed.h"
#include "dsp/effects/LSRCEcho.h"
#include "dsp/EffectTestUtil.h"

using namespace efftest;

namespace {
// The comb as a literal per-sample loop.
std::vector<int32_t> EchoModel(std::vector<int32_t> v, int32_t nRing, int32_t g)
{
    std::vector<int32_t> ring(nRing, 0);
    size_t pos = 0;
    for (auto& x : v) {
        x = LWrapAdd(x, LWrapMul(ring[pos], g) >> 8);
        ring[pos] = x;
        pos = (pos + 1) % ring.size();
    }
    return v;
}
} // namespace

TEST(EffectEcho, RingLengthAndGainFactor)
{
    LSoundSourcePtr pMono(new LSRCMemory({}, 44100, 1));
    LSRCEcho e1(pMono.Get(), 50, 800);
    EXPECT_EQ(e1.GetRingLength(), 35280);
    EXPECT_EQ(e1.GetGainFactor(), 128);
    LSoundSourcePtr pStereo(new LSRCMemory({}, 22050, 2));
    LSRCEcho e2(pStereo.Get(), 99, 1999);
    EXPECT_EQ(e2.GetRingLength(), (1 * 22050 + (999 * 22050) / 1000) * 2);
    EXPECT_EQ(e2.GetGainFactor(), 253);
    // A zero delay or a very low rate still gets the minimum ring.
    LSRCEcho e3(pStereo.Get(), 50, 0);
    EXPECT_EQ(e3.GetRingLength(), 128);
    LSoundSourcePtr pSlow(new LSRCMemory({}, 10, 1));
    LSRCEcho e4(pSlow.Get(), 50, 10);
    EXPECT_EQ(e4.GetRingLength(), 128);
}

TEST(EffectEcho, ImpulseRepeatsDecayingWithFlooringShift)
{
    const int nLen = 1000;
    auto vIn = Impulse(nLen, 0, 1000);
    vIn[1] = -1; // -1 x 128 >> 8 floors to -1 at each round trip
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 1000, 1));
    LSRCEcho echo(pSrc.Get(), 50, 200);
    auto v = ReadAll(echo, nLen);
    EXPECT_EQ(v[0], 1000);
    EXPECT_EQ(v[200], 500);
    EXPECT_EQ(v[400], 250);
    EXPECT_EQ(v[600], 125);
    EXPECT_EQ(v[800], 62);
    EXPECT_EQ(v[201], -1);
    EXPECT_EQ(v[801], -1);
    EXPECT_EQ(v[100], 0);
}

TEST(EffectEcho, StereoDelayStaysOnItsChannelAndMatchesTheLiteralComb)
{
    auto vIn = Impulse(2 * 500, 0, 4096);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 1000, 2));
    LSRCEcho echo(pSrc.Get(), 25, 100);
    auto v = ReadAll(echo, 500);
    EXPECT_EQ(v[2 * 100], 1024);     // left, one delay later
    EXPECT_EQ(v[2 * 100 + 1], 0);    // right untouched
    EXPECT_EQ(v[2 * 200], 256);

    auto vNoise = Noise(2 * 30000, 0x7FFF0);
    LSoundSourcePtr pNoise(new LSRCMemory(vNoise, 8000, 2));
    LSRCEcho echo2(pNoise.Get(), 90, 37);
    EXPECT_EQ(ReadAll(echo2, 30000), EchoModel(vNoise, echo2.GetRingLength(), 230));
}

TEST(EffectEcho, GainZeroPassesAndSeekForgetsTheTail)
{
    auto vIn = Noise(5000, 100000);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 1000, 1));
    LSRCEcho e0(pSrc.Get(), 0, 100);
    EXPECT_EQ(ReadAll(e0, 5000), vIn);

    LSoundSourcePtr pImp(new LSRCMemory(Impulse(400, 0, 1000), 1000, 1));
    LSRCEcho echo(pImp.Get(), 50, 200);
    std::vector<int32_t> v(150);
    echo.Read(v.data(), 150);
    echo.SetPosition(150);
    EXPECT_EQ(echo.GetPosition(), 150);
    echo.Read(v.data(), 100); // frames 150..249: the echo at 200 would be here
    for (int32_t s : v)
        EXPECT_EQ(s, 0);
}

TEST(EffectEcho, LatchedInputLatchesTheEcho)
{
    LSoundSourcePtr pSilent(new LSRCSilence);
    LSRCEcho echo(pSilent.Get(), 50, 800);
    EXPECT_TRUE(echo.IsError());
}

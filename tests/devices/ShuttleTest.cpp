#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "core/LMemorySound.h"
#include "devices/DeviceTestSupport.h"
#include "devices/LSRCShuttle.h"

namespace {
constexpr int32_t kRate = 9000; // grains of 100 frames, hops of 50

LSoundSourcePtr Ramp(int32_t nFrames, uint8_t nChans = 1)
{
    return LSoundSourcePtr(new LSRCMemory(devtest::Ramp(nFrames, nChans), kRate, nChans));
}

std::vector<int32_t> ReadAll(LSoundSourceBase& src, int32_t nChunk = 333)
{
    std::vector<int32_t> v;
    std::vector<int32_t> buf(static_cast<size_t>(nChunk) * src.GetChannels());
    while (src.GetPosition() < src.GetLength()) {
        const int32_t n = std::min(nChunk, src.GetLength() - src.GetPosition());
        src.Read(buf.data(), n);
        v.insert(v.end(), buf.begin(), buf.begin() + static_cast<ptrdiff_t>(n) * src.GetChannels());
    }
    return v;
}

int32_t RampAt(int32_t i, int c = 0)
{
    return (i % 20000) * 16 - 160000 + c * 16;
}
} // namespace

TEST(Shuttle, GrainsAreANinetiethOfASecondWithinLimits)
{
    EXPECT_EQ(LSRCShuttle::GrainFramesFor(44100), 490);
    EXPECT_EQ(LSRCShuttle::GrainFramesFor(kRate), 100);
    EXPECT_EQ(LSRCShuttle::GrainFramesFor(1000), 20);
    EXPECT_EQ(LSRCShuttle::GrainFramesFor(384000), 2730);
}

// Rounding of the two window products stays below half a 16-bit step (8).
TEST(Shuttle, NormalSpeedGivesTheInputBack)
{
    auto pIn = Ramp(5000, 2);
    pIn->SetPosition(1000);
    LSRCShuttle shuttle(pIn.Get(), 1.0, 7.0, 0);
    EXPECT_EQ(shuttle.GetLength(), 4000);
    const std::vector<int32_t> v = ReadAll(shuttle);
    ASSERT_EQ(v.size(), 8000u);
    for (int32_t i = 0; i < 4000; ++i)
        for (int c = 0; c < 2; ++c)
            ASSERT_NEAR(v[i * 2 + c], RampAt(1000 + i, c), 8) << i;
}

TEST(Shuttle, NegativeSpeedPlaysBackwards)
{
    auto pIn = Ramp(5000);
    pIn->SetPosition(3000);
    LSRCShuttle shuttle(pIn.Get(), -1.0, 0.0, 0);
    EXPECT_EQ(shuttle.GetLength(), 3000);
    const std::vector<int32_t> v = ReadAll(shuttle);
    ASSERT_EQ(v.size(), 3000u);
    for (int32_t i = 0; i < 3000; ++i)
        ASSERT_NEAR(v[i], RampAt(2999 - i), 8) << i;
    EXPECT_EQ(shuttle.GetInputPosition(), 0);
}

TEST(Shuttle, DoubleSpeedHalvesTheLengthAndKeepsGrainsIntact)
{
    auto pIn = Ramp(9000);
    LSRCShuttle shuttle(pIn.Get(), 2.0, 1.0, 0);
    EXPECT_EQ(shuttle.GetLength(), 4500);
    const std::vector<int32_t> v = ReadAll(shuttle);
    // Each hop k sounds the input around 2 x 50 k; within a grain the ramp still rises by one
    // step per frame, so the pitch is kept.
    for (int32_t k = 1; k < 80; ++k) {
        const int32_t i = k * 50;
        EXPECT_NEAR(v[i], RampAt(2 * i), 50 * 16) << k;
    }
    EXPECT_GE(shuttle.GetInputPosition(), 9000);
}

TEST(Shuttle, RampMovesFromTheFirstToTheSecondSpeed)
{
    auto pIn = Ramp(100000);
    // From 1x to 3x over one second (9000 frames): the read point covers 2 x 9000 in that time.
    LSRCShuttle shuttle(pIn.Get(), 1.0, 3.0, 1000);
    std::vector<int32_t> buf(9000);
    shuttle.Read(buf.data(), 9000);
    EXPECT_NEAR(shuttle.GetInputPosition(), 18000, 3 * 50);
    // Then 3x: the remaining 82000 frames take about 27333 more.
    EXPECT_NEAR(shuttle.GetLength(), 9000 + 82000 / 3, 3 * 50);
    const std::vector<int32_t> rest = ReadAll(shuttle);
    EXPECT_GE(shuttle.GetInputPosition(), 99900);
}

TEST(Shuttle, SeekReplaysTheSameTimeline)
{
    auto pIn = Ramp(40000);
    LSRCShuttle shuttle(pIn.Get(), 0.5, 2.0, 500);
    std::vector<int32_t> first(3000), again(3000);
    shuttle.SetPosition(5000);
    shuttle.Read(first.data(), 3000);
    EXPECT_EQ(shuttle.GetPosition(), 8000);
    shuttle.SetPosition(5000);
    shuttle.Read(again.data(), 3000);
    EXPECT_EQ(first, again);
}

TEST(Shuttle, LatchedInputGivesSilence)
{
    LSoundSourcePtr pIn(new LSRCSilence);
    LSRCShuttle shuttle(pIn.Get(), 1.0, 1.0, 0);
    EXPECT_TRUE(shuttle.IsError());
    std::vector<int32_t> v(100, 7);
    shuttle.Read(v.data(), 100);
    for (int32_t s : v)
        EXPECT_EQ(s, 0);
}

#include <gtest/gtest.h>

#include <chrono>

#include "core/LMemorySound.h"
#include "devices/DeviceTestSupport.h"
#include "devices/LSoundPlayDevice.h"
#include "devices/LSoundPlayer.h"

using namespace devtest;

namespace {
constexpr double kFast = 20.0;

LSoundSourcePtr RampSource(int32_t nFrames, int32_t nRate = 8000, uint8_t nChans = 1)
{
    return LSoundSourcePtr(new LSRCMemory(Ramp(nFrames, nChans), nRate, nChans));
}

struct PlayerFixture : ::testing::Test
{
    explicit PlayerFixture(double fSpeed = kFast) : scope(fSpeed) { player.SetNotify(&log, 7); }
    ~PlayerFixture() override { player.Stop(); }

    bool WaitStopped() { return PumpUntil([this] { return log.nStopped > 0; }); }

    VirtualDriverScope scope;
    PlayerLog log;
    LSoundPlayer player;
};
} // namespace

TEST(PlayerBuffers, ATenthOfASecondBetweenTwentyAnd8192Frames)
{
    EXPECT_EQ(LSoundPlayer::FramesPerBufferFor(8000), 800);
    EXPECT_EQ(LSoundPlayer::FramesPerBufferFor(100), 20);
    EXPECT_EQ(LSoundPlayer::FramesPerBufferFor(192000), 8192);
    EXPECT_EQ(LSoundPlayer::FramesPerBufferFor(44100), 4410);

    VirtualDriverScope scope(kFast);
    LSoundPlayer player;
    const int32_t rates[] = {8000, 100, 192000};
    const int32_t expected[] = {800, 20, 8192};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(player.Start(RampSource(rates[i] * 2, rates[i]).Get(), LSoundPlayer::kStartPaused));
        EXPECT_EQ(player.GetFramesPerBuffer(), expected[i]);
        player.Stop();
    }
}

TEST(PlayerVolume, DecibelsMapOntoBothChannels)
{
    EXPECT_EQ(LSoundPlayer::DeviceVolumeFor(-36), 0u);
    EXPECT_EQ(LSoundPlayer::DeviceVolumeFor(-200), 0u);
    EXPECT_EQ(LSoundPlayer::DeviceVolumeFor(0), 51264u | (51264u << 16));
    EXPECT_EQ(LSoundPlayer::DeviceVolumeFor(11), 0xFFFFFFFFu);
    EXPECT_EQ(LSoundPlayer::DeviceVolumeFor(-35), 1424u | (1424u << 16));

    VirtualDriverScope scope(kFast);
    EXPECT_TRUE(LSoundPlayer::SetDeviceVolume(0, -8));
    EXPECT_EQ(scope.driver.GetVolume(), LSoundPlayer::DeviceVolumeFor(-8));
    EXPECT_EQ(LSoundPlayDevice::GetName(0), "[Default Sound Out]");
    EXPECT_EQ(LSoundPlayDevice::GetName(1), "Virtual Sound Out");
    EXPECT_EQ(LSoundPlayDevice::GetName(9), "");
}

TEST(PlayerLevels, MeanSquareInDecibels)
{
    EXPECT_EQ(LPlayLevelFromMeanSquare(0), -127);
    EXPECT_EQ(LPlayLevelFromMeanSquare(8388626), 0);
    EXPECT_EQ(LPlayLevelFromMeanSquare(83886260), 10);
    // Half away from zero: -0.5 dB and below round down.
    EXPECT_EQ(LPlayLevelFromMeanSquare(7476000), -1);
    std::vector<int32_t> v(200);
    for (size_t i = 0; i < v.size(); i += 2) {
        v[i] = 0x7FFF0;     // a full-scale square on channel 0
        v[i + 1] = 0;       // silence on channel 1
    }
    LSoundLevels levels;
    LComputePlayLevels(v.data(), 100, 2, levels);
    EXPECT_EQ(levels.nChans, 2);
    EXPECT_EQ(levels.nLevel[0], 15); // (0x7FFF0 >> 5)^2 is 32 times the reference
    EXPECT_EQ(levels.nLevel[1], -127);
}

using PlayerEnd = PlayerFixture;

TEST_F(PlayerEnd, ShortSourcePlaysOnceAndStopsAtItsLength)
{
    scope.driver.SetCapture(true);
    auto pSource = RampSource(400); // half a buffer at 8000 Hz
    ASSERT_TRUE(player.Start(pSource.Get()));
    ASSERT_TRUE(WaitStopped());
    EXPECT_EQ(player.GetState(), 0);
    ASSERT_FALSE(log.vPositions.empty());
    EXPECT_EQ(log.vPositions.back(), 50);
    EXPECT_EQ(log.vEvents.front(), "playing");
    EXPECT_EQ(log.vEvents.back(), "stopped");
    const std::vector<int16_t> heard = scope.driver.GetCaptured();
    ASSERT_EQ(heard.size(), 400u);
    for (int i = 0; i < 400; ++i)
        ASSERT_EQ(heard[i], ((i % 20000) * 16 - 160000 + 8) >> 4) << i;
}

TEST_F(PlayerEnd, LongSourceReportsPositionsAndLevelsThenItsLength)
{
    auto pSource = RampSource(8000 * 3 + 123, 8000, 2);
    ASSERT_TRUE(player.Start(pSource.Get()));
    ASSERT_TRUE(WaitStopped());
    ASSERT_GE(log.vPositions.size(), 3u);
    EXPECT_EQ(log.vPositions.back(), 3015);
    for (size_t i = 1; i < log.vPositions.size(); ++i)
        EXPECT_LE(log.vPositions[i - 1], log.vPositions[i]);
    EXPECT_GT(log.nLevels, 0);
    EXPECT_EQ(log.lastLevels.nChans, 2);
    EXPECT_EQ(scope.driver.stats.nFramesPlayed.load(), 8000 * 3 + 123);
}

TEST_F(PlayerEnd, StartWhilePlayingRestartsAndStopOnClosedDoesNothing)
{
    player.Stop();
    EXPECT_TRUE(log.vEvents.empty());
    ASSERT_TRUE(player.Start(RampSource(80000).Get()));
    ASSERT_TRUE(player.Start(RampSource(800).Get()));
    // The first start was stopped by the second.
    ASSERT_GE(log.vEvents.size(), 3u);
    EXPECT_EQ(log.vEvents[0], "playing");
    EXPECT_EQ(log.vEvents[1], "stopped");
    EXPECT_EQ(log.vEvents[2], "playing");
    ASSERT_TRUE(WaitStopped() && PumpUntil([this] { return log.nStopped == 2; }));
    EXPECT_EQ(log.vPositions.back(), 100);
}

TEST_F(PlayerEnd, DocumentSourcesAreHeardThroughTheLimiter)
{
    std::vector<int32_t> v(1600, 0x100000); // above 16-bit full scale
    LSoundSourcePtr pSource(new LSRCMemory(v, 8000, 1, 0x200000));
    scope.driver.SetCapture(true);
    ASSERT_TRUE(player.Start(pSource.Get()));
    EXPECT_NE(player.GetSource(), pSource.Get());
    ASSERT_TRUE(WaitStopped());
    for (int16_t s : scope.driver.GetCaptured())
        ASSERT_GT(s, 0); // limited, never wrapped to negative
}

using PlayerPreRoll = PlayerFixture;

TEST_F(PlayerPreRoll, ShortSourceNeverLeavesThePauseAndEndsByFailedLooks)
{
    auto pSource = RampSource(800 * 10); // 10 buffers, fewer than the 42 of the pre-roll
    ASSERT_TRUE(player.Start(pSource.Get(), LSoundPlayer::kStartPreRoll));
    // (The worker may already have cleared the takeoff flag.)
    EXPECT_EQ(player.GetState() & ~LSoundPlayer::kStateTakeoff, LSoundPlayer::kStateOpen | LSoundPlayer::kStatePreRoll);
    ASSERT_TRUE(WaitStopped());
    EXPECT_EQ(scope.driver.stats.nRestarts.load(), 0);
    EXPECT_EQ(scope.driver.stats.nFramesPlayed.load(), 0);
    EXPECT_EQ(scope.driver.stats.nWrites.load(), 10);
    EXPECT_EQ(log.vPositions.back(), 1000);
}

TEST_F(PlayerPreRoll, LongSourceStartsOnceFortyTwoBuffersAreQueued)
{
    auto pSource = RampSource(800 * 50);
    ASSERT_TRUE(player.Start(pSource.Get(), LSoundPlayer::kStartPreRoll));
    ASSERT_TRUE(WaitStopped());
    EXPECT_EQ(scope.driver.stats.nRestarts.load(), 1);
    EXPECT_EQ(scope.driver.stats.nFramesPlayed.load(), 800 * 50);
}

struct PlayerCue : PlayerFixture
{
    // A paused player stops itself after 65 looks; slow enough that it cannot before Cue.
    PlayerCue() : PlayerFixture(4.0) {}
};

TEST_F(PlayerCue, LoopsAQuarterBufferAndASecondCueDoesNotResetAgain)
{
    scope.driver.SetCapture(true);
    auto pSource = RampSource(8000 * 60);
    ASSERT_TRUE(player.Start(pSource.Get(), LSoundPlayer::kStartPaused));
    player.Seek(4000);
    const int32_t nResetsBefore = scope.driver.stats.nResets.load();
    player.Cue();
    EXPECT_EQ(player.GetState() & ~LSoundPlayer::kStateTakeoff, LSoundPlayer::kStateOpen | LSoundPlayer::kStateCue);
    EXPECT_EQ(scope.driver.stats.nResets.load(), nResetsBefore + 1);
    player.Cue();
    EXPECT_EQ(scope.driver.stats.nResets.load(), nResetsBefore + 1);
    EXPECT_EQ(log.vEvents.back(), "cued");

    // The loop keeps sounding the quarter buffer (200 frames) from the cue position.
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.GetCaptured().size() >= 2000; }));
    const std::vector<int16_t> heard = scope.driver.GetCaptured();
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(heard[i], (((4000 + i % 200) % 20000) * 16 - 160000 + 8) >> 4) << i;
    EXPECT_TRUE(player.IsOpen()); // cue mode never ends by failed looks

    player.Play();
    EXPECT_EQ(scope.driver.stats.nBreakLoops.load(), 1);
    EXPECT_EQ(player.GetState() & LSoundPlayer::kStateCue, 0);
    EXPECT_EQ(log.vEvents.back(), "playing");
}

struct PlayerSeek : PlayerFixture
{
    // Slow enough that the paused player is far from stopping itself while the test looks.
    PlayerSeek() : PlayerFixture(2.0) {}
};

TEST_F(PlayerSeek, WhilePausedStaysPausedAndPlaysOnFromTheNewPosition)
{
    scope.driver.SetCapture(true);
    auto pSource = RampSource(8000 * 60);
    ASSERT_TRUE(player.Start(pSource.Get(), LSoundPlayer::kStartPaused));
    EXPECT_EQ(log.vEvents.back(), "paused");
    player.Seek(12345);
    EXPECT_TRUE(scope.driver.stats.bOutPaused.load());
    EXPECT_EQ(log.vPositions.back(), 1543); // 12345 samples at 8000 Hz
    EXPECT_TRUE(player.GetState() & LSoundPlayer::kStatePaused);
    EXPECT_EQ(scope.driver.stats.nFramesPlayed.load(), 0);

    player.Play();
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.GetCaptured().size() >= 1000; }));
    const std::vector<int16_t> heard = scope.driver.GetCaptured();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(heard[i], (((12345 + i) % 20000) * 16 - 160000 + 8) >> 4) << i;
}

using PlayerDevice = PlayerFixture;

TEST_F(PlayerDevice, ThatCannotBeOpenedFailsTheStart)
{
    scope.driver.SetFailOpen(true);
    EXPECT_FALSE(player.Start(RampSource(8000).Get()));
    EXPECT_EQ(player.GetState(), 0);
    scope.driver.SetFailOpen(false);
    player.SetDevice(5);
    EXPECT_FALSE(player.Start(RampSource(8000).Get()));
    EXPECT_TRUE(log.vEvents.empty());
    LSoundSourcePtr pLatched(new LSRCSilence);
    player.SetDevice(0);
    EXPECT_FALSE(player.Start(pLatched.Get()));
}

TEST_F(PlayerDevice, ThatStopsReturningBuffersEndsThePlayer)
{
    scope.driver.SetHoldBuffers(true);
    ASSERT_TRUE(player.Start(RampSource(8000 * 60).Get()));
    ASSERT_TRUE(WaitStopped());
    EXPECT_EQ(player.GetState(), 0);
    EXPECT_FALSE(scope.driver.stats.bOutOpen.load());
}

TEST_F(PlayerDevice, StopReturnsWhenTheDriverHoldsItsBuffers)
{
    scope.driver.SetHoldBuffers(true);
    ASSERT_TRUE(player.Start(RampSource(8000 * 60).Get()));
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.stats.nWrites.load() == LSoundPlayer::kBuffers; }));
    const auto t0 = std::chrono::steady_clock::now();
    player.Stop();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0);
    // The worker's 5 s and the unprepare budget of 1 s are the most Stop may take.
    EXPECT_LT(ms.count(), 6000);
    EXPECT_EQ(log.vEvents.back(), "stopped");
    EXPECT_FALSE(scope.driver.stats.bOutOpen.load());
}

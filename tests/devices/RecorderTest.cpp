#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "devices/DeviceTestSupport.h"
#include "devices/LSoundRecordDevice.h"
#include "devices/LSoundRecorder.h"

using namespace devtest;

namespace {
constexpr int32_t kRate = 8000; // blocks of 800 frames, a tenth of a second
constexpr int8_t kThreshold = -20;

// Input that is a 1 kHz tone (16-bit amplitude 16000, starting at its peak) over
// [nFrom, nTo) and silence elsewhere.
LVirtualWaveDriver::InputFn ToneBetween(int64_t nFrom, int64_t nTo)
{
    return [nFrom, nTo](int16_t* p, int32_t nFrames, uint8_t nChans, int32_t, int64_t nFirst) {
        for (int32_t i = 0; i < nFrames; ++i) {
            const int64_t f = nFirst + i;
            int16_t v = 0;
            if (f >= nFrom && f < nTo)
                v = static_cast<int16_t>(std::lround(16000 * std::cos(2 * M_PI * 1000.0 * (f - nFrom) / kRate)));
            for (uint8_t c = 0; c < nChans; ++c)
                p[i * nChans + c] = v;
        }
    };
}

struct RecorderFixture : ::testing::Test
{
    RecorderFixture() : scope(20.0), pSink(new WatchedSink(kRate, 1)) { recorder.SetNotify(&log, 3); }
    ~RecorderFixture() override { recorder.Stop(); }

    bool WaitFrames(int32_t n) { return PumpUntil([this, n] { return pSink->Frames() >= n; }); }

    VirtualDriverScope scope;
    RecorderLog log;
    LCountedPtr<WatchedSink> pSink;
    LSoundRecorder recorder;
};
} // namespace

TEST(RecorderLevels, PeakInDecibelsAndTheLouderOfTheFirstTwoChannels)
{
    EXPECT_EQ(LRecordLevelFromPeak(0), -127);
    EXPECT_EQ(LRecordLevelFromPeak(131072), 0);
    EXPECT_EQ(LRecordLevelFromPeak(0x7FFF0), 12);
    EXPECT_EQ(LRecordLevelFromPeak(13107), -20);
    EXPECT_EQ(LRecordLevelFromPeak(12000), -21); // -20.77 rounds away from zero
    LSoundLevels levels;
    EXPECT_EQ(LLoudness(levels), -127);
    // Two frames of three channels.
    const int32_t v[] = {100, -131072, -5000, 0, 0x7FFF0, 7};
    LComputeRecordLevels(v, 2, 3, levels);
    EXPECT_EQ(levels.nLevel[0], -62);
    EXPECT_EQ(levels.nLevel[1], 12);
    EXPECT_EQ(levels.nLevel[2], -28);
    EXPECT_EQ(LLoudness(levels), 12);
    levels.nChans = 1;
    EXPECT_EQ(LLoudness(levels), -62);
}

using RecorderVoice = RecorderFixture;

TEST_F(RecorderVoice, StartKeepsTheOnsetWithHalfOfTheBlockBefore)
{
    // A 100 ms burst on the sixth block: its first half is loud.
    scope.driver.SetInput(ToneBetween(4000, 4800));
    ASSERT_TRUE(recorder.Restart(pSink.Get(), 0, kThreshold, kThreshold, 60000, 0));
    EXPECT_EQ(recorder.GetState(), LSoundRecorder::StateWaiting);
    ASSERT_TRUE(WaitFrames(8000));
    recorder.Stop();
    ASSERT_TRUE(log.Has("waiting") && log.Has("recording"));
    const std::vector<int32_t> v = pSink->Samples();
    // 50 ms of the quiet block, the burst, then 50 ms after the last loud block.
    ASSERT_EQ(v.size(), 1600u);
    for (int i = 0; i < 400; ++i)
        ASSERT_EQ(v[i], 0) << i;
    EXPECT_EQ(v[400], 256000);
    EXPECT_EQ(log.vEvents.back(), "stopped");
}

TEST_F(RecorderVoice, LongSilenceCutsBackTo450MsAfterTheLastLoudBlock)
{
    scope.driver.SetInput(ToneBetween(0, 4000)); // loud for 500 ms
    ASSERT_TRUE(recorder.Start(pSink.Get(), 0, kThreshold, kThreshold, 1000, 0));
    EXPECT_EQ(log.vEvents.front(), "recording");
    ASSERT_TRUE(PumpUntil([this] { return log.Has("waiting"); }));
    EXPECT_EQ(pSink->Frames(), 950 * kRate / 1000);
    EXPECT_EQ(recorder.GetState(), LSoundRecorder::StateWaiting);
    EXPECT_EQ(log.nLastTime, 500);
}

TEST_F(RecorderVoice, StopKeepsAtMost50MsAfterTheLastLoudBlock)
{
    scope.driver.SetInput(ToneBetween(0, 2400)); // loud for 300 ms
    ASSERT_TRUE(recorder.Start(pSink.Get(), 0, kThreshold, kThreshold, 60000, 0));
    ASSERT_TRUE(WaitFrames(kRate));
    recorder.Stop();
    EXPECT_EQ(pSink->Frames(), 350 * kRate / 1000);
    EXPECT_EQ(recorder.GetState(), LSoundRecorder::StateIdle);
}

using RecorderRun = RecorderFixture;

TEST_F(RecorderRun, RemovesDcAndMetersEveryBlock)
{
    scope.driver.SetInput([](int16_t* p, int32_t n, uint8_t c, int32_t, int64_t) { std::fill(p, p + n * c, int16_t(1000)); });
    ASSERT_TRUE(recorder.Start(pSink.Get(), 0, kThreshold, -127, 60000, 0));
    ASSERT_TRUE(WaitFrames(kRate * 2));
    recorder.Stop();
    const std::vector<int32_t> v = pSink->Samples();
    ASSERT_GE(v.size(), static_cast<size_t>(kRate));
    EXPECT_EQ(v[0], 16000); // the filter starts from zero
    for (size_t i = kRate / 2; i < static_cast<size_t>(kRate); ++i)
        ASSERT_LT(std::abs(v[i]), 100) << i;
    EXPECT_GT(log.nLevels, 0);
}

TEST_F(RecorderRun, StopsItselfAfterTheMaximumTime)
{
    ASSERT_TRUE(recorder.Start(pSink.Get(), 0, kThreshold, -127, 60000, 500));
    ASSERT_TRUE(PumpUntil([this] { return log.Has("stopped"); }));
    EXPECT_EQ(recorder.GetState(), LSoundRecorder::StateIdle);
    EXPECT_GE(pSink->Frames(), 600 * kRate / 1000);
}

TEST_F(RecorderRun, ADeviceThatCannotBeOpenedFailsTheStart)
{
    scope.driver.SetFailOpen(true);
    EXPECT_FALSE(recorder.Start(pSink.Get(), 0, kThreshold, -127, 60000, 0));
    EXPECT_EQ(recorder.GetState(), LSoundRecorder::StateIdle);
    EXPECT_EQ(log.vEvents.back(), "stopped");
    scope.driver.SetFailOpen(false);
    EXPECT_FALSE(recorder.Start(pSink.Get(), 7, kThreshold, -127, 60000, 0));
    LCountedPtr<WatchedSink> pLatched(new WatchedSink(kRate, 0));
    EXPECT_FALSE(recorder.Start(pLatched.Get(), 0, kThreshold, -127, 60000, 0));
    EXPECT_EQ(LSoundRecordDevice::GetName(0), "[Default Sound In]");
    EXPECT_EQ(LSoundRecordDevice::GetName(1), "Virtual Sound In");
}

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "core/LFixed.h"
#include "core/LMemorySound.h"
#include "core/LPRSourceToSink.h"
#include "dsp/LSRCPeakLimit.h"
#include "work/LPumpProcess.h"

namespace {

std::vector<int32_t> ReadFrames(LSoundSourceBase* p, int32_t nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * p->GetChannels());
    // Odd-sized reads cross block boundaries at every possible offset.
    for (int32_t nDone = 0, nStep = 1; nDone < nFrames; nStep = nStep % 997 + 37) {
        const int32_t n = std::min(nStep, nFrames - nDone);
        p->Read(v.data() + static_cast<size_t>(nDone) * p->GetChannels(), n);
        nDone += n;
    }
    return v;
}

// Stereo noise whose level jumps between quiet and very loud every few thousand frames.
std::vector<int32_t> LoudBursts(int32_t nFrames)
{
    std::mt19937 rng(7);
    std::uniform_int_distribution<int32_t> noise(-0x3FFFFF, 0x3FFFFF);
    std::vector<int32_t> v(2 * static_cast<size_t>(nFrames));
    for (int32_t i = 0; i < nFrames; ++i) {
        const int32_t nShift = (i / 4000) % 4 == 1 ? 0 : 4;
        v[2 * i] = noise(rng) >> nShift;
        v[2 * i + 1] = noise(rng) >> (nShift + 2);
    }
    return v;
}

} // namespace

TEST(PeakLimit, BlockSizeAndBlockGain)
{
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(44100), 1260);
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(8000), 228);
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(350), 20);
    EXPECT_EQ(LSRCPeakLimit::BlockFrames(1000000), 8192);

    const int32_t aQuiet[] = {100, -0x7FFF0, 0x7FFF0};
    EXPECT_EQ(LSRCPeakLimit::BlockGain(aQuiet, 3, 0x7FFF0), kGainUnity);
    // Peak 0x100000 against a limit of 0x7FFF0: ((L * 512) / ((P + 64) / 64)) * 512.
    const int32_t aLoud[] = {5, -0x100000, 0xFFFFF};
    EXPECT_EQ(LSRCPeakLimit::BlockGain(aLoud, 3, 0x7FFF0), (0x7FFF0 * 512 / ((0x100000 + 64) / 64)) * 512);
    const int32_t aExtreme[] = {INT32_MIN, INT32_MAX};
    EXPECT_GE(LSRCPeakLimit::BlockGain(aExtreme, 2, LSRCPeakLimit::kMaxLimit), 0);
}

TEST(PeakLimit, PassesAStreamBelowTheLimitBitForBit)
{
    std::mt19937 rng(1);
    std::uniform_int_distribution<int32_t> noise(-0x7FFF0, 0x7FFF0);
    std::vector<int32_t> v(2 * 20000);
    for (int32_t& s : v)
        s = noise(rng);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 2, 0x200000));
    LSoundSourcePtr pLim(new LSRCPeakLimit(pSrc.Get(), 0x7FFF0));
    EXPECT_EQ(ReadFrames(pLim.Get(), 20000), v);
    EXPECT_EQ(pLim->GetPosition(), 20000);
    EXPECT_EQ(pLim->GetLength(), 20000);
}

TEST(PeakLimit, NeverExceedsTheLimitOnLoudInputAndStaysAligned)
{
    const std::vector<int32_t> v = LoudBursts(30000);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 2, 0x400000));
    LSoundSourcePtr pLim(new LSRCPeakLimit(pSrc.Get(), 0x7FFF0));
    EXPECT_EQ(pLim->GetMaxAmplitude(), 0x7FFF0);
    const std::vector<int32_t> vOut = ReadFrames(pLim.Get(), 30000);
    for (size_t i = 0; i < vOut.size(); ++i) {
        ASSERT_LE(std::abs(vOut[i]), 0x7FFF0 + 4) << i;
        // Same sign and never louder than the input: the gain is applied to the same frame.
        ASSERT_LE(std::abs(vOut[i]), std::abs(v[i]) + 4) << i;
        if (std::abs(v[i]) > 0x1000 && std::abs(vOut[i]) > 8) {
            ASSERT_EQ(vOut[i] > 0, v[i] > 0) << i;
        }
    }
    // The quiet channel of a loud stretch is turned down with it; outside the stretches the
    // gain comes back up to unity.
    EXPECT_EQ(vOut[2 * 12000], v[2 * 12000]);
    EXPECT_LT(std::abs(vOut[2 * 6000 + 1]), std::abs(v[2 * 6000 + 1]) / 4 + 4);
}

TEST(PeakLimit, GainChangesNoFasterThanOneBlockIncrementPerFrame)
{
    // A constant level that steps up and down: the output follows the gain directly.
    const int32_t nBlock = LSRCPeakLimit::BlockFrames(44100);
    std::vector<int32_t> v(40000);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = (i / 7000) % 2 ? 0x3FFFFF : 0x20000;
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 1, 0x400000));
    LSoundSourcePtr pLim(new LSRCPeakLimit(pSrc.Get(), 0x7FFF0));
    const std::vector<int32_t> vOut = ReadFrames(pLim.Get(), 40000);
    for (size_t i = 1; i < vOut.size(); ++i) {
        // Gain step at most unity / N per frame, plus the remainder taken at a block boundary.
        const double fGainStep = std::fabs(static_cast<double>(vOut[i]) / v[i] - static_cast<double>(vOut[i - 1]) / v[i - 1]);
        ASSERT_LE(fGainStep, 1.0 / nBlock + 1e-4) << i;
        ASSERT_LE(std::abs(vOut[i]), 0x7FFF0 + 4) << i;
    }
}

TEST(PeakLimit, SeekRestartsFromTheNewPositionWithUnityGain)
{
    std::vector<int32_t> v(30000, 0x1000);
    std::fill(v.begin(), v.begin() + 5000, 0x300000);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 22050, 1, 0x400000));
    LSoundSourcePtr pLim(new LSRCPeakLimit(pSrc.Get(), 0x7FFF0));
    std::vector<int32_t> vOut(100);
    pLim->Read(vOut.data(), 100);
    EXPECT_LE(vOut[0], 0x7FFF0 + 4);
    pLim->SetPosition(20000);
    EXPECT_EQ(pLim->GetPosition(), 20000);
    pLim->Read(vOut.data(), 100);
    EXPECT_EQ(vOut, std::vector<int32_t>(100, 0x1000));
    EXPECT_EQ(pLim->GetPosition(), 20100);
}

TEST(PeakLimit, DocumentSourcePumpedIntoASixteenBitSinkStaysInRange)
{
    std::vector<int32_t> v(2 * 50000);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(0x1FFFF0 * std::sin(0.01 * static_cast<double>(i / 2)) * ((i / 20000) % 2 ? 1.0 : 0.1));
    LSoundSourcePtr pDoc(new LSRCMemory(v, 44100, 2, 0x200000));
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(44100, 2));
    LPumpProcess pump("Saving", pDoc.Get(), pSink.Get());
    ASSERT_EQ(pump.Run(), 0);
    ASSERT_EQ(pSink->GetSamples().size(), v.size());
    for (int32_t s : pSink->GetSamples())
        ASSERT_EQ(LFrom16(LTo16(s)) >> 4, (s + 8) >> 4) << s; // no 16-bit wrap
}

TEST(PeakLimit, LatchedInputGivesSilence)
{
    LSoundSourcePtr pLim(new LSRCPeakLimit(LSoundSourcePtr(new LSRCSilence).Get(), 0x7FFF0));
    EXPECT_TRUE(pLim->IsError());
    std::vector<int32_t> v(50, 3);
    pLim->Read(v.data(), 50);
    EXPECT_EQ(v, std::vector<int32_t>(50, 0));
    EXPECT_EQ(LSoundSourcePtr(new LSRCPeakLimit(pLim.Get(), 0x7FFFFFF))->GetMaxAmplitude(), LSRCPeakLimit::kMaxLimit);
}

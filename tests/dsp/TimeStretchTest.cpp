// The constant-pitch speed change and the constant-speed pitch change: pitch, length, stereo
// image and smoothness, through the effect runner as the editor runs them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "core/LMemorySound.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LSRCTimeStretch.h"
#include "dsp/effects/LEffectRunner.h"

using namespace efftest;

namespace {
constexpr int32_t kRate = 16000;
// The pump's block: the length may miss the asked ratio by at most this much.
constexpr int32_t kBlock = 8192;

std::vector<int32_t> Tone(int32_t nFrames, double fHz, int nChans = 1, double fAmp = 200000.0)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int32_t i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v[static_cast<size_t>(i) * nChans + c] =
                static_cast<int32_t>(std::lround(fAmp * std::sin(2.0 * M_PI * fHz * i / kRate)));
    return v;
}

// The frequency from rising zero crossings of one channel over its middle part.
double Frequency(const std::vector<int32_t>& v, int nChans, int c = 0)
{
    const size_t nFrames = v.size() / nChans;
    double fFirst = -1, fLast = -1;
    int nCount = 0;
    for (size_t i = nFrames / 10 + 1; i < nFrames * 9 / 10; ++i) {
        const double a = v[(i - 1) * nChans + c], b = v[i * nChans + c];
        if (a < 0 && b >= 0) {
            const double t = (i - 1) + a / (a - b);
            if (fFirst < 0)
                fFirst = t;
            fLast = t;
            ++nCount;
        }
    }
    return nCount > 1 ? (nCount - 1) * kRate / (fLast - fFirst) : 0.0;
}

int32_t LargestJump(const std::vector<int32_t>& v, int nChans)
{
    int32_t nMax = 0;
    for (size_t i = nChans; i < v.size(); ++i)
        nMax = std::max(nMax, std::abs(v[i] - v[i - nChans]));
    return nMax;
}

class TimeStretch : public EffectDocTest
{
protected:
    std::vector<int32_t> Run(const std::vector<int32_t>& vIn, int nChans, const char* szEffect, int32_t nPercent)
    {
        LCutListAudioPtr pDoc = MakeDoc(vIn, nChans, kRate);
        const LEffectInfo& info = *LEffectCatalog::ByCliName(szEffect);
        LEffectArgs a;
        a.mapValues = {{info.vParams[0].szKey, nPercent}};
        CancellingFactory host(0);
        LEffectProcess proc(info, pDoc.Get(), 0, pDoc->GetLength(), a);
        EXPECT_EQ(proc.Run(&host), 0);
        EXPECT_EQ(host.shown.aszLines[0], "Process Audio");
        return ReadDoc(*pDoc);
    }
};
} // namespace

TEST_F(TimeStretch, SpeedChangesKeepThePitchAndScaleTheLength)
{
    const int32_t nFrames = 2 * kRate;
    const auto vIn = Tone(nFrames, 440.0);
    for (int32_t nPercent : {50, 80, 125, 200, 300}) {
        SCOPED_TRACE(nPercent);
        const auto vOut = Run(vIn, 1, "constant-pitch-and-speed-change", nPercent);
        const int64_t nAsked = static_cast<int64_t>(nFrames) * 100 / nPercent;
        EXPECT_LE(std::llabs(static_cast<int64_t>(vOut.size()) - nAsked), kBlock);
        EXPECT_NEAR(Frequency(vOut, 1), 440.0, 440.0 * 0.005);
    }
}

TEST_F(TimeStretch, PitchChangeMovesTheToneAndKeepsTheLength)
{
    const int32_t nFrames = 2 * kRate;
    const auto vOut = Run(Tone(nFrames, 440.0), 1, "constant-speed-and-pitch-change", 150);
    EXPECT_LE(std::abs(static_cast<int32_t>(vOut.size()) - nFrames), kBlock);
    EXPECT_NEAR(Frequency(vOut, 1), 660.0, 660.0 * 0.005);
    const auto vDown = Run(Tone(nFrames, 440.0), 1, "constant-speed-and-pitch-change", 50);
    EXPECT_NEAR(Frequency(vDown, 1), 220.0, 220.0 * 0.005);
}

TEST_F(TimeStretch, ChannelsInPhaseStayInPhase)
{
    // Left a chord, right the same at half the level: every grain must be cut at the same time.
    std::vector<int32_t> vIn = Tone(kRate, 300.0, 2);
    const auto vHigh = Tone(kRate, 1234.0, 2, 80000.0);
    for (size_t i = 0; i < vIn.size(); ++i)
        vIn[i] += vHigh[i];
    for (size_t i = 1; i < vIn.size(); i += 2)
        vIn[i] /= 2;
    for (const char* szEffect : {"constant-pitch-and-speed-change", "constant-speed-and-pitch-change"}) {
        const auto vOut = Run(vIn, 2, szEffect, 80);
        ASSERT_GT(vOut.size(), 1000u);
        for (size_t i = 0; i < vOut.size(); i += 2)
            ASSERT_NEAR(vOut[i] / 2.0, vOut[i + 1], 2.0) << "frame " << i / 2;
    }
}

TEST_F(TimeStretch, GrainSeamsJumpNoMoreThanTheSignalItself)
{
    // A tone with a slow vibrato and a level ramp, so that no two grains are quite alike.
    std::vector<int32_t> vIn(kRate * 2);
    double fPhase = 0;
    for (size_t i = 0; i < vIn.size(); ++i) {
        fPhase += 2.0 * M_PI * (330.0 + 20.0 * std::sin(2.0 * M_PI * 3.0 * i / kRate)) / kRate;
        vIn[i] = static_cast<int32_t>((100000.0 + 50.0 * i) * std::sin(fPhase));
    }
    const int32_t nOwn = LargestJump(vIn, 1);
    for (int32_t nPercent : {70, 80, 125, 190}) {
        SCOPED_TRACE(nPercent);
        EXPECT_LE(LargestJump(Run(vIn, 1, "constant-pitch-and-speed-change", nPercent), 1), nOwn);
    }
}

TEST(TimeStretchStage, ReadsTheSameWhateverTheBlockSizesAndAfterASeek)
{
    const auto vIn = Noise(2 * 20000, 100000);
    LSoundSourcePtr pA(new LSRCTimeStretch(new LSRCMemory(vIn, kRate, 2), 4, 5));
    LSoundSourcePtr pB(new LSRCTimeStretch(new LSRCMemory(vIn, kRate, 2), 4, 5));
    ASSERT_EQ(pA->GetLength(), 25000);
    const auto vWhole = ReadAll(*pA, 25000);
    std::vector<int32_t> vOne(25000 * 2);
    pB->Read(vOne.data(), 25000);
    EXPECT_EQ(vWhole, vOne);
    pB->SetPosition(0);
    EXPECT_EQ(pB->GetPosition(), 0);
    pB->Read(vOne.data(), 25000);
    EXPECT_EQ(vWhole, vOne);
}

TEST(TimeStretchStage, UnityKeepsTheInputAndSilenceStaysSilent)
{
    const auto vIn = Noise(12000, 100000);
    LSoundSourcePtr p(new LSRCTimeStretch(new LSRCMemory(vIn, kRate, 1), 1, 1));
    const auto vOut = ReadAll(*p, 12000);
    for (size_t i = 0; i < vIn.size(); ++i)
        ASSERT_NEAR(vOut[i], vIn[i], 1) << i;
    LSoundSourcePtr pQuiet(new LSRCTimeStretch(new LSRCMemory(std::vector<int32_t>(8000), kRate, 1), 3, 1));
    for (int32_t s : ReadAll(*pQuiet, 4000))
        ASSERT_EQ(s, 0);
}

TEST(TimeStretchStage, RefusesAnAbsurdSpeedAndALatchedInput)
{
    LSoundSourcePtr p(new LSRCTimeStretch(new LSRCMemory({1, 2, 3}, kRate, 1), 0, 100));
    EXPECT_TRUE(p->IsError());
    std::vector<int32_t> v(3, 7);
    p->Read(v.data(), 3);
    EXPECT_EQ(v, std::vector<int32_t>(3, 0));
    LSoundSourcePtr pSilent(new LSRCTimeStretch(new LSRCSilence, 1, 2));
    EXPECT_TRUE(pSilent->IsError());
}

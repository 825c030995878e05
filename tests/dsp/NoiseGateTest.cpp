#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "core/LMemorySound.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LDecibelTable.h"
#include "dsp/LSRCNoiseGates.h"

namespace {

using efftest::RmsDb;

// One second of hiss at about -60 dB of 16-bit full scale with a 1 kHz burst from 0.4 to 0.6 s.
std::vector<int32_t> HissWithBurst()
{
    std::mt19937 rng(11);
    std::normal_distribution<double> hiss(0.0, 500.0);
    std::vector<int32_t> v(44100);
    for (size_t i = 0; i < v.size(); ++i) {
        double f = hiss(rng);
        if (i >= 17640 && i < 26460)
            f += 200000 * std::sin(2 * M_PI * 1000 * static_cast<double>(i) / 44100);
        v[i] = static_cast<int32_t>(std::lrint(f));
    }
    return v;
}

} // namespace

TEST(DecibelTable, FactorsInEightPointTwentyFour)
{
    EXPECT_EQ(LDecibelTable::Factor(0), 16777216);
    EXPECT_EQ(LDecibelTable::Factor(20), 167772160);
    EXPECT_EQ(LDecibelTable::Factor(-20), 1677722);
    EXPECT_NEAR(static_cast<double>(LDecibelTable::Factor(-6)), 16777216 * 0.50118723, 1);
    EXPECT_EQ(LDecibelTable::Factor(-500), LDecibelTable::Factor(-128));
    EXPECT_EQ(LDecibelTable::Factor(500), LDecibelTable::Factor(127));
}

TEST(NoiseGate, FixedCoefficientsThresholdsAndBlocks)
{
    EXPECT_EQ(LSRCNoiseGates::Coefficients(44100), (std::array<int32_t, 4>{2, 14, 37, 79}));
    EXPECT_EQ(LSRCNoiseGates::Coefficients(8000), (std::array<int32_t, 4>{10, 69, 148, 223}));
    EXPECT_EQ(LSRCNoiseGates::Coefficients(0), (std::array<int32_t, 4>{0, 0, 0, 0}));
    // 2^33 / (F x 2^-24 x 2^17) = 2^40 / F.
    EXPECT_NEAR(static_cast<double>(LSRCNoiseGates::Threshold(0)), 65536, 1);
    EXPECT_NEAR(static_cast<double>(LSRCNoiseGates::Threshold(-30)), 1099511627776.0 / LDecibelTable::Factor(-30), 1);
    EXPECT_EQ(LSRCNoiseGates::BlockFrames(44100), 1470);
    EXPECT_EQ(LSRCNoiseGates::BlockFrames(300), 20);
    EXPECT_EQ(LSRCNoiseGates::BlockFrames(400000), 8192);
}

TEST(NoiseGate, LoudSignalPassesBitForBit)
{
    std::mt19937 rng(2);
    std::uniform_int_distribution<int32_t> noise(-0x7FFF0, 0x7FFF0);
    std::vector<int32_t> v(2 * 20000);
    for (int32_t& s : v)
        s = noise(rng);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 2));
    LSoundSourcePtr pGate(new LSRCNoiseGates(pSrc.Get(), -60));
    std::vector<int32_t> vOut(v.size());
    pGate->Read(vOut.data(), 7000);
    pGate->Read(vOut.data() + 2 * 7000, 13000);
    EXPECT_EQ(vOut, v);
    EXPECT_EQ(pGate->GetPosition(), 20000);
    EXPECT_EQ(pGate->GetLength(), 20000);
}

TEST(NoiseGate, RemovesSteadyHissBetweenBurstsWithoutClicks)
{
    const std::vector<int32_t> v = HissWithBurst();
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 1));
    LSoundSourcePtr pGate(new LSRCNoiseGates(pSrc.Get(), -30));
    std::vector<int32_t> vOut(v.size());
    pGate->Read(vOut.data(), static_cast<int32_t>(v.size()));

    // Hiss alone: at least 40 dB quieter once the gates have closed.
    EXPECT_LT(RmsDb(vOut, 4410, 13000), RmsDb(v, 4410, 13000) - 40);
    EXPECT_LT(RmsDb(vOut, 32000, 44100), RmsDb(v, 32000, 44100) - 40);
    // The burst itself is kept, from its first frame on (the gate opens ahead of it).
    EXPECT_NEAR(RmsDb(vOut, 17640, 26460), RmsDb(v, 17640, 26460), 0.5);
    EXPECT_NEAR(RmsDb(vOut, 17640, 17700), RmsDb(v, 17640, 17700), 0.5);
    // No click: the output never jumps from one frame to the next further than the input does.
    int32_t nInputStep = 0;
    for (size_t i = 1; i < v.size(); ++i)
        nInputStep = std::max(nInputStep, std::abs(v[i] - v[i - 1]));
    for (size_t i = 1; i < vOut.size(); ++i)
        ASSERT_LE(std::abs(vOut[i] - vOut[i - 1]), nInputStep) << i;
}

TEST(NoiseGate, SeekStartsTheBandsAfreshAndLatchedInputIsSilent)
{
    const std::vector<int32_t> v = HissWithBurst();
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 1));
    LSoundSourcePtr pGate(new LSRCNoiseGates(pSrc.Get(), -30));
    std::vector<int32_t> vA(3000), vB(3000);
    pGate->Read(vA.data(), 3000);
    pGate->SetPosition(18000);
    pGate->Read(vA.data(), 3000);
    LSoundSourcePtr pSrc2(new LSRCMemory(v, 44100, 1));
    pSrc2->SetPosition(18000);
    LSoundSourcePtr pGate2(new LSRCNoiseGates(pSrc2.Get(), -30));
    pGate2->Read(vB.data(), 3000);
    EXPECT_EQ(vA, vB);
    EXPECT_EQ(pGate->GetPosition(), 21000);

    LSoundSourcePtr pLatched(new LSRCNoiseGates(LSoundSourcePtr(new LSRCSilence).Get(), -30));
    EXPECT_TRUE(pLatched->IsError());
    pLatched->Read(vA.data(), 3000);
    EXPECT_EQ(vA, std::vector<int32_t>(3000, 0));
}

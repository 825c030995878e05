#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "core/LFixed.h"
#include "core/LMemorySound.h"
#include "dsp/CompressorRatioList.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LSRCCompressor.h"

namespace {

std::vector<int32_t> Compress(const std::vector<int32_t>& vIn, uint8_t nChans, int32_t nThreshold, int32_t nRatio,
                              int32_t nLimit = 127)
{
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 44100, nChans, 0x200000));
    LSoundSourcePtr pComp(
        new LSRCCompressor(pSrc.Get(), nThreshold, LCompressorRatio(nRatio).fFactorPerDb, 45, nLimit));
    const int32_t nFrames = static_cast<int32_t>(vIn.size() / nChans);
    std::vector<int32_t> vOut(vIn.size());
    for (int32_t nDone = 0; nDone < nFrames; nDone += 1000)
        pComp->Read(vOut.data() + static_cast<size_t>(nDone) * nChans, std::min(1000, nFrames - nDone));
    return vOut;
}

} // namespace

TEST(CompressorRatio, ListHoldsTheSevenRatiosAndRefusesIndicesBeyondIt)
{
    const char* aLabels[] = {"1:1", "3:2", "2:1", "3:1", "4:1", "5:1", "Limit"};
    const double aRatios[] = {1, 1.5, 2, 3, 4, 5, 1e300};
    for (int32_t i = 0; i < kCompressorRatioCount; ++i) {
        EXPECT_STREQ(CompressorRatioList[i].szLabel, aLabels[i]);
        EXPECT_NEAR(CompressorRatioList[i].fFactorPerDb, std::pow(10.0, -(1 - 1 / aRatios[i]) / 20), 1e-4);
    }
    EXPECT_EQ(CompressorRatioList[2].fFactorPerDb, 0.9440608762859234);
    EXPECT_STREQ(LCompressorRatio(7).szLabel, "1:1");
    EXPECT_STREQ(LCompressorRatio(-1).szLabel, "1:1");
}

TEST(Compressor, GainTableHasMakeUpBelowThresholdRatioAboveAndHardLimitAboveTheLimit)
{
    const double f = LCompressorRatio(2).fFactorPerDb;
    const LSRCCompressor::GainTable a = LSRCCompressor::BuildGainTable(-20, f, 10);
    const int32_t nMakeUp = static_cast<int32_t>(16777216.0 / std::pow(f, 20));
    for (int32_t i = 0; i <= -20 + 128; ++i)
        ASSERT_EQ(a[i], nMakeUp) << i;
    // Level 0 dB comes out at unity.
    EXPECT_NEAR(a[128], 16777216, 2);
    for (int32_t i = 108; i < 138; ++i)
        EXPECT_NEAR(static_cast<double>(a[i + 1]) / a[i], f, 1e-6) << i;
    for (int32_t i = 138; i < 150; ++i)
        EXPECT_NEAR(static_cast<double>(a[i + 1]) / a[i], 0.8913, 1e-5) << i;

    // Threshold at or above 0 dB: no make-up gain.
    EXPECT_EQ(LSRCCompressor::BuildGainTable(5, f, 127)[0], 16777216);
    // 1:1 is flat unity whatever the threshold; the limit region starts at the last entry only.
    for (int32_t g : LSRCCompressor::BuildGainTable(-20, 1.0, 127))
        ASSERT_EQ(g, 16777216);
}

TEST(Compressor, BlockLevelInWholeDecibels)
{
    std::vector<int32_t> v(64, 0);
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), -127);
    // Samples below 32 vanish in the shift: still silence.
    std::fill(v.begin(), v.end(), 31);
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), -127);
    // (2^23 >> 5)^2 = 2^36, a mean square of 2^23 with 13 fractional bits: 0 dB.
    std::fill(v.begin(), v.end(), 1 << 23);
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), 0);
    std::fill(v.begin(), v.end(), -(1 << 22));
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), -6);
    std::fill(v.begin(), v.end(), 1 << 24);
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), 6);
    const int32_t aOne[] = {32};
    EXPECT_EQ(LSRCCompressor::BlockLevel(aOne, 1), -108);
    // Half the samples silent halves the mean square: 3 dB down, rounded half away from zero.
    for (size_t i = 0; i < v.size(); i += 2)
        v[i] = 0;
    EXPECT_EQ(LSRCCompressor::BlockLevel(v.data(), 64), 3);
    const int32_t aHuge[] = {INT32_MIN, INT32_MAX};
    EXPECT_EQ(LSRCCompressor::BlockLevel(aHuge, 2), 48);
}

TEST(Compressor, BlockTimeBecomesFramesWithinLimits)
{
    EXPECT_EQ(LSRCCompressor::BlockFrames(45, 44100), 1984);
    EXPECT_EQ(LSRCCompressor::BlockFrames(45, 22050), 992);
    EXPECT_EQ(LSRCCompressor::BlockFrames(1, 44100), 128);
    EXPECT_EQ(LSRCCompressor::BlockFrames(2500, 8000), 8192);
    EXPECT_EQ(LSRCCompressor::BlockFrames(1500, 4000), 6000);
}

TEST(Compressor, OneToOnePassesUnchangedAndTheLimitAloneChangesNothing)
{
    const std::vector<int32_t> v = efftest::Noise(2 * 30000, 0x1FFFFF, 3);
    EXPECT_EQ(Compress(v, 2, -20, 0), v);
    std::vector<int32_t> vQuietThenLoud = efftest::Noise(2 * 30000, 0x1FFFFF, 3);
    for (size_t i = 0; i < 20000; ++i)
        vQuietThenLoud[i] >>= 6;
    // The loudest block stays far below 100 dB: a limit there or at 127 is the same.
    EXPECT_EQ(Compress(vQuietThenLoud, 2, -30, 4, 127), Compress(vQuietThenLoud, 2, -30, 4, 100));
}

TEST(Compressor, PrimingAndBlockChangesSetTheSlopes)
{
    // Quiet first block, loud second, quiet again: attack, then release.
    const int32_t nBlock = LSRCCompressor::BlockFrames(45, 44100);
    std::vector<int32_t> v(static_cast<size_t>(nBlock) * 4, 1 << 18);
    std::fill(v.begin() + nBlock, v.begin() + 2 * nBlock, 1 << 23);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 1, 0x200000));
    LCountedPtr<LSRCCompressor> pComp(new LSRCCompressor(pSrc.Get(), -30, LCompressorRatio(3).fFactorPerDb, 45, 127));
    const LSRCCompressor::GainTable& a = pComp->GetGainTable();
    const int32_t gQuiet = a[LSRCCompressor::BlockLevel(v.data(), nBlock) + 128];
    const int32_t gLoud = a[LSRCCompressor::BlockLevel(v.data() + nBlock, nBlock) + 128];
    ASSERT_LT(gLoud, gQuiet);
    EXPECT_EQ(pComp->GetGain(), gQuiet);
    EXPECT_EQ(pComp->GetSlope(), (gLoud - gQuiet) / (nBlock + nBlock / 4));

    std::vector<int32_t> vOut(nBlock + 1);
    pComp->Read(vOut.data(), nBlock);
    const int32_t gAfterFirst = gQuiet + nBlock * ((gLoud - gQuiet) / (nBlock + nBlock / 4));
    EXPECT_EQ(pComp->GetGain(), gAfterFirst);
    EXPECT_EQ(vOut[0], LMulGain824(1 << 18, gQuiet));
    // Next boundary: the block after the loud one is quiet again, a release over two blocks.
    pComp->Read(vOut.data(), 1);
    const int32_t nRelease = ((gQuiet + gLoud) / 2 - gAfterFirst) / (2 * nBlock);
    EXPECT_EQ(pComp->GetSlope(), nRelease);
    EXPECT_EQ(vOut[0], LMulGain824(1 << 23, gAfterFirst));
    EXPECT_EQ(pComp->GetGain(), gAfterFirst + nRelease);
}

TEST(Compressor, MonoStereoAndManyChannelsAgree)
{
    const std::vector<int32_t> vMono = efftest::Noise(20000, 0x1FFFFF, 9);
    std::vector<int32_t> vStereo, vQuad;
    for (int32_t s : vMono) {
        vStereo.insert(vStereo.end(), {s, s});
        vQuad.insert(vQuad.end(), {s, s, s, s});
    }
    const std::vector<int32_t> vOutMono = Compress(vMono, 1, -30, 5);
    EXPECT_NE(vOutMono, vMono);
    const std::vector<int32_t> vOutStereo = Compress(vStereo, 2, -30, 5);
    const std::vector<int32_t> vOutQuad = Compress(vQuad, 4, -30, 5);
    for (size_t i = 0; i < vMono.size(); ++i) {
        ASSERT_EQ(vOutStereo[2 * i], vOutMono[i]) << i;
        ASSERT_EQ(vOutStereo[2 * i + 1], vOutMono[i]) << i;
        for (size_t c = 0; c < 4; ++c)
            ASSERT_EQ(vOutQuad[4 * i + c], vOutMono[i]) << i;
    }
}

TEST(Compressor, SeekPrimesAgainAndALatchedInputGivesSilence)
{
    const std::vector<int32_t> v = efftest::Noise(2 * 20000, 0x1FFFFF, 5);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 44100, 2, 0x200000));
    LSoundSourcePtr pComp(new LSRCCompressor(pSrc.Get(), -25, LCompressorRatio(4).fFactorPerDb, 45, 127));
    std::vector<int32_t> vOut(2 * 5000);
    pComp->Read(vOut.data(), 5000);
    pComp->SetPosition(7000);
    EXPECT_EQ(pComp->GetPosition(), 7000);
    pComp->Read(vOut.data(), 5000);

    LSoundSourcePtr pFresh(new LSRCMemory(v, 44100, 2, 0x200000));
    pFresh->SetPosition(7000);
    LSoundSourcePtr pComp2(new LSRCCompressor(pFresh.Get(), -25, LCompressorRatio(4).fFactorPerDb, 45, 127));
    std::vector<int32_t> vExpect(2 * 5000);
    pComp2->Read(vExpect.data(), 5000);
    EXPECT_EQ(vOut, vExpect);

    LSoundSourcePtr pLatched(new LSRCCompressor(LSoundSourcePtr(new LSRCSilence).Get(), -20, 1.0, 45, 127));
    EXPECT_TRUE(pLatched->IsError());
    std::vector<int32_t> vZero(10, 4);
    pLatched->Read(vZero.data(), 10);
    EXPECT_EQ(vZero, std::vector<int32_t>(10, 0));
}

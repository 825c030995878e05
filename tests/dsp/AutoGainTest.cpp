#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <vector>

#include "core/LFixed.h"
#include "core/LMemorySound.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LDPAutoGain.h"
#include "support/TestSupport.h"

namespace {

size_t FilesIn(const std::string& szFolder)
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(szFolder), {}));
}

} // namespace

TEST(AutoGain, PlanRaisesQuietLowersLoudAndNeverOvershoots)
{
    std::vector<double> vLevels(40, -30.0);
    std::fill(vLevels.begin() + 20, vLevels.end(), -6.0);
    const std::vector<double> vGains = LDPAutoGain::PlanGainsDb(vLevels, -12, 12);
    ASSERT_EQ(vGains.size(), vLevels.size());
    EXPECT_DOUBLE_EQ(vGains[5], 12.0);
    EXPECT_DOUBLE_EQ(vGains[35], -6.0);
    // A block's gain and its successor's stay within what the block itself can take.
    for (size_t k = 0; k + 1 < vGains.size(); ++k) {
        const double fWant = std::min(12.0, -12 - vLevels[k]);
        ASSERT_LE(vGains[k], fWant + 1e-9) << k;
        ASSERT_LE(vGains[k + 1], fWant + 1e-9) << k;
    }
    // Near-silence is not lifted on its own; next to sound it takes the sound's gain.
    EXPECT_EQ(LDPAutoGain::PlanGainsDb(std::vector<double>(10, -90.0), -12, 12), std::vector<double>(10, 0.0));
    std::vector<double> vGap(30, -20.0);
    std::fill(vGap.begin() + 10, vGap.begin() + 20, -90.0);
    for (double f : LDPAutoGain::PlanGainsDb(vGap, -12, 12))
        EXPECT_DOUBLE_EQ(f, 8.0);
}

TEST(AutoGain, TwoPassesThroughATemporaryFileLevelTheAudio)
{
    testsupport::TempDir dir;
    // Two seconds of a quiet stereo tone, then two of a loud one.
    const int32_t nRate = 8000, nFrames = 4 * nRate;
    std::vector<int32_t> v(2 * static_cast<size_t>(nFrames));
    for (int32_t i = 0; i < nFrames; ++i) {
        const double fAmp = (i < nFrames / 2 ? 0.0316 : 0.5) * std::sqrt(2.0) * kFullScale16;
        v[2 * i] = v[2 * i + 1] = static_cast<int32_t>(std::lrint(fAmp * std::sin(2 * M_PI * 300 * i / nRate)));
    }
    LSoundSourcePtr pSrc(new LSRCMemory(v, nRate, 2, 0x200000));
    {
        LSoundSourcePtr pOut;
        {
            LDPAutoGain agc(pSrc.Get(), dir.Path());
            ASSERT_EQ(agc.Analyse(nullptr), 0);
            EXPECT_EQ(FilesIn(dir.Path()), 1u);
            pOut = agc.CreateSource();
        }
        ASSERT_FALSE(pOut->IsError());
        EXPECT_EQ(pOut->GetLength(), nFrames);
        EXPECT_EQ(pOut->GetSampleRate(), nRate);
        EXPECT_EQ(pOut->GetChannels(), 2);
        std::vector<int32_t> vOut(v.size() + 200, 7);
        pOut->Read(vOut.data(), nFrames + 100);
        EXPECT_EQ(pOut->GetPosition(), nFrames + 100);
        EXPECT_NEAR(efftest::RmsDb(vOut, 2000, 2 * 6000, kFullScale16), -30.0 + 12.0, 0.2);
        EXPECT_NEAR(efftest::RmsDb(vOut, 2 * 26000, 2 * 32000, kFullScale16), -12.0, 0.2);
        EXPECT_EQ(vOut[2 * nFrames + 10], 0);

        pOut->SetPosition(30000);
        std::vector<int32_t> vAgain(2 * 50);
        pOut->Read(vAgain.data(), 50);
        EXPECT_TRUE(std::equal(vAgain.begin(), vAgain.end(), vOut.begin() + 2 * 30000));
    }
    // The copy goes with the last source that reads it.
    EXPECT_EQ(FilesIn(dir.Path()), 0u);
}

TEST(AutoGain, LatchedInputOrUnwritableFolderFails)
{
    LDPAutoGain agc(LSoundSourcePtr(new LSRCSilence).Get(), "/tmp");
    EXPECT_EQ(agc.Analyse(nullptr), 2);
    EXPECT_TRUE(agc.CreateSource()->IsError());

    LSoundSourcePtr pSrc(new LSRCMemory(std::vector<int32_t>(100, 1), 8000, 1));
    LDPAutoGain agcNowhere(pSrc.Get(), "/nonexistent/folder");
    EXPECT_EQ(agcNowhere.Analyse(nullptr), 2);
    EXPECT_TRUE(agcNowhere.CreateSource()->IsError());
}

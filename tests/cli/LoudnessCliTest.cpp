// End to end: loudness-normalize through `sonitra-cli effect` and through a batch script, the
// written files measured by libebur128.
#include <gtest/gtest.h>

#include <ebur128.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace {

// Integrated loudness (LUFS) and true peak (dBTP) of a 16-bit file.
void Measure(const std::string& szPath, int nChans, int nRate, double& fIntegrated, double& fTruePeakDb)
{
    const std::vector<int16_t> v = testsupport::ReadWavSamples16(szPath);
    ebur128_state* p = ebur128_init(nChans, nRate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK);
    ebur128_add_frames_short(p, v.data(), v.size() / nChans);
    ebur128_loudness_global(p, &fIntegrated);
    double fPeak = 0.0;
    for (int c = 0; c < nChans; ++c) {
        double f = 0.0;
        ebur128_true_peak(p, c, &f);
        fPeak = std::max(fPeak, f);
    }
    fTruePeakDb = 20.0 * std::log10(fPeak);
    ebur128_destroy(&p);
}

class LoudnessCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        szEnv = "XDG_CONFIG_HOME=" + dir.File("config") + " XDG_CACHE_HOME=" + dir.File("cache") + " ";
        // Two tones at different levels, one after the other, in a stereo file.
        std::vector<int32_t> v = testsupport::Sine16(44100, 2, 3 * 44100, 330.0, 900.0);
        const std::vector<int32_t> vLoud = testsupport::Sine16(44100, 2, 3 * 44100, 523.0, 3000.0);
        v.insert(v.end(), vLoud.begin(), vLoud.end());
        testsupport::WriteSimpleWav(In(), 44100, 2, 16, v);
    }
    std::string In() const { return dir.File("in.wav"); }
    int Cli(const std::string& szArgs)
    {
        return testsupport::RunCommand(szEnv + SONITRA_CLI_PATH " " + szArgs + " >" + dir.File("out.txt") + " 2>" +
                                       dir.File("err.txt") + " </dev/null");
    }

    testsupport::TempDir dir;
    std::string szEnv;
};

} // namespace

TEST_F(LoudnessCli, EffectVerbReachesTheTargetAndTheDefault)
{
    double fI = 0.0, fPeak = 0.0;
    ASSERT_EQ(Cli("effect " + In() + " " + dir.File("a.wav") + " loudness-normalize LoudnessTarget=-23"), 0);
    Measure(dir.File("a.wav"), 2, 44100, fI, fPeak);
    EXPECT_NEAR(fI, -23.0, 0.1);
    EXPECT_LE(fPeak, -1.0 + 0.05);
    ASSERT_EQ(Cli("effect " + In() + " " + dir.File("b.wav") + " loudness-normalize"), 0);
    Measure(dir.File("b.wav"), 2, 44100, fI, fPeak);
    EXPECT_NEAR(fI, -16.0, 0.1);
    EXPECT_EQ(Cli("effect " + In() + " " + dir.File("c.wav") + " loudness-normalize LoudnessTarget=5"), 64);
}

TEST_F(LoudnessCli, BatchScriptRunsIt)
{
    const std::string szScript = dir.File("loud.snb");
    ASSERT_EQ(Cli("script new " + szScript + " loudness-normalize LoudnessTarget=-14 LoudnessTruePeak=-1"), 0);
    ASSERT_EQ(Cli("batch " + szScript + " " + In() + " --to wav --out " + dir.File("out") + " --jobs 1"), 0);
    double fI = 0.0, fPeak = 0.0;
    Measure(dir.File("out/in.wav"), 2, 44100, fI, fPeak);
    EXPECT_NEAR(fI, -14.0, 0.1);
    EXPECT_LE(fPeak, -1.0 + 0.05);
}

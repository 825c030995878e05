// End to end: loudness-normalize through `sonitra-cli effect` and through a batch script, the
// written files measured by libebur128.
#include <gtest/gtest.h>

#include <ebur128.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/CliTest.h"

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

class LoudnessCli : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        // Two tones at different levels, one after the other, in a stereo file.
        std::vector<int32_t> v = testsupport::Sine16(44100, 2, 3 * 44100, 330.0, 900.0);
        const std::vector<int32_t> vLoud = testsupport::Sine16(44100, 2, 3 * 44100, 523.0, 3000.0);
        v.insert(v.end(), vLoud.begin(), vLoud.end());
        testsupport::WriteSimpleWav(In(), 44100, 2, 16, v);
    }
    std::string In() const { return dir.File("in.wav"); }
    int Cli(const std::string& szArgs) { return CliApart(szArgs); }
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

namespace {

// The integrated loudness `analyze --loudness` prints, NaN when it prints none.
double PrintedIntegrated(const std::string& szOutput)
{
    const size_t n = szOutput.find("Integrated loudness:");
    return n == std::string::npos ? NAN : std::atof(szOutput.c_str() + n + 20);
}

// A stereo 1 kHz sine at 48 kHz made of parts of (peak level in dBFS, seconds), as the EBU's
// loudness meter test signals are.
std::vector<int32_t> TonesOf(const std::vector<std::pair<double, double>>& vParts)
{
    std::vector<int32_t> v;
    for (auto [fDb, fSeconds] : vParts) {
        const std::vector<int32_t> vPart = testsupport::Sine16(48000, 2, static_cast<int>(fSeconds * 48000), 1000.0,
                                                                32768.0 * std::pow(10.0, fDb / 20.0));
        v.insert(v.end(), vPart.begin(), vPart.end());
    }
    return v;
}

} // namespace

// The integrated-loudness signals of the EBU's meter test set: steady tones, and tones around
// quiet parts the gates must leave out.
TEST_F(LoudnessCli, AnalyzeMeasuresTheMeterTestSignals)
{
    struct Signal
    {
        const char* szName;
        std::vector<std::pair<double, double>> vParts;
        double fExpected;
    };
    const Signal vSignals[] = {
        {"steady -23", {{-23, 20}}, -23.0},
        {"steady -33", {{-33, 20}}, -33.0},
        {"relative gate", {{-36, 10}, {-23, 60}, {-36, 10}}, -23.0},
        {"both gates", {{-72, 10}, {-36, 10}, {-23, 60}, {-36, 10}, {-72, 10}}, -23.0},
        {"louder middle", {{-26, 20}, {-20, 20.1}, {-26, 20}}, -23.0},
    };
    for (const Signal& s : vSignals) {
        SCOPED_TRACE(s.szName);
        const std::string szPath = dir.File("tones.wav");
        testsupport::WriteSimpleWav(szPath, 48000, 2, 16, TonesOf(s.vParts));
        ASSERT_EQ(Cli("analyze --loudness " + szPath), 0);
        const std::string szOut = Out();
        EXPECT_NEAR(PrintedIntegrated(szOut), s.fExpected, 0.1) << szOut;
        EXPECT_NE(szOut.find("Loudness range:"), std::string::npos);
        EXPECT_NE(szOut.find("True peak:"), std::string::npos);
    }
    // Silence has no loudness to print; a range past the end is refused.
    testsupport::WriteSimpleWav(dir.File("silence.wav"), 48000, 2, 16, std::vector<int32_t>(2 * 48000, 0));
    ASSERT_EQ(Cli("analyze --loudness " + dir.File("silence.wav")), 0);
    const std::string szOut = Out();
    EXPECT_NE(szOut.find("-inf LUFS"), std::string::npos) << szOut;
    EXPECT_EQ(Cli("analyze --loudness --range 0,96000 " + dir.File("silence.wav")), 64);
}

namespace {

// Twelve seconds of something like music: a rising line of decaying notes with overtones, moving
// across the stereo field, over noise hits on the beat, growing louder.
std::vector<int32_t> MusicLike()
{
    const int nRate = 48000, nFrames = 12 * nRate;
    std::vector<int32_t> v(2 * static_cast<size_t>(nFrames));
    uint32_t nNoise = 12345;
    for (int i = 0; i < nFrames; ++i) {
        const double t = static_cast<double>(i) / nRate;
        const int nNote = static_cast<int>(t * 4.0);
        const double tNote = t - nNote / 4.0, fHz = 220.0 * std::pow(2.0, (nNote * 5 % 12) / 12.0);
        double fTone = 0.0;
        for (int h = 1; h <= 4; ++h)
            fTone += std::sin(2.0 * M_PI * fHz * h * t) / h;
        fTone *= std::exp(-4.0 * tNote);
        nNoise = nNoise * 1664525u + 1013904223u;
        const double fHit = (static_cast<int32_t>(nNoise) / 2147483648.0) * std::exp(-30.0 * std::fmod(t, 0.5));
        const double fGain = 3000.0 * (1.0 + t / 4.0), fPan = 0.5 + 0.4 * std::sin(t);
        v[2 * i] = static_cast<int32_t>(fGain * (fTone * fPan + 0.6 * fHit));
        v[2 * i + 1] = static_cast<int32_t>(fGain * (fTone * (1.0 - fPan) + 0.6 * fHit));
    }
    return v;
}

} // namespace

// Beside the reference tool on tones, speech and music, at different rates and channel counts.
TEST_F(LoudnessCli, AnalyzeAgreesWithFfmpeg)
{
    ASSERT_TRUE(testsupport::HaveTool("ffmpeg")) << "the set-up installs ffmpeg";
    ASSERT_TRUE(testsupport::HaveTool("espeak-ng")) << "the set-up installs espeak-ng";
    const std::string szSpeech = dir.File("speech.wav"), szMusic = dir.File("music.wav");
    ASSERT_EQ(testsupport::RunCommand("espeak-ng -w " + szSpeech +
                                      " 'Every edit and every undo is instant, however long the audio may be.'"),
              0);
    testsupport::WriteSimpleWav(szMusic, 48000, 2, 16, MusicLike());
    for (const std::string& szPath : {In(), szSpeech, szMusic}) {
        SCOPED_TRACE(szPath);
        ASSERT_EQ(Cli("analyze --loudness " + szPath), 0);
        const std::string szOurs = Out();
        std::string szTheirs;
        // Its running values carry three decimals where its summary rounds to one.
        testsupport::RunCommand("ffmpeg -hide_banner -nostats -i " + szPath +
                                    " -af ebur128=metadata=1,ametadata=mode=print:key=lavfi.r128.I -f null - 2>&1",
                                &szTheirs);
        const size_t n = szTheirs.rfind("lavfi.r128.I=");
        ASSERT_NE(n, std::string::npos) << szTheirs;
        EXPECT_NEAR(PrintedIntegrated(szOurs), std::atof(szTheirs.c_str() + n + 13), 0.1) << szOurs;
    }
}

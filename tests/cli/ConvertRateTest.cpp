// End to end: `sonitra-cli convert IN OUT --rate N` resamples a WAV file.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/TestSupport.h"

using testsupport::Quote;
using testsupport::RunCli;
using testsupport::WavLayout;
using testsupport::ReadWavSamples16;

namespace {

// Level in dB of the component at fHz against an amplitude, over the middle of the signal.
double ToneDb(const std::vector<int16_t>& v, int nRate, double fHz, double fAmplitude)
{
    const size_t nFrom = v.size() / 10, nTo = v.size() - v.size() / 10;
    double fI = 0, fQ = 0;
    for (size_t i = nFrom; i < nTo; ++i) {
        const double fPhase = 2 * M_PI * fHz * static_cast<double>(i) / nRate;
        fI += v[i] * std::cos(fPhase);
        fQ += v[i] * std::sin(fPhase);
    }
    return 20 * std::log10(2 * std::hypot(fI, fQ) / static_cast<double>(nTo - nFrom) / fAmplitude + 1e-12);
}

} // namespace

TEST(CliConvertRate, ResamplesAWavFileKeepingTheBandAndRemovingWhatLiesAboveIt)
{
    testsupport::TempDir dir;
    // Two seconds of a 1 kHz tone plus a 15 kHz tone that cannot exist at 22050 Hz.
    const int nFrames = 88200;
    std::vector<int32_t> vIn(nFrames);
    for (int i = 0; i < nFrames; ++i)
        vIn[i] = static_cast<int32_t>(std::lrint(8000 * std::sin(2 * M_PI * 1000 * i / 44100.0) +
                                                 8000 * std::sin(2 * M_PI * 15000 * i / 44100.0)));
    testsupport::WriteSimpleWav(dir.File("in.wav"), 44100, 1, 16, vIn);

    std::string szOutput;
    ASSERT_EQ(RunCli("convert " + Quote(dir.File("in.wav")) + " " + Quote(dir.File("out.wav")) + " --rate 22050", &szOutput), 0)
        << szOutput;
    WavLayout layout;
    const std::vector<int16_t> v = ReadWavSamples16(dir.File("out.wav"), &layout);
    EXPECT_EQ(layout.nRate, 22050);
    EXPECT_EQ(layout.nChans, 1);
    EXPECT_EQ(layout.nBits, 16);
    EXPECT_EQ(v.size(), static_cast<size_t>(nFrames / 2));
    EXPECT_NEAR(ToneDb(v, 22050, 1000, 8000), 0.0, 0.1);
    // The 15 kHz tone would fold down to 7050 Hz.
    EXPECT_LT(ToneDb(v, 22050, 22050 - 15000, 8000), -80.0);
}

TEST(CliConvertRate, UpsamplesToTheExactScaledLength)
{
    testsupport::TempDir dir;
    testsupport::WriteSimpleWav(dir.File("in.wav"), 8000, 2, 16, testsupport::Sine16(8000, 2, 8001, 440));
    ASSERT_EQ(RunCli("convert " + Quote(dir.File("in.wav")) + " " + Quote(dir.File("out.wav")) + " --rate 44100"), 0);
    WavLayout layout;
    const std::vector<int16_t> v = ReadWavSamples16(dir.File("out.wav"), &layout);
    EXPECT_EQ(layout.nRate, 44100);
    EXPECT_EQ(layout.nChans, 2);
    EXPECT_EQ(v.size(), 2 * static_cast<size_t>(8001LL * 44100 / 8000));
    std::vector<int16_t> vLeft;
    for (size_t i = 0; i < v.size(); i += 2)
        vLeft.push_back(v[i]);
    EXPECT_NEAR(ToneDb(vLeft, 44100, 440, 16000), 0.0, 0.1);
}

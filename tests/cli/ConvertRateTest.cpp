// End to end: `sonitra-cli convert IN OUT --rate N` resamples a WAV file.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace {

struct WavData
{
    int nRate = 0;
    int nChans = 0;
    int nBits = 0;
    std::vector<int16_t> vSamples;
};

uint32_t Le32(const uint8_t* p) { return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24; }
uint16_t Le16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

// Walks the RIFF chunks for "fmt " and "data"; 16-bit PCM only.
bool ParseWav(const std::vector<uint8_t>& v, WavData& out)
{
    if (v.size() < 12 || std::memcmp(v.data(), "RIFF", 4) != 0 || std::memcmp(v.data() + 8, "WAVE", 4) != 0)
        return false;
    for (size_t i = 12; i + 8 <= v.size();) {
        const uint32_t nSize = Le32(&v[i + 4]);
        const size_t nBody = i + 8;
        if (nBody + nSize > v.size())
            return false;
        if (std::memcmp(&v[i], "fmt ", 4) == 0 && nSize >= 16) {
            out.nChans = Le16(&v[nBody + 2]);
            out.nRate = static_cast<int>(Le32(&v[nBody + 4]));
            out.nBits = Le16(&v[nBody + 14]);
        } else if (std::memcmp(&v[i], "data", 4) == 0) {
            for (size_t k = 0; k + 1 < nSize; k += 2)
                out.vSamples.push_back(static_cast<int16_t>(Le16(&v[nBody + k])));
            return out.nBits == 16;
        }
        i = nBody + nSize + (nSize & 1);
    }
    return false;
}

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

bool HaveConvertVerb()
{
    return testsupport::RunCommand(std::string(SONITRA_CLI_PATH) + " convert --help >/dev/null 2>&1") == 0;
}

} // namespace

TEST(CliConvertRate, ResamplesAWavFileKeepingTheBandAndRemovingWhatLiesAboveIt)
{
    if (!HaveConvertVerb())
        GTEST_SKIP() << "sonitra-cli has no convert verb yet";
    testsupport::TempDir dir;
    // Two seconds of a 1 kHz tone plus a 15 kHz tone that cannot exist at 22050 Hz.
    const int nFrames = 88200;
    std::vector<int32_t> vIn(nFrames);
    for (int i = 0; i < nFrames; ++i)
        vIn[i] = static_cast<int32_t>(std::lrint(8000 * std::sin(2 * M_PI * 1000 * i / 44100.0) +
                                                 8000 * std::sin(2 * M_PI * 15000 * i / 44100.0)));
    testsupport::WriteSimpleWav(dir.File("in.wav"), 44100, 1, 16, vIn);

    std::string szOutput;
    ASSERT_EQ(testsupport::RunCommand(std::string(SONITRA_CLI_PATH) + " convert '" + dir.File("in.wav") + "' '" +
                                          dir.File("out.wav") + "' --rate 22050 2>&1",
                                      &szOutput),
              0)
        << szOutput;
    WavData wav;
    ASSERT_TRUE(ParseWav(testsupport::ReadFileBytes(dir.File("out.wav")), wav));
    EXPECT_EQ(wav.nRate, 22050);
    EXPECT_EQ(wav.nChans, 1);
    EXPECT_EQ(wav.vSamples.size(), static_cast<size_t>(nFrames / 2));
    EXPECT_NEAR(ToneDb(wav.vSamples, 22050, 1000, 8000), 0.0, 0.1);
    // The 15 kHz tone would fold down to 7050 Hz.
    EXPECT_LT(ToneDb(wav.vSamples, 22050, 22050 - 15000, 8000), -80.0);
}

TEST(CliConvertRate, UpsamplesToTheExactScaledLength)
{
    if (!HaveConvertVerb())
        GTEST_SKIP() << "sonitra-cli has no convert verb yet";
    testsupport::TempDir dir;
    testsupport::WriteSimpleWav(dir.File("in.wav"), 8000, 2, 16, testsupport::Sine16(8000, 2, 8001, 440));
    ASSERT_EQ(testsupport::RunCommand(std::string(SONITRA_CLI_PATH) + " convert '" + dir.File("in.wav") + "' '" +
                                      dir.File("out.wav") + "' --rate 44100 >/dev/null 2>&1"),
              0);
    WavData wav;
    ASSERT_TRUE(ParseWav(testsupport::ReadFileBytes(dir.File("out.wav")), wav));
    EXPECT_EQ(wav.nRate, 44100);
    EXPECT_EQ(wav.nChans, 2);
    EXPECT_EQ(wav.vSamples.size(), 2 * static_cast<size_t>(8001LL * 44100 / 8000));
    std::vector<int16_t> vLeft;
    for (size_t i = 0; i < wav.vSamples.size(); i += 2)
        vLeft.push_back(wav.vSamples[i]);
    EXPECT_NEAR(ToneDb(vLeft, 44100, 440, 16000), 0.0, 0.1);
}

// End to end: `sonitra-cli generate` writes tones that decode as asked, and `sonitra-cli analyze`
// finds their peaks.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "dsp/LSRCTone.h"
#include "formats/LAudioFile.h"
#include "support/CliTest.h"

namespace {

class GenerateAnalyze : public testsupport::CliTest
{
protected:
    std::vector<double> Read(const std::string& szPath, int32_t* pRate = nullptr, int* pChans = nullptr)
    {
        LSoundSourcePtr p = LAudioFile::OpenSource(szPath);
        if (p->IsError())
            return {};
        std::vector<int32_t> v(static_cast<size_t>(p->GetLength()) * p->GetChannels());
        p->Read(v.data(), p->GetLength());
        if (pRate)
            *pRate = p->GetSampleRate();
        if (pChans)
            *pChans = p->GetChannels();
        return std::vector<double>(v.begin(), v.end());
    }
};

// Power of one frequency over a stretch, by the Goertzel recurrence.
double Goertzel(const double* p, size_t n, double fHz, int nRate)
{
    const double c = 2.0 * std::cos(2.0 * M_PI * fHz / nRate);
    double s1 = 0, s2 = 0;
    for (size_t i = 0; i < n; ++i) {
        const double s0 = p[i] + c * s1 - s2;
        s2 = s1;
        s1 = s0;
    }
    return s1 * s1 + s2 * s2 - c * s1 * s2;
}

char DecodeDigit(const double* p, size_t n, int nRate)
{
    const double aLow[] = {697, 770, 852, 941}, aHigh[] = {1209, 1336, 1477, 1633};
    int iLow = 0, iHigh = 0;
    for (int i = 1; i < 4; ++i) {
        if (Goertzel(p, n, aLow[i], nRate) > Goertzel(p, n, aLow[iLow], nRate))
            iLow = i;
        if (Goertzel(p, n, aHigh[i], nRate) > Goertzel(p, n, aHigh[iHigh], nRate))
            iHigh = i;
    }
    return "123A456B789C*0#D"[iLow * 4 + iHigh];
}

} // namespace

TEST_F(GenerateAnalyze, TouchToneDigitsDecodeToWhatWasTyped)
{
    const std::string szDigits = "0123456789*#ABCD";
    ASSERT_EQ(Cli("generate " + dir.File("dtmf.wav") + " --wave dtmf --digits '" + szDigits + "' --rate 8000"), 0);
    int32_t nRate = 0;
    const auto v = Read(dir.File("dtmf.wav"), &nRate);
    ASSERT_EQ(nRate, 8000);
    // 0.2 s a digit by default.
    ASSERT_EQ(v.size(), szDigits.size() * 1600);
    std::string szHeard;
    for (size_t d = 0; d < szDigits.size(); ++d) {
        szHeard += DecodeDigit(v.data() + d * 1600, 1000, nRate);
        // The last third of each slot is silence.
        for (size_t i = d * 1600 + 1100; i < (d + 1) * 1600; ++i)
            ASSERT_EQ(v[i], 0.0) << "digit " << d;
    }
    EXPECT_EQ(szHeard, szDigits);
}

TEST_F(GenerateAnalyze, GeneratedSineHasItsFrequencyLevelAndShape)
{
    ASSERT_EQ(Cli("generate " + dir.File("sine.wav") + " --wave sine --freq 1234.5 --level -3 --length 0.5 --rate 22050 --channels 2"), 0);
    int32_t nRate = 0;
    int nChans = 0;
    const auto v = Read(dir.File("sine.wav"), &nRate, &nChans);
    ASSERT_EQ(nRate, 22050);
    ASSERT_EQ(nChans, 2);
    ASSERT_EQ(v.size(), 2u * 11025);
    double fPower = 0, fFirst = -1, fLast = -1;
    int nCrossings = 0;
    for (size_t i = 0; i < v.size(); i += 2) {
        fPower += v[i] * v[i];
        if (i >= 2 && v[i - 2] < 0 && v[i] >= 0) {
            const double t = (i - 2) / 2 + v[i - 2] / (v[i - 2] - v[i]);
            fFirst = fFirst < 0 ? t : fFirst;
            fLast = t;
            ++nCrossings;
        }
    }
    EXPECT_NEAR((nCrossings - 1) * 22050.0 / (fLast - fFirst), 1234.5, 1234.5 * 0.001);
    const double fPeakDb = 10.0 * std::log10(2.0 * fPower / 11025.0 / (524272.0 * 524272.0));
    EXPECT_NEAR(fPeakDb, -3.0, 0.1);
}

TEST_F(GenerateAnalyze, AnalyzePrintsTheStrongestPeaksAndWritesTheSpectrum)
{
    ASSERT_EQ(Cli("generate " + dir.File("a.wav") + " --wave sine --freq 440 --level 0 --rate 16000 --length 1"), 0);
    std::string szOut;
    ASSERT_EQ(Cli("analyze " + dir.File("a.wav") + " --size 2048 --peaks 1 --csv " + dir.File("s.csv"), &szOut), 0) << szOut;
    double fHz = 0, fDb = 0;
    ASSERT_EQ(std::sscanf(szOut.c_str() + szOut.find('\n') + 1, "%lf %lf", &fHz, &fDb), 2) << szOut;
    EXPECT_NEAR(fHz, 440.0, 16000.0 / 2048);
    EXPECT_NEAR(fDb, 0.0, 0.5);
    std::ifstream csv(dir.File("s.csv"));
    std::string szLine;
    int nLines = 0;
    while (std::getline(csv, szLine))
        ++nLines;
    EXPECT_EQ(nLines, 1 + 1025);
    ASSERT_EQ(Cli("analyze " + dir.File("a.wav") + " --range 100,900 --size 512 --peaks 1", &szOut), 0) << szOut;
    ASSERT_EQ(std::sscanf(szOut.c_str() + szOut.find('\n') + 1, "%lf %lf", &fHz, &fDb), 2) << szOut;
    EXPECT_NEAR(fHz, 440.0, 16000.0 / 512);
    EXPECT_EQ(Cli("analyze " + dir.File("a.wav") + " --range 0,16001", &szOut), 64);
}

TEST_F(GenerateAnalyze, RefusesBadRequests)
{
    std::string szOut;
    EXPECT_EQ(Cli("generate " + dir.File("x.wav") + " --wave chirp", &szOut), 64);
    EXPECT_NE(szOut.find("--wave takes"), std::string::npos);
    EXPECT_EQ(Cli("generate " + dir.File("x.wav") + " --wave dtmf --digits 12Z", &szOut), 64);
    EXPECT_EQ(Cli("generate " + dir.File("x.wav") + " --freq 30000", &szOut), 64);
    EXPECT_EQ(Cli("analyze " + dir.File("missing.wav"), &szOut), 2);
    EXPECT_EQ(Cli("analyze " + dir.File("x.wav") + " --size 1000", &szOut), 64);
    EXPECT_NE(szOut.find("power of two"), std::string::npos);
    EXPECT_EQ(Cli("analyze " + dir.File("x.wav") + " --range 900,900", &szOut), 64); // an empty range
    EXPECT_NE(szOut.find("S < E"), std::string::npos) << szOut;
}

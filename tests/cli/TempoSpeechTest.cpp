// Slowing real speech down: the spectral envelope must stay as close to the original's as that of
// the established tool's tempo change, and the grains must join without clicks.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdio>
#include <string>
#include <vector>

#include "dsp/LFFT.h"
#include "formats/LAudioFile.h"
#include "support/TestSupport.h"

namespace {

std::vector<double> ReadMono(const std::string& szPath)
{
    std::string szError;
    LSoundSourcePtr p = LAudioFile::OpenSource(szPath, &szError);
    if (p->IsError())
        return {};
    const int32_t nFrames = p->GetLength();
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * p->GetChannels());
    p->Read(v.data(), nFrames);
    std::vector<double> vOut(nFrames);
    for (int32_t i = 0; i < nFrames; ++i)
        vOut[i] = v[static_cast<size_t>(i) * p->GetChannels()];
    return vOut;
}

// The long-term average power spectrum in dB: 1024-point Hann frames, half overlapped.
std::vector<double> AverageSpectrumDb(const std::vector<double>& v)
{
    constexpr int32_t kSize = 1024;
    LFFT fft(kSize);
    std::vector<double> vPower(kSize / 2, 0.0);
    std::vector<std::complex<double>> vBuf(kSize);
    for (size_t s = 0; s + kSize <= v.size(); s += kSize / 2) {
        for (int32_t n = 0; n < kSize; ++n)
            vBuf[n] = v[s + n] * (0.5 - 0.5 * std::cos(2.0 * M_PI * n / kSize));
        fft.Forward(vBuf.data());
        for (int32_t k = 0; k < kSize / 2; ++k)
            vPower[k] += std::norm(vBuf[k]);
    }
    for (double& f : vPower)
        f = 10.0 * std::log10(f + 1e-9);
    return vPower;
}

// Root-mean-square difference of the two level-matched envelopes, in dB, from 100 Hz to 90 % of
// the Nyquist frequency.
double LogSpectralDistance(const std::vector<double>& vA, const std::vector<double>& vB, int nRate)
{
    const auto sA = AverageSpectrumDb(vA), sB = AverageSpectrumDb(vB);
    const size_t kLo = static_cast<size_t>(100.0 * 1024 / nRate) + 1, kHi = sA.size() * 9 / 10;
    double fMean = 0;
    for (size_t k = kLo; k < kHi; ++k)
        fMean += sA[k] - sB[k];
    fMean /= static_cast<double>(kHi - kLo);
    double fSum = 0;
    for (size_t k = kLo; k < kHi; ++k)
        fSum += (sA[k] - sB[k] - fMean) * (sA[k] - sB[k] - fMean);
    return std::sqrt(fSum / static_cast<double>(kHi - kLo));
}

double LargestJump(const std::vector<double>& v)
{
    double f = 0;
    for (size_t i = 1; i < v.size(); ++i)
        f = std::max(f, std::fabs(v[i] - v[i - 1]));
    return f;
}

} // namespace

TEST(TempoSpeech, SlowedSpeechKeepsItsEnvelopeAsWellAsTheEstablishedTool)
{
    if (!testsupport::HaveTool("espeak-ng") || !testsupport::HaveTool("sox"))
        GTEST_SKIP() << "needs espeak-ng and sox";
    testsupport::TempDir dir;
    const std::string szIn = dir.File("speech.wav"), szOurs = dir.File("ours.wav"), szTheirs = dir.File("theirs.wav");
    const std::string szEnv = "XDG_CONFIG_HOME=" + dir.File("config") + " XDG_CACHE_HOME=" + dir.File("cache") + " ";
    const char* aszTexts[] = {"The quick brown fox jumps over the lazy dog, and nobody minds.",
                              "Seven slow sailors measured the shimmering harbour at dawn.",
                              "Please call Stella. Ask her to bring these things with her from the store.",
                              "It was the best of times, it was the worst of times."};
    // One sentence says little; the mean over several sentences and two voices says more.
    double fOurs = 0, fTheirs = 0;
    int nCases = 0;
    for (const char* szVoice : {"en", "en-us+f3"}) {
        for (const char* szText : aszTexts) {
            SCOPED_TRACE(szText);
            ASSERT_EQ(testsupport::RunCommand(std::string("espeak-ng -v ") + szVoice + " -w " + szIn + " '" + szText + "'"), 0);
            ASSERT_EQ(testsupport::RunCommand(szEnv + SONITRA_CLI_PATH " effect " + szIn + " " + szOurs +
                                              " constant-pitch-and-speed-change ConstPitchSpeed=80"),
                      0);
            ASSERT_EQ(testsupport::RunCommand("sox " + szIn + " " + szTheirs + " tempo 0.8"), 0);
            const auto vIn = ReadMono(szIn), vOurs = ReadMono(szOurs), vTheirs = ReadMono(szTheirs);
            ASSERT_GT(vIn.size(), 10000u);
            EXPECT_NEAR(static_cast<double>(vOurs.size()), vIn.size() / 0.8, 8192.0);
            EXPECT_LE(LargestJump(vOurs), LargestJump(vIn));
            fOurs += LogSpectralDistance(vIn, vOurs, 22050);
            fTheirs += LogSpectralDistance(vIn, vTheirs, 22050);
            ++nCases;
        }
    }
    fOurs /= nCases;
    fTheirs /= nCases;
    std::printf("mean log-spectral distance to the original: ours %.3f dB, sox tempo 0.8 %.3f dB\n", fOurs, fTheirs);
    EXPECT_LE(fOurs, fTheirs);
}

// The tone generator and the spectrum analysis, each checked by the other's independent means:
// zero crossings and levels for the tones, known tones for the analysis.
#include <gtest/gtest.h>

#include <cmath>

#include "core/LMemorySound.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LSRCTone.h"
#include "dsp/LSpectrum.h"

using efftest::ReadAll;

namespace {
constexpr double kFullScale = 524272.0;

std::vector<int32_t> Make(const LToneSettings& s)
{
    LSRCTone tone(s);
    EXPECT_FALSE(tone.IsError()) << s.Check();
    return ReadAll(tone, tone.GetLength());
}

double CrossingHz(const std::vector<int32_t>& v, int nChans, int nRate, size_t nFrom, size_t nTo)
{
    double fFirst = -1, fLast = -1;
    int nCount = 0;
    for (size_t i = nFrom + 1; i < nTo; ++i) {
        const double a = v[(i - 1) * nChans], b = v[i * nChans];
        if (a < 0 && b >= 0) {
            const double t = (i - 1) + a / (a - b);
            fFirst = fFirst < 0 ? t : fFirst;
            fLast = t;
            ++nCount;
        }
    }
    return nCount > 1 ? (nCount - 1) * nRate / (fLast - fFirst) : 0.0;
}

LSpectrum Analyse(const std::vector<int32_t>& v, int nRate, int nChans, int32_t nSize)
{
    LSRCMemory src(v, nRate, static_cast<uint8_t>(nChans));
    LSpectrum spectrum;
    EXPECT_TRUE(spectrum.Analyze(src, 0, src.GetLength(), nSize));
    return spectrum;
}
} // namespace

TEST(ToneGenerator, SineHasItsFrequencyAndLevel)
{
    LToneSettings s;
    s.fHz = 997.0;
    s.fLevelDb = -12.0;
    s.nRate = 48000;
    s.nChans = 2;
    s.nLengthMs = 500;
    const auto v = Make(s);
    ASSERT_EQ(v.size(), 48000u);
    EXPECT_NEAR(CrossingHz(v, 2, 48000, 0, 24000), 997.0, 997.0 * 0.001);
    // A sine's mean power is half its peak squared.
    EXPECT_NEAR(efftest::RmsDb(v, 0, v.size(), kFullScale) + 10.0 * std::log10(2.0), -12.0, 0.1);
    for (size_t i = 0; i < v.size(); i += 2)
        ASSERT_EQ(v[i], v[i + 1]);
}

TEST(ToneGenerator, PeriodicWavesKeepTheirPeakAndPitch)
{
    for (auto wave : {LToneSettings::Square, LToneSettings::Triangle, LToneSettings::Sawtooth}) {
        SCOPED_TRACE(LToneSettings::WaveName(wave));
        LToneSettings s;
        s.wave = wave;
        s.fHz = 200.0;
        s.nRate = 16000;
        s.fLevelDb = -6.0;
        const auto v = Make(s);
        int32_t nPeak = 0;
        for (int32_t x : v)
            nPeak = std::max(nPeak, std::abs(x));
        // The band-limited edges may ring a little past the level, never far.
        EXPECT_NEAR(20.0 * std::log10(nPeak / kFullScale), -6.0, 1.0);
        const LSpectrum sp = Analyse(v, 16000, 1, 4096);
        EXPECT_NEAR(sp.Peaks(1)[0].fHz, 200.0, sp.BinHz(1));
        // The square has no even harmonics.
        if (wave == LToneSettings::Square)
            EXPECT_LT(sp.DbAt(400.0), sp.DbAt(600.0) - 30.0);
    }
}

TEST(ToneGenerator, NoiseIsFlatOrFallsThreeDecibelsAnOctave)
{
    LToneSettings s;
    s.nRate = 32000;
    s.nLengthMs = 4000;
    auto Band = [](const LSpectrum& sp, double fLo, double fHi) {
        double f = 0;
        int n = 0;
        for (int32_t k = 1; k < static_cast<int32_t>(sp.GetDb().size()); ++k)
            if (sp.BinHz(k) >= fLo && sp.BinHz(k) < fHi) {
                f += std::pow(10.0, sp.GetDb()[k] / 10.0);
                ++n;
            }
        return 10.0 * std::log10(f / n);
    };
    s.wave = LToneSettings::WhiteNoise;
    const LSpectrum white = Analyse(Make(s), 32000, 1, 1024);
    EXPECT_NEAR(Band(white, 200, 400) - Band(white, 6400, 12800), 0.0, 1.5);
    s.wave = LToneSettings::PinkNoise;
    const LSpectrum pink = Analyse(Make(s), 32000, 1, 1024);
    // Four octaves apart: 12 dB.
    EXPECT_NEAR(Band(pink, 200, 400) - Band(pink, 3200, 6400), 12.0, 3.0);
}

TEST(ToneGenerator, SweepGlidesBetweenItsEnds)
{
    LToneSettings s;
    s.wave = LToneSettings::Sweep;
    s.fHz = 100.0;
    s.fToHz = 1600.0;
    s.nRate = 16000;
    s.nLengthMs = 4000;
    const auto v = Make(s);
    // An exponential sweep: the mean frequency over [t0, t1) is the phase it gains over that time.
    const double fK = std::log(16.0) / 4.0;
    auto Mean = [&](double t0, double t1) { return 100.0 * (std::exp(fK * t1) - std::exp(fK * t0)) / fK / (t1 - t0); };
    EXPECT_NEAR(CrossingHz(v, 1, 16000, 0, 8000), Mean(0, 0.5), Mean(0, 0.5) * 0.01);
    EXPECT_NEAR(CrossingHz(v, 1, 16000, 56000, 64000), Mean(3.5, 4.0), Mean(3.5, 4.0) * 0.01);
    EXPECT_NEAR(CrossingHz(v, 1, 16000, 31000, 33000), 400.0, 4.0);
}

TEST(ToneGenerator, RefusesWhatCannotBeMade)
{
    LToneSettings s;
    s.fHz = 30000.0;
    EXPECT_FALSE(s.Check().empty());
    LSRCTone tone(s);
    EXPECT_TRUE(tone.IsError());
    EXPECT_EQ(tone.GetLength(), 0);
    s = LToneSettings();
    s.wave = LToneSettings::Dtmf;
    s.szDigits = "12x";
    EXPECT_NE(s.Check().find("'x'"), std::string::npos);
    s.szDigits = "";
    EXPECT_FALSE(s.Check().empty());
    s = LToneSettings();
    s.fLevelDb = 3.0;
    EXPECT_FALSE(s.Check().empty());
    LToneSettings::Wave w;
    EXPECT_TRUE(LToneSettings::WaveByName("pink", w));
    EXPECT_EQ(w, LToneSettings::PinkNoise);
    EXPECT_FALSE(LToneSettings::WaveByName("Pink", w));
}

TEST(Spectrum, FindsTwoTonesWithinABinAndAFullScaleLevel)
{
    const int nRate = 44100;
    std::vector<int32_t> v(nRate);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(std::lround(0.5 * kFullScale * std::sin(2 * M_PI * 523.3 * i / nRate) +
                                                0.25 * kFullScale * std::sin(2 * M_PI * 7777.7 * i / nRate)));
    for (int32_t nSize : {512, 2048, 32768}) {
        SCOPED_TRACE(nSize);
        const LSpectrum sp = Analyse(v, nRate, 1, nSize);
        ASSERT_EQ(sp.GetDb().size(), static_cast<size_t>(nSize / 2 + 1));
        const auto vPeaks = sp.Peaks(2);
        ASSERT_EQ(vPeaks.size(), 2u);
        EXPECT_NEAR(vPeaks[0].fHz, 523.3, sp.BinHz(1));
        EXPECT_NEAR(vPeaks[1].fHz, 7777.7, sp.BinHz(1));
        EXPECT_NEAR(vPeaks[0].fDb, -6.02, 0.5);
        EXPECT_NEAR(vPeaks[1].fDb, -12.04, 0.5);
    }
    // Full scale, half way between two bins, on both channels.
    std::vector<int32_t> vFull(2 * 16384);
    for (size_t i = 0; i < vFull.size(); ++i)
        vFull[i] = static_cast<int32_t>(std::lround(kFullScale * std::sin(2 * M_PI * 1010.5 * (i / 2) / 8192.0)));
    const LSpectrum sp = Analyse(vFull, 8192, 2, 1024);
    EXPECT_NEAR(sp.Peaks(1)[0].fHz, 1010.5, sp.BinHz(1));
    EXPECT_NEAR(sp.Peaks(1)[0].fDb, 0.0, 0.5);
}

TEST(Spectrum, AnalysesOnlyTheRangeAndRefusesBadSizes)
{
    std::vector<int32_t> v(16000);
    for (size_t i = 8000; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(100000 * std::sin(2 * M_PI * 1000.0 * i / 8000.0 + 0.3));
    LSRCMemory src(v, 8000, 1);
    LSpectrum sp;
    EXPECT_FALSE(sp.Analyze(src, 0, 100, 1000));
    EXPECT_FALSE(sp.Analyze(src, 0, 100, 256));
    EXPECT_FALSE(sp.Analyze(src, 0, 100, 65536));
    ASSERT_TRUE(sp.Analyze(src, 0, 8000, 512));
    EXPECT_EQ(sp.GetDb()[64], LSpectrum::kFloorDb);
    // A range shorter than a frame sees only itself, not what follows.
    ASSERT_TRUE(sp.Analyze(src, 7000, 7900, 4096));
    EXPECT_EQ(sp.Peaks(5).size(), 0u);
    ASSERT_TRUE(sp.Analyze(src, 8000, 16000, 512));
    EXPECT_NEAR(sp.Peaks(1)[0].fHz, 1000.0, sp.BinHz(1));
    LSRCSilence latched;
    EXPECT_FALSE(sp.Analyze(latched, 0, 10, 512));
}

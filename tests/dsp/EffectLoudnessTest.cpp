// Loudness normalize: the result is measured by libebur128 directly and, where installed, by
// ffmpeg's own R128 meter, on tones, speech-like and music-like signals.
#include <ebur128.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>

#include "core/LFixed.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/LLoudnessMeter.h"
#include "dsp/effects/LEffectRunner.h"
#include "support/TestSupport.h"

using namespace efftest;

namespace {
constexpr double kFullScale = 524288.0;

struct Measured
{
    double fIntegrated = -HUGE_VAL;
    double fTruePeakDb = -HUGE_VAL;
};

// The reference: libebur128 over the samples, without the program's meter in between.
Measured Reference(const std::vector<int32_t>& v, int nChans, int nRate)
{
    ebur128_state* p = ebur128_init(nChans, nRate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK);
    std::vector<double> vIn(v.begin(), v.end());
    for (double& f : vIn)
        f /= kFullScale;
    ebur128_add_frames_double(p, vIn.data(), vIn.size() / nChans);
    Measured m;
    ebur128_loudness_global(p, &m.fIntegrated);
    double fPeak = 0.0;
    for (int c = 0; c < nChans; ++c) {
        double f = 0.0;
        ebur128_true_peak(p, c, &f);
        fPeak = std::max(fPeak, f);
    }
    m.fTruePeakDb = 20.0 * std::log10(fPeak);
    ebur128_destroy(&p);
    return m;
}

int32_t Level(double fDbfs)
{
    return static_cast<int32_t>(kFullScale * std::pow(10.0, fDbfs / 20.0));
}

// A sine of the given peak level in every channel.
std::vector<int32_t> Sine(int nFrames, int nChans, int nRate, double fHz, double fDbfs)
{
    std::vector<int32_t> v;
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v.push_back(static_cast<int32_t>(
                std::lround(Level(fDbfs) * std::sin(2.0 * std::numbers::pi * fHz * i / nRate))));
    return v;
}

// Speech-like: syllables of noise at changing levels, with pauses the gate leaves out.
std::vector<int32_t> SpeechLike(int nFrames, int nRate)
{
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    std::vector<int32_t> v(nFrames);
    const int nSyllable = nRate / 5;
    for (int i = 0; i < nFrames; ++i) {
        const int k = i / nSyllable;
        const double fLevel = k % 4 == 3 ? 0.0 : Level(-30.0 + 6.0 * (k % 3));
        const double fShape = std::sin(std::numbers::pi * (i % nSyllable) / nSyllable);
        v[i] = static_cast<int32_t>(fLevel * fShape * noise(rng));
    }
    return v;
}

// Music-like: a chord in both channels whose loudness swells and falls.
std::vector<int32_t> MusicLike(int nFrames, int nRate)
{
    std::vector<int32_t> v;
    for (int i = 0; i < nFrames; ++i) {
        const double t = static_cast<double>(i) / nRate;
        const double fSwell = 0.55 + 0.45 * std::sin(2.0 * std::numbers::pi * 0.3 * t);
        double f = 0.0;
        for (double fHz : {196.0, 247.0, 294.0, 392.0, 1568.0})
            f += std::sin(2.0 * std::numbers::pi * fHz * t) / 5.0;
        v.push_back(static_cast<int32_t>(Level(-14.0) * fSwell * f));
        v.push_back(static_cast<int32_t>(Level(-17.0) * fSwell * f));
    }
    return v;
}

// The meter over a whole source, as a process of its own.
class MeasureProcess : public LProgressDialog
{
public:
    MeasureProcess(LSoundSourceBase& s, LLoudness& l) : LProgressDialog("Measure"), src(s), result(l) {}
    int32_t Process() override { return LLoudnessMeter::Measure(*this, src, src.GetLength(), result); }

private:
    LSoundSourceBase& src;
    LLoudness& result;
};

class EffectLoudness : public EffectDocTest
{
protected:
    // The samples after the effect ran over the whole document.
    std::vector<int32_t> Normalize(const std::vector<int32_t>& vIn, uint8_t nChans, int32_t nRate, LEffectArgs args)
    {
        LCutListAudioPtr pDoc = MakeDoc(vIn, nChans, nRate);
        CancellingFactory fact(0);
        LEffectProcess proc(Effect(), pDoc.Get(), 0, pDoc->GetLength(), args);
        EXPECT_EQ(proc.Run(&fact), 0);
        EXPECT_EQ(fact.shown.aszLines[0], "Loudness Normalize");
        return ReadDoc(*pDoc);
    }
    static const LEffectInfo& Effect() { return *LEffectCatalog::ByCliName("loudness-normalize"); }
    static LEffectArgs Target(int32_t nLufs)
    {
        LEffectArgs args;
        args.mapValues["LoudnessTarget"] = nLufs;
        return args;
    }
};

// ffmpeg's reading of a 16-bit file of the samples: integrated loudness and true peak.
bool FfmpegMeasures(const std::vector<int32_t>& v, int nChans, int nRate, Measured& m)
{
    if (testsupport::RunCommand("command -v ffmpeg >/dev/null 2>&1") != 0)
        return false;
    testsupport::TempDir dir;
    std::vector<int32_t> v16;
    for (int32_t s : v)
        v16.push_back(LTo16(s));
    const std::string szWav = dir.File("out.wav");
    testsupport::WriteSimpleWav(szWav, nRate, nChans, 16, v16);
    std::string szOut;
    testsupport::RunCommand("ffmpeg -nostats -hide_banner -i " + szWav + " -af ebur128=peak=true -f null - 2>&1",
                            &szOut);
    const size_t nSummary = szOut.find("Summary:");
    const size_t nI = szOut.find("I:", nSummary);
    const size_t nPeak = szOut.find("Peak:", nSummary);
    if (nSummary == std::string::npos || nI == std::string::npos || nPeak == std::string::npos)
        return false;
    m.fIntegrated = std::atof(szOut.c_str() + nI + 2);
    m.fTruePeakDb = std::atof(szOut.c_str() + nPeak + 5);
    return true;
}
} // namespace

TEST_F(EffectLoudness, MeterReadsTheReferenceSines)
{
    // A 1 kHz sine at -23 dBFS in both channels of a stereo file measures -23 LUFS.
    for (double fDbfs : {-23.0, -33.0}) {
        LSoundSourcePtr pSrc(new LSRCMemory(Sine(20 * 48000, 2, 48000, 1000.0, fDbfs), 48000, 2));
        CancellingFactory fact(0);
        LLoudness loudness;
        MeasureProcess proc(*pSrc, loudness);
        ASSERT_EQ(proc.Run(&fact), 0);
        ASSERT_TRUE(loudness.bMeasured);
        EXPECT_NEAR(loudness.fIntegrated, fDbfs, 0.1);
        EXPECT_NEAR(loudness.fTruePeakDb, fDbfs, 0.1);
    }
}

TEST_F(EffectLoudness, ReachesTheTargetWithinATenthOfALoudnessUnit)
{
    struct Case
    {
        const char* szWhat;
        std::vector<int32_t> vIn;
        uint8_t nChans;
        int32_t nRate;
        int32_t nTarget; // 0: none given, the default -16 LUFS
    };
    const Case cases[] = {
        {"tone", Sine(5 * 48000, 2, 48000, 440.0, -30.0), 2, 48000, 0},
        {"speech", SpeechLike(8 * 16000, 16000), 1, 16000, -23},
        {"music", MusicLike(8 * 44100, 44100), 2, 44100, -18},
    };
    for (const Case& c : cases) {
        const std::vector<int32_t> vOut =
            Normalize(c.vIn, c.nChans, c.nRate, c.nTarget ? Target(c.nTarget) : LEffectArgs());
        const int32_t nTarget = c.nTarget ? c.nTarget : -16;
        ASSERT_EQ(vOut.size(), c.vIn.size()) << c.szWhat;
        const Measured m = Reference(vOut, c.nChans, c.nRate);
        EXPECT_NEAR(m.fIntegrated, nTarget, 0.1) << c.szWhat;
        EXPECT_LE(m.fTruePeakDb, -1.0 + 0.01) << c.szWhat;
        Measured ff;
        if (FfmpegMeasures(vOut, c.nChans, c.nRate, ff)) {
            EXPECT_NEAR(ff.fIntegrated, nTarget, 0.1) << c.szWhat << " as ffmpeg measures it";
            EXPECT_LE(ff.fTruePeakDb, -1.0 + 0.1) << c.szWhat << " as ffmpeg measures it";
        }
    }
}

TEST_F(EffectLoudness, TruePeakCeilingWinsOverTheTarget)
{
    // A quiet hum with loud clicks: reaching -16 LUFS would lift the clicks far above -1 dBTP.
    std::vector<int32_t> vIn = Sine(5 * 44100, 1, 44100, 200.0, -40.0);
    for (size_t i = 1000; i < vIn.size(); i += 11025)
        vIn[i] = Level(-6.0);
    LEffectArgs args = Target(-16);
    args.mapValues["LoudnessTruePeak"] = -3;
    const Measured m = Reference(Normalize(vIn, 1, 44100, args), 1, 44100);
    EXPECT_LE(m.fTruePeakDb, -3.0 + 0.01);
    EXPECT_GT(m.fTruePeakDb, -3.0 - 0.1);
    EXPECT_LT(m.fIntegrated, -16.0 - 1.0);
}

TEST_F(EffectLoudness, SilenceAndEmptyRangesAreLeftAlone)
{
    const std::vector<int32_t> vSilence(2 * 48000, 0);
    LCutListAudioPtr pDoc = MakeDoc(vSilence, 1, 48000);
    const std::string szBefore = DescribeCuts(*pDoc);
    for (int32_t sEnd : {pDoc->GetLength(), 0}) {
        CancellingFactory fact(0);
        LEffectProcess proc(Effect(), pDoc.Get(), 0, sEnd, Target(-23));
        EXPECT_EQ(proc.Run(&fact), 0);
        EXPECT_EQ(DescribeCuts(*pDoc), szBefore);
    }
}

TEST_F(EffectLoudness, CancelledWhileMeasuringLeavesTheDocument)
{
    LCutListAudioPtr pDoc = MakeDoc(Sine(10 * 48000, 1, 48000, 440.0, -30.0), 1, 48000);
    const std::string szBefore = DescribeCuts(*pDoc);
    CancellingFactory fact(3);
    LEffectProcess proc(Effect(), pDoc.Get(), 0, pDoc->GetLength(), Target(-23));
    EXPECT_EQ(proc.Run(&fact), 1);
    EXPECT_EQ(DescribeCuts(*pDoc), szBefore);
}

// The effect preview on the virtual device: what is heard is what the effect would write, new
// values are heard within a tenth of a second of the change (counted in the device's frames),
// and neither the document nor its undo ring ever changes.
#include <gtest/gtest.h>

#include <random>

#include "core/LEdFile.h"
#include "core/LMemorySound.h"
#include "core/LFixed.h"
#include "devices/DeviceTestSupport.h"
#include "devices/LEffectPreview.h"
#include "dsp/effects/LEffectRunner.h"
#include "support/DocSupport.h"

using namespace devtest;
using testsupport::DescribeCuts;
using testsupport::MakeDoc;
using testsupport::ReadDoc;

namespace {
constexpr int32_t kRate = 8000;

// Noise well inside 16-bit full scale, so that the player's limiter never acts.
std::vector<int32_t> Noise(int32_t nFrames, uint8_t nChans)
{
    std::mt19937 gen(5);
    std::uniform_int_distribution<int32_t> dist(-120000, 120000);
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int32_t& s : v)
        s = dist(gen);
    return v;
}

LEffectArgs Args(std::initializer_list<std::pair<const std::string, int32_t>> values)
{
    LEffectArgs a;
    a.mapValues = values;
    return a;
}

const LEffectInfo& Info(const char* szName)
{
    return *LEffectCatalog::ByCliName(szName);
}

class QuietFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<LQuietProgressHost>(); }
};

// What the effect writes into a copy of the document over [sStart, sEnd), in 16-bit units.
std::vector<int16_t> Applied(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, const char* szName,
                             const LEffectArgs& args)
{
    LCutListAudioPtr pCopy(new LCutListAudio(doc));
    QuietFactory quiet;
    LEffectProcess process(Info(szName), pCopy.Get(), sStart, sEnd, args);
    EXPECT_EQ(process.Run(&quiet), 0);
    const int32_t nOut = pCopy->GetLength() - (doc.GetLength() - (sEnd - sStart));
    std::vector<int32_t> v(static_cast<size_t>(nOut) * doc.GetChannels());
    LSoundSourcePtr pSrc = pCopy->OpenSource(sStart, sStart + nOut);
    pSrc->Read(v.data(), nOut);
    std::vector<int16_t> out;
    for (int32_t s : v)
        out.push_back(LTo16(s));
    return out;
}

// nFrames of a source from sFrom, as the device gets them.
std::vector<int16_t> Heard(LSoundSourcePtr pSource, int32_t sFrom, int32_t nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * pSource->GetChannels());
    pSource->SetPosition(sFrom);
    pSource->Read(v.data(), nFrames);
    std::vector<int16_t> out;
    for (int32_t s : v)
        out.push_back(LTo16(s));
    return out;
}

// The first index from nFrom on where vWanted begins in vHeard, or -1.
int64_t FindFrom(const std::vector<int16_t>& vHeard, const std::vector<int16_t>& vWanted, size_t nFrom, size_t nTo)
{
    for (size_t k = nFrom; k <= nTo && k + vWanted.size() <= vHeard.size(); ++k)
        if (std::equal(vWanted.begin(), vWanted.end(), vHeard.begin() + static_cast<std::ptrdiff_t>(k)))
            return static_cast<int64_t>(k);
    return -1;
}

struct EffectPreviewTest : ::testing::Test
{
    explicit EffectPreviewTest(double fSpeed = 20.0) : scope(fSpeed)
    {
        testsupport::UsePrivateTankFolder();
        preview.SetNotify(&log, 3);
        scope.driver.SetCapture(true);
    }
    ~EffectPreviewTest() override { preview.Stop(); }

    // A file with one edit behind it, so that its undo ring holds something to keep.
    void OpenFile(int32_t nFrames, uint8_t nChans)
    {
        file.GetDocument() = *MakeDoc(Noise(nFrames, nChans), nChans, kRate);
        file.StartModify("Amplify");
        file.GetDocument().EfAmplify(0, 100, 50);
        file.EndModify(0, 0);
        szCutsBefore = DescribeCuts(file.GetDocument());
        vSamplesBefore = ReadDoc(file.GetDocument());
    }
    void ExpectFileUntouched()
    {
        EXPECT_EQ(DescribeCuts(file.GetDocument()), szCutsBefore);
        EXPECT_EQ(ReadDoc(file.GetDocument()), vSamplesBefore);
        EXPECT_EQ(file.GetUndoLevels(), 1);
        EXPECT_EQ(file.GetUndoLabel(), "Amplify");
        EXPECT_FALSE(file.IsRedoAvailable());
    }
    bool WaitStopped() { return PumpUntil([this] { return log.nStopped > 0; }); }

    VirtualDriverScope scope;
    PlayerLog log;
    LEdFile file;
    std::string szCutsBefore;
    std::vector<int32_t> vSamplesBefore;
    LEffectPreview preview;
};

struct EffectPreviewAtRealTime : EffectPreviewTest
{
    EffectPreviewAtRealTime() : EffectPreviewTest(2.0) {}
};
} // namespace

TEST_F(EffectPreviewTest, HeardIsWhatTheEffectWritesSampleForSample)
{
    OpenFile(kRate * 4, 2);
    struct Case
    {
        const char* szName;
        LEffectArgs args;
    };
    // The clip is the one the effect reads when it runs later: the preview leaves it at its start.
    LEffectArgs mix = Args({{"PasteMixVolume", 50}, {"LongerSelection", 0}, {"FadeOutTime", 250}});
    mix.pClip = new LSRCMemory(Noise(kRate, 2), kRate, 2);
    const Case cases[] = {
        {"echo", Args({{"EchoTime", 120}, {"EchoGain", 60}})},
        {"dynamic-range-compressor", Args({{"CompressorThreshold", -30}, {"CompressorRatio", 4}, {"CompressorLimit", 3}})},
        {"constant-pitch-and-speed-change", Args({{"ConstPitchSpeed", 150}})}, // shorter
        {"simple-speed-and-pitch-change", Args({{"SpSpeedPitch", 70}})},    // longer
        {"amplify", Args({{"AmplifyGain", 150}})},             // edits the cuts
        {"normalize", Args({{"NormalizePeakLevel", 60}})},     // looks at the range first
        {"paste-mix", mix},
    };
    const int32_t sStart = 3000, sEnd = 3000 + kRate * 2;
    for (const Case& c : cases) {
        SCOPED_TRACE(Info(c.szName).szMenuText);
        scope.driver.SetCapture(true);
        log = PlayerLog();
        preview.SetRange(file.GetDocument(), sStart, sEnd, 5000);
        ASSERT_TRUE(preview.Start(Info(c.szName), c.args));
        ASSERT_TRUE(WaitStopped());
        const std::vector<int16_t> vWanted = Applied(file.GetDocument(), sStart, sEnd, c.szName, c.args);
        ASSERT_FALSE(vWanted.empty());
        EXPECT_TRUE(scope.driver.GetCaptured() == vWanted);
        EXPECT_EQ(log.nStopped, 1);
        ExpectFileUntouched();
    }
}

TEST_F(EffectPreviewTest, ALongSelectionPlaysItsFirstSecondsAndNoSelectionTheSecondsFromTheCursor)
{
    OpenFile(kRate * 6, 1);
    const LEffectArgs args = Args({{"LowCutFreq", 400}});
    preview.SetRange(file.GetDocument(), 1000, kRate * 6, 2000);
    EXPECT_EQ(preview.GetRange().GetLength(), kRate * 2);
    ASSERT_TRUE(preview.Start(Info("high-pass-filter"), args));
    ASSERT_TRUE(WaitStopped());
    EXPECT_TRUE(scope.driver.GetCaptured() ==
                Applied(file.GetDocument(), 1000, 1000 + kRate * 2, "high-pass-filter", args));

    preview.SetRange(file.GetDocument(), kRate * 5, kRate * 5, 2000);
    EXPECT_EQ(preview.GetRange().GetLength(), kRate); // up to the end of the file
    preview.SetRange(file.GetDocument(), kRate * 6, kRate * 6, 2000);
    EXPECT_FALSE(preview.Start(Info("high-pass-filter"), args)); // nothing to hear
    ExpectFileUntouched();
}

// The test holds the device still around the change (a pause at a known place), so that what is
// measured is the preview's doing and not how long this thread waited for a processor.
TEST_F(EffectPreviewAtRealTime, ANewValueIsHeardWithinATenthOfASecond)
{
    OpenFile(kRate * 6, 1);
    preview.SetRange(file.GetDocument(), 0, kRate * 5, 5000);
    const LEffectInfo& echo = Info("echo");
    ASSERT_TRUE(preview.Start(echo, Args({{"EchoTime", 200}, {"EchoGain", 20}})));
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.stats.nFramesPlayed.load() >= kRate; }));
    // Paused at a known place: buffers that came back before the pause move the place no more.
    preview.GetPlayer().Pause();
    preview.GetPlayer().Seek(kRate);
    const int32_t sHeard = kRate;
    const int64_t nPlayedAtChange = scope.driver.stats.nFramesPlayed.load();

    const LEffectArgs newArgs = Args({{"EchoTime", 200}, {"EchoGain", 90}});
    ASSERT_TRUE(preview.Update(newArgs));
    EXPECT_EQ(preview.GetPosition(), sHeard); // the same place
    preview.GetPlayer().Play();
    ASSERT_TRUE(WaitStopped());

    const std::vector<int16_t> vWanted = Heard(preview.OpenOutput(echo, newArgs), sHeard, 2000);
    const std::vector<int16_t> vHeard = scope.driver.GetCaptured();
    const int64_t k = FindFrom(vHeard, vWanted, static_cast<size_t>(nPlayedAtChange), vHeard.size());
    ASSERT_GE(k, 0) << "the new values were never heard";
    EXPECT_LE(k - nPlayedAtChange, kRate / 10) << "frames of the old values heard after the change";
    EXPECT_EQ(log.nStopped, 1);                     // the restart is no stop
    EXPECT_EQ(scope.driver.stats.nOpens.load(), 1); // nor a new device
    ExpectFileUntouched();
}

// While the device runs: whatever was queued with the old values is dropped, so the first frame
// played after the change has been taken is already the new values.
TEST_F(EffectPreviewAtRealTime, NothingQueuedWithTheOldValuesIsPlayedAfterTheChange)
{
    OpenFile(kRate * 6, 1);
    preview.SetRange(file.GetDocument(), 0, kRate * 5, 5000);
    const LEffectInfo& lowCut = Info("high-pass-filter");
    ASSERT_TRUE(preview.Start(lowCut, Args({{"LowCutFreq", 100}})));
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.stats.nFramesPlayed.load() >= kRate; }));
    const LEffectArgs newArgs = Args({{"LowCutFreq", 2000}});
    const int64_t nBefore = scope.driver.stats.nFramesPlayed.load();
    ASSERT_TRUE(preview.Update(newArgs));
    const int64_t nAfter = scope.driver.stats.nFramesPlayed.load();
    const int32_t sPlace = preview.GetPosition();
    EXPECT_LE(sPlace, nAfter); // never ahead of what was heard
    ASSERT_TRUE(WaitStopped());

    const std::vector<int16_t> vWanted = Heard(preview.OpenOutput(lowCut, newArgs), sPlace, 2000);
    const std::vector<int16_t> vHeard = scope.driver.GetCaptured();
    const int64_t k = FindFrom(vHeard, vWanted, static_cast<size_t>(nBefore), vHeard.size());
    ASSERT_GE(k, 0) << "the new values were never heard";
    EXPECT_LE(k, nAfter);
}

TEST_F(EffectPreviewAtRealTime, ALengthChangeKeepsTheSameFractionOfTheWay)
{
    OpenFile(kRate * 4, 1);
    preview.SetRange(file.GetDocument(), 0, kRate * 4, 5000);
    const LEffectInfo& speed = Info("constant-pitch-and-speed-change");
    ASSERT_TRUE(preview.Start(speed, Args({{"ConstPitchSpeed", 100}})));
    ASSERT_TRUE(PumpUntil([this] { return scope.driver.stats.nFramesPlayed.load() >= kRate; }));
    preview.GetPlayer().Pause();
    preview.GetPlayer().Seek(kRate);
    ASSERT_TRUE(preview.Update(Args({{"ConstPitchSpeed", 50}}))); // twice as long
    EXPECT_EQ(preview.GetPosition(), 2 * kRate);
    EXPECT_EQ(preview.GetPlayer().GetSource()->GetLength(), kRate * 8);
    preview.GetPlayer().Play();
    ASSERT_TRUE(WaitStopped());
    EXPECT_EQ(log.nStopped, 1);
}

TEST_F(EffectPreviewTest, StopEndsItAndAnOutputOfAnotherRateRestartsThePlayerUnseen)
{
    OpenFile(kRate * 4, 1);
    preview.SetRange(file.GetDocument(), 0, kRate * 4, 5000);
    const LEffectInfo& rate = Info("convert-sample-rate");
    ASSERT_TRUE(preview.Start(rate, Args({{"ConvertSampleRate", 11025}})));
    EXPECT_EQ(preview.GetPlayer().GetSource()->GetSampleRate(), 11025);
    ASSERT_TRUE(preview.Update(Args({{"ConvertSampleRate", 16000}})));
    EXPECT_TRUE(preview.IsPlaying());
    EXPECT_EQ(preview.GetPlayer().GetSource()->GetSampleRate(), 16000);
    EXPECT_EQ(scope.driver.stats.nOpens.load(), 2);
    EXPECT_EQ(log.nStopped, 0);

    preview.Stop();
    EXPECT_FALSE(preview.IsPlaying());
    EXPECT_FALSE(scope.driver.stats.bOutOpen.load());
    EXPECT_EQ(log.nStopped, 1);
    // New values after the stop start nothing.
    EXPECT_TRUE(preview.Update(Args({{"ConvertSampleRate", 22050}})));
    EXPECT_FALSE(preview.IsPlaying());
    ExpectFileUntouched();
}

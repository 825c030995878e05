// The effects as one chain of stages over a stream give the samples the document path gives,
// for every effect that streams and for scripts of several commands; the commands that need the
// document are left to it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/LMemorySound.h"
#include "core/LPRSourceToSink.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LEffectStream.h"
#include "work/LCutListAudioLoadSource.h"

using namespace efftest;

namespace {

struct Input
{
    std::vector<int32_t> vSamples;
    int32_t nRate;
    uint8_t nChans;
    int32_t nMaxAmplitude = 0x7FFF0;

    LSoundSourcePtr Open() const { return LSoundSourcePtr(new LSRCMemory(vSamples, nRate, nChans, nMaxAmplitude)); }
};

// Noise near full scale with a DC offset and a quiet passage: echo and amplify run past full
// scale (so the limiters work), the gates and the compressor meet both levels.
Input Loud(uint8_t nChans, int32_t nRate = 8000, int32_t nFrames = 30000)
{
    Input in{Noise(static_cast<size_t>(nFrames) * nChans, 300000), nRate, nChans};
    for (size_t i = 0; i < in.vSamples.size(); ++i) {
        in.vSamples[i] += 20000;
        if (i > in.vSamples.size() / 3 && i < in.vSamples.size() / 2)
            in.vSamples[i] /= 40;
    }
    return in;
}

LEffectStep Step(const char* szName, std::map<std::string, int32_t> mapValues = {})
{
    LEffectStep step{LEffectCatalog::ByCliName(szName), {}};
    step.args.mapValues = std::move(mapValues);
    return step;
}

LEffectStep CurveStep(const char* szName, std::vector<std::pair<int32_t, int32_t>> vPoints)
{
    LEffectStep step = Step(szName);
    LPointList list;
    for (auto [x, y] : vPoints)
        list.Add(x, y);
    step.args.curve = list;
    return step;
}

// What a save of the result would be handed: the sound pumped into a sink of its own shape.
struct Output
{
    int32_t nResult = -1;
    int32_t nRate = 0;
    uint8_t nChans = 0;
    std::vector<int32_t> vSamples;

    void Pump(LProgressDialog& dlg, LSoundSourceBase* pSource)
    {
        nRate = pSource->GetSampleRate();
        nChans = pSource->GetChannels();
        LCountedPtr<LSNKMemory> pSink(new LSNKMemory(nRate, nChans));
        nResult = LPRSourceToSink::Pump(dlg, "Saving...", pSource, pSink.Get());
        vSamples = pSink->GetSamples();
    }
};

class DocumentPath : public LProgressDialog
{
public:
    DocumentPath(const Input& in, const std::vector<LEffectStep>& vSteps) : LProgressDialog("doc"), in(in), vSteps(vSteps) {}
    int32_t Process() override
    {
        LCutListAudioPtr pDoc(new LCutListAudio(in.nRate, in.nChans));
        LCutListAudioLoadSource load("Loading", pDoc.Get(), in.Open().Get());
        if (load.RunInside(*this) != ResultDone)
            return ResultError;
        for (const LEffectStep& step : vSteps)
            if (LEffectRunner::Apply(*this, *step.pInfo, pDoc.Get(), 0, pDoc->GetLength(), step.args) != ResultDone)
                return ResultError;
        out.Pump(*this, pDoc->OpenSource().Get());
        return out.nResult;
    }
    const Input& in;
    const std::vector<LEffectStep>& vSteps;
    Output out;
};

class StreamPath : public LProgressDialog
{
public:
    StreamPath(const Input& in, const std::vector<LEffectStep>& vSteps) : LProgressDialog("stream"), in(in), vSteps(vSteps) {}
    int32_t Process() override
    {
        LSoundSourcePtr pChain;
        const int32_t nResult = LEffectStream::Open(*this, [this]() { ++nOpens; return in.Open(); }, vSteps, pChain);
        if (nResult != ResultDone)
            return nResult;
        out.Pump(*this, pChain.Get());
        return out.nResult;
    }
    const Input& in;
    const std::vector<LEffectStep>& vSteps;
    Output out;
    int nOpens = 0;
};

struct Case
{
    const char* szName;
    Input in;
    std::vector<LEffectStep> vSteps;
    int nReads; // times the chain reads the input
};

class EffectStream : public EffectDocTest
{
};

} // namespace

TEST_F(EffectStream, EveryStreamingEffectAndScriptGivesTheDocumentsSamples)
{
    const Input stereo = Loud(2);
    const Input mono = Loud(1, 11025);
    const std::vector<Case> vCases = {
        {"high-pass", stereo, {Step("high-pass-filter", {{"LowCutFreq", 300}})}, 1},
        {"echo past full scale", stereo, {Step("echo", {{"EchoGain", 90}, {"EchoTime", 20}})}, 1},
        {"reverb", stereo, {Step("reverb", {{"ReverbLevel", 80}, {"ReverbTime", 150}})}, 1},
        {"fade-in", stereo, {Step("fade-in")}, 1},
        {"fade-out", mono, {Step("fade-out")}, 1},
        {"fade-out-and-trim", stereo, {Step("fade-out-and-trim")}, 1},
        {"equalizer", stereo, {CurveStep("equalizer", {{100, 6}, {1000, -6}, {3000, 9}})}, 1},
        {"envelope", mono, {CurveStep("envelope", {{0, 0}, {500, 150}, {1000, 20}})}, 1},
        {"noise reduction", stereo, {Step("noise-reduction", {{"NoiseGateLevel", -30}})}, 1},
        {"compressor", stereo, {Step("dynamic-range-compressor", {{"CompressorThreshold", -20}, {"CompressorRatio", 3}})}, 1},
        {"simple speed", stereo, {Step("simple-speed-and-pitch-change", {{"SpSpeedPitch", 130}})}, 1},
        {"constant pitch", mono, {Step("constant-pitch-and-speed-change", {{"ConstPitchSpeed", 80}})}, 1},
        {"constant speed", stereo, {Step("constant-speed-and-pitch-change", {{"ConstSpeedPitch", 120}})}, 1},
        {"amplify past full scale", stereo, {Step("amplify", {{"AmplifyGain", 300}})}, 1},
        {"normalize", stereo, {Step("normalize", {{"NormalizePeakLevel", 90}})}, 2},
        {"dc offset", stereo, {Step("dcoffset-correction")}, 2},
        {"automatic gain control", stereo, {Step("automatic-gain-control")}, 1},
        {"reverse", stereo, {Step("reverse")}, 1},
        {"a source loading limits", Input{stereo.vSamples, 8000, 2, 0x200000}, {Step("amplify", {{"AmplifyGain", 50}})}, 1},
        {"mono", stereo, {Step("mono")}, 1},
        {"stereo", mono, {Step("stereo")}, 1},
        {"rate", stereo, {Step("convert-sample-rate", {{"ConvertSampleRate", 22050}})}, 1},
        {"normalize, high-pass, fade-in",
         stereo,
         {Step("normalize", {{"NormalizePeakLevel", 100}}), Step("high-pass-filter", {{"LowCutFreq", 200}}), Step("fade-in")},
         2},
        {"amplify twice, reverse, dc offset, echo",
         stereo,
         {Step("amplify", {{"AmplifyGain", 170}}), Step("amplify", {{"AmplifyGain", 130}}), Step("reverse"),
          Step("dcoffset-correction"), Step("echo", {{"EchoGain", 70}, {"EchoTime", 50}})},
         2},
        {"echo, normalize, amplify, compressor",
         stereo,
         {Step("echo", {{"EchoGain", 80}, {"EchoTime", 30}}), Step("normalize", {{"NormalizePeakLevel", 95}}),
          Step("amplify", {{"AmplifyGain", 120}}), Step("dynamic-range-compressor", {{"CompressorThreshold", -10}})},
         2},
        {"amplify, a conversion to the shape it has, amplify",
         mono,
         {Step("amplify", {{"AmplifyGain", 151}}), Step("mono"), Step("amplify", {{"AmplifyGain", 77}})},
         1},
        {"gain control, normalize, rate, mono, reverb",
         stereo,
         {Step("automatic-gain-control"), Step("normalize", {{"NormalizePeakLevel", 80}}),
          Step("convert-sample-rate", {{"ConvertSampleRate", 11025}}), Step("mono"),
          Step("reverb", {{"ReverbLevel", 60}, {"ReverbTime", 90}})},
         1},
    };
    for (const Case& c : vCases) {
        SCOPED_TRACE(c.szName);
        ASSERT_TRUE(LEffectStream::CanStream(c.vSteps, *c.in.Open(), true));
        DocumentPath doc(c.in, c.vSteps);
        StreamPath stream(c.in, c.vSteps);
        CancellingFactory f1(0), f2(0);
        ASSERT_EQ(doc.Run(&f1), 0);
        ASSERT_EQ(stream.Run(&f2), 0);
        EXPECT_EQ(stream.out.nRate, doc.out.nRate);
        EXPECT_EQ(stream.out.nChans, doc.out.nChans);
        ASSERT_EQ(stream.out.vSamples.size(), doc.out.vSamples.size());
        EXPECT_TRUE(stream.out.vSamples == doc.out.vSamples);
        // The measuring steps read the input once more each; everything else reads it once.
        EXPECT_EQ(stream.nOpens, c.nReads);
    }
}

TEST_F(EffectStream, CommandsThatNeedTheDocumentOrCannotSeekBackwardsAreLeftToIt)
{
    const Input stereo = Loud(2);
    const Input louder{stereo.vSamples, 8000, 2, 0x200000};
    const std::vector<std::pair<const char*, std::vector<LEffectStep>>> vCases = {
        {"repeat loop", {Step("high-pass-filter"), Step("repeat-loop")}},
        {"auto-trim", {Step("auto-trim")}},
        {"paste-mix", {Step("paste-mix")}},
        {"insert silence", {Step("insert-silence")}},
        {"reverse after a stage that keeps state", {Step("echo"), Step("reverse")}},
        {"reverse after a rate change", {Step("convert-sample-rate", {{"ConvertSampleRate", 22050}}), Step("reverse")}},
    };
    for (const auto& [szName, vSteps] : vCases) {
        SCOPED_TRACE(szName);
        EXPECT_FALSE(LEffectStream::CanStream(vSteps, *stereo.Open(), true));
    }
    // Loading puts a limiter over a source that may pass full scale, and a limiter read
    // backwards is not the limiter read forwards.
    EXPECT_FALSE(LEffectStream::CanStream({Step("reverse")}, *louder.Open(), true));
    // A decoder that keeps state from frame to frame cannot be read backwards by seeking.
    EXPECT_FALSE(LEffectStream::CanStream({Step("reverse")}, *stereo.Open(), false));
    EXPECT_TRUE(LEffectStream::CanStream({Step("echo")}, *stereo.Open(), false));
    EXPECT_TRUE(
        LEffectStream::CanStream({Step("amplify"), Step("dcoffset-correction"), Step("reverse")}, *stereo.Open(), true));
}

TEST_F(EffectStream, CancelDuringAMeasuringPassAndAnUnreadableInputStopTheChain)
{
    const Input stereo = Loud(2, 8000, 200000);
    const std::vector<LEffectStep> vSteps = {Step("normalize"), Step("echo")};
    StreamPath cancelled(stereo, vSteps);
    CancellingFactory fact(3);
    EXPECT_EQ(cancelled.Run(&fact), LProgressDialog::ResultCancelled);
    EXPECT_TRUE(cancelled.out.vSamples.empty());

    class Broken : public LProgressDialog
    {
    public:
        Broken() : LProgressDialog("broken") {}
        int32_t Process() override
        {
            LSoundSourcePtr pChain;
            return LEffectStream::Open(*this, []() { return LSoundSourcePtr(new LSRCSilence); },
                                       {Step("echo")}, pChain);
        }
    } broken;
    CancellingFactory fact2(0);
    EXPECT_EQ(broken.Run(&fact2), LProgressDialog::ResultError);
}

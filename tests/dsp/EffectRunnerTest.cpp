#include <gtest/gtest.h>

#include "core/LMemorySound.h"
#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LEfInsert.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LSRCEcho.h"
#include "dsp/effects/LSRCReverb.h"

using namespace efftest;

namespace {
class EffectRunner : public EffectDocTest
{
};

const LEffectInfo& Info(const char* szEffect)
{
    return *LEffectCatalog::ByCliName(szEffect);
}

int32_t Apply(const char* szEffect, LCutListAudio* pDoc, int32_t s, int32_t e, LEffectArgs args = {}, int nCancelAt = 0)
{
    CancellingFactory fact(nCancelAt);
    LEffectProcess proc(Info(szEffect), pDoc, s, e, args);
    return proc.Run(&fact);
}

std::vector<int32_t> Slice(const std::vector<int32_t>& v, size_t nFrom, size_t nTo)
{
    return std::vector<int32_t>(v.begin() + nFrom, v.begin() + nTo);
}
} // namespace

TEST_F(EffectRunner, EchoReplacesOnlyTheRangeBitForBit)
{
    const int n = 30000;
    auto vIn = Noise(2 * n, 60000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 2, 8000);
    LEffectArgs args;
    args.mapValues = {{"EchoTime", 100}, {"EchoGain", 60}};
    ASSERT_EQ(Apply("echo", pDoc.Get(), 5000, 25000, args), 0);
    auto vOut = ReadDoc(*pDoc);
    ASSERT_EQ(vOut.size(), vIn.size());
    LSoundSourcePtr pRange(new LSRCMemory(Slice(vIn, 2 * 5000, 2 * 25000), 8000, 2));
    LSRCEcho echo(pRange.Get(), 60, 100);
    EXPECT_EQ(Slice(vOut, 2 * 5000, 2 * 25000), ReadAll(echo, 20000));
    EXPECT_EQ(Slice(vOut, 0, 2 * 5000), Slice(vIn, 0, 2 * 5000));
    EXPECT_EQ(Slice(vOut, 2 * 25000, 2 * n), Slice(vIn, 2 * 25000, 2 * n));
}

TEST_F(EffectRunner, CancelledOrRefusedEffectLeavesTheDocumentAsItWas)
{
    auto vIn = Noise(40000, 60000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    const std::string szBefore = DescribeCuts(*pDoc);
    for (const char* k : {"echo", "reverb", "high-pass-filter", "reverse",
                          "fade-in", "fade-out-and-trim", "normalize",
                          "dcoffset-correction", "convert-sample-rate", "stereo"}) {
        EXPECT_EQ(Apply(k, pDoc.Get(), 100, 39000, {}, 2), 1) << Info(k).szMenuText;
        EXPECT_EQ(DescribeCuts(*pDoc), szBefore) << Info(k).szMenuText;
        EXPECT_EQ(pDoc->GetSampleRate(), 8000);
        EXPECT_EQ(pDoc->GetChannels(), 1);
    }
    EXPECT_EQ(Apply("echo", pDoc.Get(), 3000, 2000), 0);
    EXPECT_EQ(DescribeCuts(*pDoc), szBefore);
    EXPECT_EQ(ReadDoc(*pDoc), vIn);
}

TEST_F(EffectRunner, EmptyRangeIsAcceptedAndKeepsTheAudio)
{
    auto vIn = Noise(1000, 60000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    EXPECT_EQ(Apply("reverb", pDoc.Get(), 500, 500), 0);
    EXPECT_EQ(ReadDoc(*pDoc), vIn);
}

TEST_F(EffectRunner, ProgressShowsTheCaptionAndPleaseWait)
{
    LCutListAudioPtr pDoc = MakeDoc(Noise(1000, 1000), 1, 8000);
    CancellingFactory fact(0);
    LEffectProcess proc(Info("reverse"), pDoc.Get(), 0, 1000, {});
    EXPECT_EQ(proc.GetTitle(), "Reverse");
    ASSERT_EQ(proc.Run(&fact), 0);
    EXPECT_EQ(fact.shown.aszLines[0], "Reversing Sound");
    EXPECT_EQ(fact.shown.aszLines[1], "Please wait...");
}

TEST_F(EffectRunner, FadeOutAndTrimEndsTheDocumentAtTheSelection)
{
    std::vector<int32_t> vIn(10000, 300000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    ASSERT_EQ(Apply("fade-out-and-trim", pDoc.Get(), 4000, 6000), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 6000u);
    EXPECT_EQ(v[3999], 300000);
    EXPECT_EQ(v[4000], 300000);
    EXPECT_NEAR(v[5000], 150000, 2);
    EXPECT_LT(v[5999], 200);
}

TEST_F(EffectRunner, ConversionChangesFormatAndKeepsDuration)
{
    auto vIn = testsupport::Sine16(8000, 2, 8000, 440.0);
    for (auto& s : vIn)
        s *= 16;
    for (size_t i = 1; i < vIn.size(); i += 2)
        vIn[i] = 4000 * 16 - vIn[i] / 2; // a right channel unlike the left: mono holds both
    LCutListAudioPtr pDoc = MakeDoc(vIn, 2, 8000);
    ASSERT_EQ(Apply("mono", pDoc.Get(), 0, 0), 0);
    EXPECT_EQ(pDoc->GetChannels(), 1);
    auto vMono = ReadDoc(*pDoc);
    ASSERT_EQ(vMono.size(), 8000u);
    EXPECT_EQ(vMono[123], (vIn[246] + vIn[247]) / 2);
    EXPECT_EQ(vMono[7777], (vIn[2 * 7777] + vIn[2 * 7777 + 1]) / 2);
    LEffectArgs args;
    args.mapValues = {{"ConvertSampleRate", 16000}};
    ASSERT_EQ(Apply("convert-sample-rate", pDoc.Get(), 0, 0, args), 0);
    EXPECT_EQ(pDoc->GetSampleRate(), 16000);
    EXPECT_NEAR(pDoc->GetLength(), 16000, 64);
}

TEST_F(EffectRunner, InsertConformsTheSourceToTheDocument)
{
    LCutListAudioPtr pDoc = MakeDoc(std::vector<int32_t>(2 * 1000, 7), 2, 8000);
    LSoundSourcePtr pMono(new LSRCMemory(std::vector<int32_t>(500, 1000), 8000, 1));
    BodyDialog dlg;
    ASSERT_EQ(LEfInsert::Run(dlg, "Inserting", *pDoc, 400, pMono.Get()), 0);
    auto v = ReadDoc(*pDoc);
    ASSERT_EQ(v.size(), 2u * 1500);
    EXPECT_EQ(v[2 * 399], 7);
    EXPECT_EQ(v[2 * 400], 1000);
    EXPECT_EQ(v[2 * 400 + 1], 1000);
    EXPECT_EQ(v[2 * 900], 7);
}

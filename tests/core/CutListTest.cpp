#include "DocumentTestSupport.h"

using namespace doctest;

namespace {
std::vector<int32_t> Slice(const std::vector<int32_t>& v, int nFrom, int nTo)
{
    return std::vector<int32_t>(v.begin() + nFrom, v.begin() + nTo);
}
} // namespace

class CutList : public DocumentTest
{
};

TEST_F(CutList, CopyPadsARangeOutsideTheAudioWithSilence)
{
    auto vIn = Ramp(1000);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1);
    LCutListAudio clip;
    pDoc->EfCopy(-100, 50, clip);
    ASSERT_EQ(clip.GetLength(), 150);
    std::vector<int32_t> vWant(100, 0);
    for (int i = 0; i < 50; ++i)
        vWant.push_back(vIn[i]);
    EXPECT_EQ(ReadDoc(clip), vWant);

    pDoc->EfCopy(990, 1010, clip);
    vWant = Slice(vIn, 990, 1000);
    vWant.resize(20, 0);
    EXPECT_EQ(ReadDoc(clip), vWant);
}

TEST_F(CutList, DeleteInsideOneCutSplitsItAndTakesAReference)
{
    auto vIn = Ramp(2000); // stereo, 1000 frames
    LCutListAudioPtr pDoc = MakeDoc(vIn, 2);
    const uint16_t nRef = pDoc->GetCuts().First()->nRef;
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(nRef), 1);
    pDoc->EfDelete(200, 300);
    ASSERT_EQ(pDoc->GetCutCount(), 2u);
    EXPECT_EQ(DescribeCuts(*pDoc), "0/0/200/16777216 0/300/700/16777216");
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(nRef), 2);

    auto vWant = Slice(vIn, 0, 400);
    auto vTail = Slice(vIn, 600, 2000);
    vWant.insert(vWant.end(), vTail.begin(), vTail.end());
    EXPECT_EQ(ReadDoc(*pDoc), vWant);

    pDoc->EfDelete(0, 5000);
    EXPECT_EQ(pDoc->GetLength(), 0);
    EXPECT_EQ(pDoc->GetCutCount(), 0u);
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(nRef), 0);
    EXPECT_EQ(CountSegmentFiles(), 0) << "the last release deletes both files";
}

TEST_F(CutList, AmplifyDividesBeforeMultiplyingAndKeepsSaturatedGains)
{
    LCutListAudioPtr pDoc = MakeDoc({0x7FFF0, -0x7FFF0, 12345, -1}, 1);
    pDoc->EfAmplifyAll(200);
    EXPECT_EQ(pDoc->GetCuts().First()->nGain, 0x1FFFFE0) << "16777216 / 100 = 167772, times 200";
    EXPECT_EQ(ReadDoc(*pDoc), (std::vector<int32_t>{LMulGain824(0x7FFF0, 0x1FFFFE0), LMulGain824(-0x7FFF0, 0x1FFFFE0),
                                                    LMulGain824(12345, 0x1FFFFE0), LMulGain824(-1, 0x1FFFFE0)}));
    EXPECT_EQ(LMulGain824(0x10000, 0x1FFFFE0), 0x1FFFF) << "the low halves' product is left out";

    for (int i = 0; i < 3; ++i)
        pDoc->EfAmplifyAll(1000); // past the ceiling
    EXPECT_EQ(pDoc->GetCuts().First()->nGain, INT32_MAX);
    pDoc->EfAmplifyAll(50);
    EXPECT_EQ(pDoc->GetCuts().First()->nGain, INT32_MAX) << "attenuation leaves a saturated gain alone";
    pDoc->EfAmplifyAll(-50);
    EXPECT_EQ(pDoc->GetCuts().First()->nGain, INT32_MAX);

    LCutListAudioPtr pQuiet = MakeDoc(Ramp(10), 1);
    pQuiet->EfAmplify(2, 5, 0);
    EXPECT_EQ(pQuiet->GetLength(), 10) << "percent 0 silences without removing";
    EXPECT_EQ(ReadDoc(*pQuiet), (std::vector<int32_t>{1, 2, 0, 0, 0, 6, 7, 8, 9, 10}));
    pQuiet->EfAmplify(5, 2, 200);
    pQuiet->EfAmplify(0, 10, 100);
    EXPECT_EQ(pQuiet->GetCutCount(), 3u) << "a reversed range or 100 percent changes nothing";

    // A range reaching outside the audio is cut out padded and put back padded.
    pQuiet->EfAmplify(8, 12, 50);
    EXPECT_EQ(pQuiet->GetLength(), 12);
}

TEST_F(CutList, SilencePadsGapsAndNegativePositions)
{
    LCutListAudioPtr pDoc = MakeDoc(Ramp(1000), 1);
    pDoc->InsertSilence(1500, 20);
    ASSERT_EQ(pDoc->GetCutCount(), 2u);
    LAudioCut last;
    pDoc->GetCuts().ForEach([&](const LAudioCut& c) { last = c; });
    EXPECT_EQ(last.sLength, 520);
    EXPECT_TRUE(last.IsSilent());

    LCutListAudioPtr pSmall = MakeDoc({1, 2, 3}, 1);
    pSmall->InsertSilence(-5, 4);
    EXPECT_EQ(pSmall->GetLength(), 3) << "silence wholly before 0 is dropped";
    pSmall->InsertSilence(-2, 4);
    EXPECT_EQ(ReadDoc(*pSmall), (std::vector<int32_t>{0, 0, 1, 2, 3}));

    LCutListAudioPtr pClip = MakeDoc({7, 8}, 1);
    pSmall->Insert(-3, *pClip);
    EXPECT_EQ(ReadDoc(*pSmall), (std::vector<int32_t>{7, 8, 0, 0, 0, 0, 0, 1, 2, 3}))
        << "at a negative position the insert comes first, then the gap";
    pSmall->Insert(12, *pClip);
    EXPECT_EQ(ReadDoc(*pSmall), (std::vector<int32_t>{7, 8, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 7, 8}));
    pSmall->Insert(1, *pSmall);
    EXPECT_EQ(pSmall->GetLength(), 28) << "a document inserted into itself";

    LSoundSourcePtr pRange = pClip->OpenSource(-2, 4);
    EXPECT_EQ(pRange->GetMaxAmplitude(), 0x200000) << "gains may lift a document past 16-bit full scale";
    std::vector<int32_t> v(6, -1);
    pRange->Read(v.data(), 6);
    EXPECT_EQ(v, (std::vector<int32_t>{0, 0, 7, 8, 0, 0}));
    EXPECT_EQ(pClip->OpenSource(3, 2)->GetLength(), 0);

    pClip->Repeat(0, 2, 3);
    EXPECT_EQ(ReadDoc(*pClip), (std::vector<int32_t>{7, 8, 7, 8, 7, 8, 7, 8}));
    pClip->CropStart(6);
    pClip->CropEnd(1);
    EXPECT_EQ(ReadDoc(*pClip), (std::vector<int32_t>{7}));
}

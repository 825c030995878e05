#include "DocumentTestSupport.h"

#include "core/LCutListAudioSource.h"

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
    EXPECT_EQ(ReadAll(clip), vWant);

    pDoc->EfCopy(990, 1010, clip);
    vWant = Slice(vIn, 990, 1000);
    vWant.resize(20, 0);
    EXPECT_EQ(ReadAll(clip), vWant);
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
    EXPECT_EQ(ReadAll(*pDoc), vWant);

    pDoc->EfDelete(0, 5000);
    EXPECT_EQ(pDoc->GetLength(), 0);
    EXPECT_EQ(pDoc->GetCutCount(), 0u);
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(nRef), 0);
    EXPECT_EQ(CountSegmentFiles(), 0) << "the last release deletes both files";
}

TEST_F(CutList, SourceReadsZerosBeforeZeroAndPastTheEnd)
{
    auto vIn = Ramp(100, 5);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1);
    LSoundSourcePtr pSrc = pDoc->OpenSource();
    EXPECT_EQ(pSrc->GetMaxAmplitude(), 0x200000);
    pSrc->SetPosition(-10);
    std::vector<int32_t> v(130, -1);
    pSrc->Read(v.data(), 130);
    std::vector<int32_t> vWant(10, 0);
    vWant.insert(vWant.end(), vIn.begin(), vIn.end());
    vWant.resize(130, 0);
    EXPECT_EQ(v, vWant);
    EXPECT_EQ(pSrc->GetPosition(), 120);

    pSrc->SetPosition(5000);
    std::fill(v.begin(), v.end(), -1);
    pSrc->Read(v.data(), 3);
    EXPECT_EQ(Slice(v, 0, 3), std::vector<int32_t>(3, 0));
}

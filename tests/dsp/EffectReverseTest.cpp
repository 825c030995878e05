#include <gtest/gtest.h>

#include "dsp/EffectDocSupport.h"
#include "dsp/EffectTestUtil.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LSRCReverse.h"

using namespace efftest;

namespace {
std::vector<int32_t> ReversedFrames(const std::vector<int32_t>& v, size_t nC)
{
    std::vector<int32_t> r(v.size());
    const size_t n = v.size() / nC;
    for (size_t f = 0; f < n; ++f)
        for (size_t c = 0; c < nC; ++c)
            r[f * nC + c] = v[(n - 1 - f) * nC + c];
    return r;
}
class EffectReverse : public EffectDocTest
{
};
} // namespace

TEST_F(EffectReverse, SourceReversesFramesAcrossChunksAndSeeks)
{
    const int32_t n = 2 * LSRCReverse::kChunkFrames + 123;
    auto vIn = Noise(2 * static_cast<size_t>(n), 0x7FFF0);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 44100, 2));
    LSRCReverse rev(pSrc.Get());
    EXPECT_EQ(rev.GetLength(), n);
    EXPECT_EQ(ReadAll(rev, n), ReversedFrames(vIn, 2));
    rev.SetPosition(n - 2);
    std::vector<int32_t> v(8, -1);
    rev.Read(v.data(), 4); // the last two frames, then silence past the end
    EXPECT_EQ(v, (std::vector<int32_t>{vIn[2], vIn[3], vIn[0], vIn[1], 0, 0, 0, 0}));
}

TEST_F(EffectReverse, ProcessReversesOnlyTheSelection)
{
    const int n = 100000;
    auto vIn = Noise(n, 0x7FFF0, 3);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 1, 8000);
    CancellingFactory fact(0);
    LEffectProcess proc(*LEffectCatalog::ByCliName("reverse"), pDoc.Get(), 1000, 90000, {});
    ASSERT_EQ(proc.Run(&fact), 0);
    auto vOut = ReadDoc(*pDoc);
    ASSERT_EQ(vOut.size(), vIn.size());
    std::vector<int32_t> vExpect = vIn;
    std::reverse(vExpect.begin() + 1000, vExpect.begin() + 90000);
    EXPECT_EQ(vOut, vExpect);
}

TEST_F(EffectReverse, TwiceGivesBackTheAudioAboveFullScaleToo)
{
    auto vIn = Noise(2 * 20000, 0x7FFF0, 5);
    LCutListAudioPtr pDoc = MakeDoc(vIn, 2, 8000);
    pDoc->EfAmplify(0, 20000, 400);
    const auto vLoud = ReadDoc(*pDoc);
    CancellingFactory fact(0);
    for (int k = 0; k < 2; ++k) {
        LEffectProcess proc(*LEffectCatalog::ByCliName("reverse"), pDoc.Get(), 0, 20000, {});
        ASSERT_EQ(proc.Run(&fact), 0);
    }
    EXPECT_EQ(ReadDoc(*pDoc), vLoud);
}

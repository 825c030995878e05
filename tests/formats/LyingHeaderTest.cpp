// A header that claims far more than its file holds: the claimed length is kept, but loading
// stores only what is there and makes the rest one silent cut.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "core/LCutListAudioLoadSource.h"
#include "formats/LAudioFile.h"
#include "support/DocSupport.h"
#include "tests/formats/WavBytes.h"
#include "work/LProgressDialog.h"

using namespace wavbytes;
using testsupport::TempDir;

namespace {

constexpr uint32_t kRate = 8000;
constexpr uint32_t kClaimedFrames = 37u * 3600u * kRate; // 37 hours of 16-bit mono
constexpr int kRealFrames = 480;                          // about 1 KB of samples

std::vector<int16_t> RealSamples()
{
    std::vector<int16_t> v(kRealFrames);
    for (int i = 0; i < kRealFrames; ++i)
        v[i] = static_cast<int16_t>(1000 + i);
    return v;
}

std::string WriteLyingWav(const TempDir& dir)
{
    WavShape shape;
    shape.nRate = kRate;
    shape.vData = Samples16(RealSamples());
    shape.nDataSize = kClaimedFrames * 2;
    const std::string szPath = dir.File("liar.wav");
    testsupport::WriteFileBytes(szPath, Build(shape));
    return szPath;
}

uintmax_t BytesIn(const std::string& szFolder)
{
    uintmax_t n = 0;
    for (const auto& e : std::filesystem::directory_iterator(szFolder))
        n += e.is_regular_file() ? e.file_size() : 0;
    return n;
}

struct SaveRange : LProgressDialog
{
    SaveRange(LSoundSourceBase* pSrc, std::string szPath) : LProgressDialog("Saving"), pSource(pSrc), szPath(szPath) {}
    int32_t Process() override
    {
        return LAudioFile::Save(*this, "Saving", pSource.Get(), szPath, kRate, 1, LAudioEncoding(), &szError);
    }
    LSoundSourcePtr pSource;
    std::string szPath, szError;
};

} // namespace

TEST(LyingHeader, TheReaderKeepsTheClaimAndTellsWhatTheFileHolds)
{
    TempDir dir;
    LSoundSourcePtr p = LAudioFile::OpenSource(WriteLyingWav(dir));
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetLength(), static_cast<int32_t>(kClaimedFrames));
    EXPECT_EQ(p->GetLengthInFile(), kRealFrames);
    // An honest file holds all it claims.
    testsupport::WriteSimpleWav(dir.File("honest.wav"), 8000, 2, 16, std::vector<int32_t>(200, 7));
    LSoundSourcePtr q = LAudioFile::OpenSource(dir.File("honest.wav"));
    EXPECT_EQ(q->GetLengthInFile(), 100);
    EXPECT_EQ(q->GetLength(), 100);
}

TEST(LyingHeader, LoadingStoresOnlyWhatIsThereAndTheRestAsOneSilentCut)
{
    testsupport::UsePrivateTankFolder();
    TempDir dir;
    const std::string szWork = LAudioCutTank::Instance().GetWorkingFolder();
    const uintmax_t nBefore = BytesIn(szWork);
    LSoundSourcePtr pSource = LAudioFile::OpenSource(WriteLyingWav(dir));
    LCutListAudioPtr pDoc(new LCutListAudio);
    const auto tStart = std::chrono::steady_clock::now();
    LCutListAudioLoadSource load("Loading", pDoc.Get(), pSource.Get());
    ASSERT_EQ(load.Run(), 0);
    const double fSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - tStart).count();
    RecordProperty("load_seconds", std::to_string(fSeconds));
    EXPECT_LT(BytesIn(szWork) - nBefore, 1u << 20);

    ASSERT_EQ(pDoc->GetLength(), static_cast<int32_t>(kClaimedFrames));
    ASSERT_EQ(pDoc->GetCutCount(), 2u);
    EXPECT_EQ(pDoc->GetCuts().First()->sLength, kRealFrames);
    EXPECT_EQ(pDoc->GetCuts().Last()->nRef, LAudioCutTank::kSilentRef);

    // Played or saved across the real end: the samples, then silence.
    LSoundSourcePtr pRange = pDoc->OpenSource(kRealFrames - 100, kRealFrames + 900);
    const std::string szOut = dir.File("range.wav");
    SaveRange save(pRange.Get(), szOut);
    ASSERT_EQ(save.Run(), 0) << save.szError;
    LSoundSourcePtr pSaved = LAudioFile::OpenSource(szOut);
    ASSERT_EQ(pSaved->GetLength(), 1000);
    const std::vector<int32_t> v = ReadFrames(*pSaved, 1000);
    const std::vector<int16_t> vReal = RealSamples();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(v[i], i < 100 ? vReal[kRealFrames - 100 + i] * 16 : 0) << i;
    LSoundSourcePtr pPlay = pDoc->OpenSource();
    pPlay->SetPosition(static_cast<int32_t>(kClaimedFrames) - 10);
    EXPECT_EQ(ReadFrames(*pPlay, 10), std::vector<int32_t>(10, 0));
}

#include "DocumentTestSupport.h"

#include <random>

#include "work/LCutListAudioLoadSource.h"
#include "core/LMemorySound.h"

using namespace doctest;

namespace {
// The overview of interleaved samples, computed directly: per 256 frames and channel, the
// positive peak then the negative peak, each >> 11 and capped at 255.
std::vector<uint8_t> DirectOverview(const std::vector<int32_t>& v, int nChans)
{
    std::vector<uint8_t> vOut;
    const size_t nFrames = v.size() / nChans;
    for (size_t f0 = 0; f0 < nFrames; f0 += 256) {
        for (int ch = 0; ch < nChans; ++ch) {
            int64_t nMax = 0, nMin = 0;
            for (size_t f = f0; f < std::min(nFrames, f0 + 256); ++f) {
                nMax = std::max<int64_t>(nMax, v[f * nChans + ch]);
                nMin = std::min<int64_t>(nMin, v[f * nChans + ch]);
            }
            vOut.push_back(static_cast<uint8_t>(std::min<int64_t>(nMax >> 11, 255)));
            vOut.push_back(static_cast<uint8_t>(std::min<int64_t>((-nMin) >> 11, 255)));
        }
    }
    return vOut;
}

std::vector<uint8_t> OverviewOf(const LCutListAudio& doc)
{
    return testsupport::ReadFileBytes(LAudioCutTank::Instance().GetGrfFilePath(doc.GetCuts().First()->nRef));
}

class CancelAfter : public LProgressHostFactory
{
public:
    explicit CancelAfter(int nPumps) : nPumps(nPumps) {}
    std::unique_ptr<LProgressHost> Create() override
    {
        class Host : public LQuietProgressHost
        {
        public:
            explicit Host(int n) : nLeft(n) {}
            bool Pump() override { return --nLeft > 0; }
            int nLeft;
        };
        return std::make_unique<Host>(nPumps);
    }
    int nPumps;
};
} // namespace

class CutTank : public DocumentTest
{
};

TEST_F(CutTank, CountsClaimTheLowestFreeNumberAndTheLastReleaseDeletesTheFiles)
{
    LAudioCutTank& tank = LAudioCutTank::Instance();
    const uint16_t a = tank.GetNewRefAndIncRef(), b = tank.GetNewRefAndIncRef();
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 1);
    testsupport::WriteFileBytes(tank.GetAudFilePath(a), {1, 2, 3, 4});
    testsupport::WriteFileBytes(tank.GetGrfFilePath(a), {1, 2});
    const uint64_t nSerialA = tank.GetSerial(a);
    EXPECT_NE(nSerialA, 0u);
    EXPECT_NE(nSerialA, tank.GetSerial(b));
    tank.DecRef(a);
    EXPECT_FALSE(LFile::Exists(tank.GetAudFilePath(a)));
    EXPECT_FALSE(LFile::Exists(tank.GetGrfFilePath(a)));
    EXPECT_EQ(tank.GetSerial(a), 0u) << "a free number has no segment";
    EXPECT_EQ(tank.GetNewRefAndIncRef(), a) << "a released number is the first free one again";
    EXPECT_GT(tank.GetSerial(a), nSerialA) << "new audio under an old number is told apart";

    for (int i = 0; i < 70000; ++i)
        tank.IncRef(b);
    EXPECT_EQ(tank.GetRefCount(b), 65535) << "the count saturates";
    tank.DecRef(b);
    EXPECT_EQ(tank.GetRefCount(b), 65534) << "a saturated count still decrements";
    EXPECT_TRUE(tank.IsPinned(b));
    testsupport::WriteFileBytes(tank.GetAudFilePath(b), {1, 2, 3, 4});
    for (int i = 0; i < 70000; ++i)
        tank.DecRef(b);
    EXPECT_EQ(tank.GetRefCount(b), 1) << "a pinned segment keeps its number";
    EXPECT_TRUE(LFile::Exists(tank.GetAudFilePath(b))) << "and its files";
    EXPECT_NE(tank.GetNewRefAndIncRef(), b);
    tank.DecRef(2);
    tank.DecRef(a);
    tank.Sweep();
    EXPECT_EQ(tank.GetRefCount(b), 0) << "the sweep takes the pinned segment";
    EXPECT_FALSE(tank.IsPinned(b));
    EXPECT_FALSE(LFile::Exists(tank.GetAudFilePath(b)));

    tank.DecRef(LAudioCutTank::kSilentRef);
    tank.IncRef(LAudioCutTank::kSilentRef);
    EXPECT_EQ(tank.GetAudFilePath(LAudioCutTank::kSilentRef), "");
    EXPECT_EQ(tank.GetGrfFilePath(LAudioCutTank::kSilentRef), "");
    EXPECT_EQ(tank.GetSerial(LAudioCutTank::kSilentRef), 0u);
}

// A segment shared more often than its count can tell stays while any cut may point at it.
TEST_F(CutTank, SaturatedSegmentOutlivesTheReleasesOfItsCopies)
{
    LAudioCutTank& tank = LAudioCutTank::Instance();
    const std::vector<int32_t> vRamp = Ramp(1000, 1, 16);
    LCutListAudioPtr pSource = MakeDoc(vRamp, 1);
    const uint16_t nRef = pSource->GetCuts().First()->nRef;
    // The same samples as 100 cuts of 10 frames.
    LCutListAudio doc(44100, 1);
    for (int i = 0; i < 100; ++i) {
        LAudioCut cut = *pSource->GetCuts().First();
        cut.sOffset = i * 10;
        cut.sLength = 10;
        doc.AppendCut(cut);
    }
    pSource.Reset();
    ASSERT_EQ(doc.GetCutCount(), 100u);
    doc.Repeat(0, 1000, 700);
    ASSERT_EQ(doc.GetLength(), 701 * 1000);
    EXPECT_TRUE(tank.IsPinned(nRef)) << "70100 references saturate the count";
    doc.EfDelete(0, 700 * 1000);
    ASSERT_EQ(doc.GetCutCount(), 100u);
    EXPECT_EQ(ReadDoc(doc), vRamp);
    EXPECT_TRUE(LFile::Exists(tank.GetAudFilePath(nRef)));
    // Copies of the rest still read the same samples, and a new segment never takes its number.
    LCutListAudioPtr pOther = MakeDoc(Ramp(10), 1);
    EXPECT_NE(pOther->GetCuts().First()->nRef, nRef);
    EXPECT_EQ(ReadDoc(doc), vRamp);
    pOther.Reset();
    doc.Clear();
    EXPECT_TRUE(LFile::Exists(tank.GetAudFilePath(nRef)));
    tank.Sweep();
}

TEST_F(CutTank, GoingSweepsOnlySegmentFilesFromItsFolder)
{
    testsupport::TempDir dir;
    {
        LAudioCutTank tank(dir.Path());
        EXPECT_EQ(tank.GetWorkingFolder(), dir.Path() + "/");
        testsupport::WriteFileBytes(tank.GetAudFilePath(7), {0});
        testsupport::WriteFileBytes(tank.GetGrfFilePath(7), {0});
        testsupport::WriteFileBytes(dir.File("notes.txt"), {0});
    }
    EXPECT_FALSE(LFile::Exists(dir.File("7.aud")));
    EXPECT_FALSE(LFile::Exists(dir.File("7.grf")));
    EXPECT_TRUE(LFile::Exists(dir.File("notes.txt")));
}

TEST_F(CutTank, WriterOverviewMatchesADirectComputationForAnyBlocking)
{
    std::mt19937 rng(5);
    for (int nRound = 0; nRound < 60; ++nRound) {
        const int nChans = 1 + nRound % 4;
        std::vector<int32_t> v(std::uniform_int_distribution<int>(0, 3000)(rng) * nChans);
        const int nShift = std::uniform_int_distribution<int>(0, 31)(rng); // from tiny to full range
        // Each channel far louder than the one before: a sample counted in the wrong channel shows.
        for (size_t i = 0; i < v.size(); ++i)
            v[i] = static_cast<int32_t>(rng()) >> std::min<int>(31, nShift + 6 * (nChans - 1 - static_cast<int>(i % nChans)));
        if (nRound % 7 == 0 && !v.empty())
            v[0] = INT32_MIN;
        LCutListAudioPtr pDoc(new LCutListAudio);
        {
            LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), 8000, static_cast<uint8_t>(nChans)));
            size_t nDone = 0;
            while (nDone < v.size()) {
                const size_t nFrames = std::min<size_t>(std::uniform_int_distribution<int>(0, 700)(rng),
                                                        (v.size() - nDone) / nChans);
                pWriter->Write(v.data() + nDone, static_cast<int32_t>(nFrames));
                nDone += nFrames * nChans;
            }
        }
        ASSERT_EQ(pDoc->GetLength(), static_cast<int32_t>(v.size() / nChans));
        EXPECT_EQ(pDoc->GetChannels(), nChans);
        EXPECT_EQ(pDoc->GetSampleRate(), 8000);
        ASSERT_EQ(OverviewOf(*pDoc), DirectOverview(v, nChans)) << "round " << nRound;
        EXPECT_EQ(ReadDoc(*pDoc), v);
    }
}

TEST_F(CutTank, OverviewRecordsCoverTheRemainderAndNegativeOnlyAudio)
{
    std::vector<int32_t> v(300, -0x7FFF0);
    v[299] = -0x800;
    LCutListAudioPtr pDoc = MakeDoc(v, 1);
    EXPECT_EQ(OverviewOf(*pDoc), (std::vector<uint8_t>{0, 255, 0, 255}));

    // Moved back, the writer drops what followed: the recorder trims its tail this way.
    LCutListAudioPtr pTrimmed(new LCutListAudio);
    {
        LSNKSegmentWriter* pWriter = new LSNKSegmentWriter(pTrimmed.Get(), 8000, 1);
        LSoundSinkPtr pHold(pWriter);
        std::vector<int32_t> vLoud(600, 0x7FFF0);
        pWriter->Write(vLoud.data(), 600);
        pWriter->SetPosition(100);
        std::vector<int32_t> vQuiet(10, 0x800);
        pWriter->Write(vQuiet.data(), 10);
    }
    EXPECT_EQ(pTrimmed->GetLength(), 110);
    EXPECT_EQ(OverviewOf(*pTrimmed), (std::vector<uint8_t>{1, 0}));
    std::vector<int32_t> vWant(100, 0x7FFF0);
    vWant.resize(110, 0x800);
    EXPECT_EQ(ReadDoc(*pTrimmed), vWant);
}

TEST_F(CutTank, CancelledLoadKeepsWhatWasReadAndFailedLoadTakesNothing)
{
    auto vIn = Ramp(2 * 40000, -40000, 1);
    LCutListAudioPtr pDoc(new LCutListAudio);
    LSoundSourcePtr pSrc(new LSRCMemory(vIn, 22050, 2));
    CancelAfter cancel(3);
    LCutListAudioLoadSource load("Loading", pDoc.Get(), pSrc.Get());
    EXPECT_EQ(load.Run(&cancel), LProgressDialog::ResultCancelled);
    ASSERT_EQ(pDoc->GetLength(), 2 * 8192);
    EXPECT_EQ(pDoc->GetSampleRate(), 22050);
    vIn.resize(2 * 2 * 8192);
    EXPECT_EQ(ReadDoc(*pDoc), vIn);
    EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 1);

    LSoundSourcePtr pBroken(new LSRCSilence);
    LCutListAudioLoadSource failed("Loading", pDoc.Get(), pBroken.Get());
    EXPECT_EQ(failed.Run(), LProgressDialog::ResultError);
    EXPECT_EQ(pDoc->GetCutCount(), 0u);
    EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0);
}

// A header that claims far more than its file holds: the claimed length is kept, but loading
// stores only what is there and makes the rest one silent cut.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "work/LCutListAudioLoadSource.h"
#include "core/LPRSourceToSink.h"
#include "formats/LAudioFile.h"
#include "formats/codec/LCodec.h"
#include "support/DocSupport.h"
#include "tests/formats/CodecFiles.h"
#include "tests/formats/Mp3Support.h"
#include "tests/formats/SaveProcess.h"
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
    SaveProcess save(pRange.Get(), szOut);
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

namespace {

void PutBE(Bytes& v, uint32_t x, int nBytes)
{
    for (int i = nBytes - 1; i >= 0; --i)
        v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

// Each maker writes a small file of its format whose header claims 37 hours and returns the frames
// the file really holds.
int32_t WriteLyingAu(const std::string& szPath)
{
    Bytes v = {'.', 's', 'n', 'd'};
    for (uint32_t x : {24u, kClaimedFrames * 2, 3u, kRate, 1u})
        PutBE(v, x, 4);
    const Bytes vData = Samples16(RealSamples());
    for (size_t i = 0; i < vData.size(); i += 2)
        v.insert(v.end(), {vData[i + 1], vData[i]});
    testsupport::WriteFileBytes(szPath, v);
    return kRealFrames;
}

int32_t WriteLyingAiff(const std::string& szPath)
{
    Bytes vComm = {'C', 'O', 'M', 'M'};
    PutBE(vComm, 18, 4);
    PutBE(vComm, 1, 2);
    PutBE(vComm, kClaimedFrames, 4);
    PutBE(vComm, 16, 2);
    vComm.insert(vComm.end(), {0x40, 0x0B, 0xFA, 0, 0, 0, 0, 0, 0, 0}); // 8000 as an extended number
    Bytes vSsnd = {'S', 'S', 'N', 'D'};
    PutBE(vSsnd, 8 + kClaimedFrames * 2, 4);
    PutBE(vSsnd, 0, 4);
    PutBE(vSsnd, 0, 4);
    for (int16_t x : RealSamples())
        PutBE(vSsnd, static_cast<uint16_t>(x), 2);
    Bytes v = {'F', 'O', 'R', 'M'};
    PutBE(v, static_cast<uint32_t>(4 + vComm.size() + 8 + kClaimedFrames * 2), 4);
    v.insert(v.end(), {'A', 'I', 'F', 'F'});
    v.insert(v.end(), vComm.begin(), vComm.end());
    v.insert(v.end(), vSsnd.begin(), vSsnd.end());
    testsupport::WriteFileBytes(szPath, v);
    return kRealFrames;
}

int32_t WriteLyingImaWav(const std::string& szPath)
{
    LWaveFormatRecord record;
    LCodec::ByShortName("ima")->MakeRecord(kRate, 1, record);
    const uint32_t nBlocks = 4;
    Bytes vData(nBlocks * record.nBlockAlign, 0x17);
    const uint32_t nClaimed = kClaimedFrames / 2; // four bits a sample
    testsupport::WriteFileBytes(szPath, codecfiles::FileOf(record, vData, {}, &nClaimed));
    LCodecShape shape;
    LCodec::ForRecord(record, &shape);
    return static_cast<int32_t>(nBlocks * shape.nBlockFrames);
}

// An MP3 file whose first frame counts far more frames than follow it.
int32_t WriteLyingMp3(const std::string& szPath)
{
    const std::string szWav = szPath + ".wav";
    testsupport::WriteSimpleWav(szWav, 44100, 1, 16, testsupport::Sine16(44100, 1, 22050, 440.0));
    if (testsupport::RunCommand("lame --quiet -b 64 " + mp3test::Quote(szWav) + " " + mp3test::Quote(szPath)) != 0)
        return -1;
    Bytes v = testsupport::ReadFileBytes(szPath);
    for (size_t i = 0; i + 12 < v.size(); ++i) {
        if (!std::memcmp(v.data() + i, "Info", 4) || !std::memcmp(v.data() + i, "Xing", 4)) {
            std::memcpy(v.data() + i, "Xing", 4); // a constant-rate file's count is not read
            const uint32_t nCount = kClaimedFrames / 1152;
            for (int k = 0; k < 4; ++k)
                v[i + 8 + k] = static_cast<uint8_t>(nCount >> (24 - 8 * k));
            testsupport::WriteFileBytes(szPath, v);
            return static_cast<int32_t>((v.size() / 104 + 1) * 1152); // 32 kbit/s frames are the least
        }
    }
    return -1;
}

} // namespace

TEST(LyingHeader, InsertedAtAnotherRateAndChannelCountItStillLoadsOnlyWhatItHolds)
{
    testsupport::UsePrivateTankFolder();
    TempDir dir;
    const std::string szWork = LAudioCutTank::Instance().GetWorkingFolder();
    const uintmax_t nBefore = BytesIn(szWork);
    LSoundSourcePtr pSource = LPRSourceToSink::Adapt(LAudioFile::OpenSource(WriteLyingWav(dir)).Get(), 16000, 2);
    ASSERT_EQ(pSource->GetLength(), static_cast<int32_t>(kClaimedFrames * 2));
    ASSERT_EQ(pSource->GetLengthInFile(), kRealFrames * 2); // else the load would write gigabytes
    LCutListAudioPtr pDoc(new LCutListAudio(16000, 2));
    LCutListAudioLoadSource load("Loading", pDoc.Get(), pSource.Get());
    ASSERT_EQ(load.Run(), 0);
    EXPECT_LT(BytesIn(szWork) - nBefore, 1u << 20);
    EXPECT_EQ(pDoc->GetLength(), static_cast<int32_t>(kClaimedFrames * 2));
    EXPECT_EQ(pDoc->GetCuts().Last()->nRef, LAudioCutTank::kSilentRef);
}

TEST(LyingHeader, EveryFormatWhoseHeaderStatesALengthLoadsOnlyWhatItHolds)
{
    testsupport::UsePrivateTankFolder();
    TempDir dir;
    const std::string szWork = LAudioCutTank::Instance().GetWorkingFolder();
    struct Maker
    {
        const char* szName;
        int32_t (*pWrite)(const std::string&);
    } makers[] = {{"liar.au", WriteLyingAu}, {"liar.aif", WriteLyingAiff}, {"liar-ima.wav", WriteLyingImaWav},
                  {"liar.mp3", WriteLyingMp3}};
    for (const Maker& m : makers) {
        const std::string szPath = dir.File(m.szName);
        const int32_t nMost = m.pWrite(szPath);
        if (nMost < 0) {
            ADD_FAILURE() << m.szName << " could not be made";
            continue;
        }
        LSoundSourcePtr pSource = LAudioFile::OpenSource(szPath);
        ASSERT_FALSE(pSource->IsError()) << m.szName;
        const int32_t nClaimed = pSource->GetLength();
        EXPECT_GT(nClaimed, 1000000000 / 2) << m.szName;
        const int32_t nHeld = pSource->GetLengthInFile();
        EXPECT_GT(nHeld, 0) << m.szName;
        ASSERT_LE(nHeld, nMost) << m.szName; // else the load would write gigabytes

        const uintmax_t nBefore = BytesIn(szWork);
        LCutListAudioPtr pDoc(new LCutListAudio);
        LCutListAudioLoadSource load("Loading", pDoc.Get(), pSource.Get());
        ASSERT_EQ(load.Run(), 0) << m.szName;
        EXPECT_LT(BytesIn(szWork) - nBefore, 1u << 20) << m.szName;
        EXPECT_EQ(pDoc->GetLength(), nClaimed) << m.szName;
        EXPECT_EQ(pDoc->GetCuts().Last()->nRef, LAudioCutTank::kSilentRef) << m.szName;
    }
}

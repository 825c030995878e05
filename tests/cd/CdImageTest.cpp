// Disc images made by our writer, read back through the CD layer (libcdio's image drivers).
#include <gtest/gtest.h>

#include <filesystem>

#include "cd/LCdDevice.h"
#include "cd/LCdImageWriter.h"
#include "support/TestSupport.h"
#include "tests/cd/CdTestSupport.h"

using namespace cdtest;

namespace {

constexpr int32_t kGap = 150; // 2 s

// Three tracks of known samples: an odd length, whole sectors, and mono (doubled to stereo).
struct KnownTracks
{
    std::vector<int32_t> vOne = Noise16(1000 * 2, 1);
    std::vector<int32_t> vTwo = Noise16(588 * 3 * 2, 2);
    std::vector<int32_t> vThreeMono = Noise16(700, 3);

    std::vector<LCdSourceItem> Items() const
    {
        return {{Source16(vOne, 44100, 2), "First", "Ann"},
                {Source16(vTwo, 44100, 2), "Second \"quoted\"", ""},
                {Source16(vThreeMono, 44100, 1), "Third", ""}};
    }
};

// The expected track as read from the disc: the samples, then silence to the sector's end.
std::vector<int32_t> Padded(std::vector<int32_t> v, int32_t nChans)
{
    if (nChans == 1) {
        std::vector<int32_t> vStereo;
        for (int32_t s : v) {
            vStereo.push_back(s);
            vStereo.push_back(s);
        }
        v = vStereo;
    }
    while ((v.size() / 2) % LCd::kFramesPerSector != 0)
        v.push_back(0);
    return v;
}

TEST(CdImage, WrittenImageReadsBackBitForBitWithBoundariesAndGaps)
{
    testsupport::TempDir dir;
    KnownTracks known;
    ASSERT_EQ(WriteImage(dir.File("disc.cue"), known.Items(), kGap, "Album"), 0);
    EXPECT_EQ(testsupport::ReadFileBytes(dir.File("disc.bin")).size(),
              static_cast<size_t>(2 + 3 + 2 + 2 * kGap) * LCd::kBytesPerSector);

    auto pDisc = LCdDisc::Open(dir.File("disc.cue"));
    ASSERT_FALSE(pDisc->IsError()) << pDisc->GetError();
    const LCdToc& toc = pDisc->GetToc();
    ASSERT_EQ(toc.vTracks.size(), 3u);
    // Track 1: sectors 0-1; gap 2-151; track 2: 152-154; gap 155-304; track 3: 305-306.
    const int32_t aStart[] = {0, 2 + kGap, 2 + kGap + 3 + kGap};
    const int32_t aSectors[] = {2, 3, 2};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(toc.vTracks[i].nNumber, i + 1);
        EXPECT_EQ(toc.vTracks[i].lsnStart, aStart[i]) << "track " << i + 1;
        EXPECT_EQ(toc.vTracks[i].nSectors, aSectors[i]) << "track " << i + 1;
        EXPECT_TRUE(toc.vTracks[i].bAudio);
    }
    EXPECT_EQ(toc.vTracks[1].lsnPregap, 2);
    EXPECT_EQ(toc.vTracks[2].lsnPregap, 2 + kGap + 3);
    EXPECT_EQ(toc.lsnLeadOut, aStart[2] + 2);

    const std::vector<int32_t> vExpected[] = {Padded(known.vOne, 2), Padded(known.vTwo, 2), Padded(known.vThreeMono, 1)};
    for (LCdReadMode mode : {LCdReadMode::Fast, LCdReadMode::Verified, LCdReadMode::Paranoid}) {
        for (int i = 0; i < 3; ++i) {
            LSoundSourcePtr pTrack = pDisc->OpenTrack(i + 1, mode);
            ASSERT_FALSE(pTrack->IsError());
            EXPECT_EQ(pTrack->GetSampleRate(), 44100);
            EXPECT_EQ(pTrack->GetChannels(), 2);
            EXPECT_EQ(ReadAll16(*pTrack), vExpected[i]) << "track " << i + 1 << " in mode " << LCd::ReadModeName(mode);
        }
    }
    // The gaps hold silence, and a read past a track's end yields zeros, not the next track.
    for (int32_t lsnGap : {2, 2 + kGap + 3}) {
        LSoundSourcePtr pGap = pDisc->OpenSpan(lsnGap, kGap, LCdReadMode::Fast);
        const std::vector<int32_t> v = ReadAll16(*pGap);
        EXPECT_EQ(std::count(v.begin(), v.end(), 0), static_cast<long>(v.size()));
    }
    LSoundSourcePtr pOne = pDisc->OpenTrack(1, LCdReadMode::Fast);
    pOne->SetPosition(pOne->GetLength() - 10);
    std::vector<int32_t> vTail(40 * 2, 1);
    pOne->Read(vTail.data(), 40);
    EXPECT_EQ(std::vector<int32_t>(vTail.begin() + 20, vTail.end()), std::vector<int32_t>(60, 0));
    const LCdReadCounts counts = pDisc->GetCounts();
    EXPECT_EQ(counts.nUncorrectable, 0u);
}

TEST(CdImage, CdTextAndSeekingWithinATrack)
{
    testsupport::TempDir dir;
    KnownTracks known;
    ASSERT_EQ(WriteImage(dir.File("disc.cue"), known.Items(), kGap, "Album"), 0);
    auto pDisc = LCdDisc::Open(dir.File("disc.cue"));
    ASSERT_FALSE(pDisc->IsError()) << pDisc->GetError();
    EXPECT_EQ(pDisc->GetToc().szAlbum, "Album");
    EXPECT_EQ(pDisc->GetToc().vTracks[0].szTitle, "First");
    EXPECT_EQ(pDisc->GetToc().vTracks[0].szPerformer, "Ann");
    EXPECT_EQ(pDisc->GetToc().vTracks[1].szTitle, "Second 'quoted'");

    // A read from the middle of a sector after a seek delivers the samples of that place.
    LSoundSourcePtr pTwo = pDisc->OpenTrack(2, LCdReadMode::Verified);
    pTwo->SetPosition(1000);
    std::vector<int32_t> v(20 * 2);
    pTwo->Read(v.data(), 20);
    for (size_t i = 0; i < v.size(); ++i)
        EXPECT_EQ(v[i] / 16, known.vTwo[2000 + i]) << i;
    EXPECT_EQ(pTwo->GetPosition(), 1020);
}

TEST(CdImage, NoGapMakesContiguousTracksAndConvertedRatesFillTheirPlannedSectors)
{
    testsupport::TempDir dir;
    std::vector<LCdSourceItem> vItems = {{Source16(Noise16(588 * 2 * 2, 4), 44100, 2), "", ""},
                                         {Source16(Noise16(22050, 5), 22050, 1), "", ""}};
    LCdImageWriter writer(vItems, "", "", 0);
    const LCdLayout plan = writer.Plan();
    std::string szError;
    ASSERT_EQ(RunBody([&](LProgressDialog& dlg) { return writer.Write(dlg, dir.File("x.cue"), &szError); }), 0) << szError;
    ASSERT_EQ(writer.GetLayout().vTracks.size(), 2u);
    EXPECT_EQ(writer.GetLayout().vTracks[1].lsnStart, 2);
    EXPECT_EQ(writer.GetLayout().vTracks[1].nSectors, plan.vTracks[1].nSectors); // one second, 75 sectors
    EXPECT_EQ(plan.vTracks[1].nSectors, 75);

    auto pDisc = LCdDisc::Open(dir.File("x.cue"));
    ASSERT_FALSE(pDisc->IsError()) << pDisc->GetError();
    EXPECT_EQ(pDisc->GetToc().vTracks[1].lsnStart, 2);
    EXPECT_EQ(pDisc->GetToc().vTracks[1].lsnPregap, -1);
    EXPECT_EQ(pDisc->GetToc().vTracks[0].nSectors, 2);
    EXPECT_EQ(LCdImageWriter::CueSheet(writer.GetLayout(), "x.bin").find("INDEX 00"), std::string::npos);
}

TEST(CdImage, FitCheckCountsTheLeadIn)
{
    EXPECT_TRUE(LCdLayout::Fits(80 * 60 * 75 - 150, 80));
    EXPECT_FALSE(LCdLayout::Fits(80 * 60 * 75 - 149, 80));
    EXPECT_FALSE(LCdLayout::Fits(75 * 60 * 75, 74));
    EXPECT_TRUE(LCdLayout::FitMessage(1000, 74).empty());
    EXPECT_EQ(LCdLayout::FitMessage(75 * 60 * 75, 74), "The tracks take 75:02 but a 74-minute disc holds 74:00.");
    EXPECT_EQ(LCdLayout::SectorsFor(44100, 44100), 75);
    EXPECT_EQ(LCdLayout::SectorsFor(1, 8000), 1);
}

// Cancels at the first look.
class CancellingHost : public LQuietProgressHost
{
public:
    bool Pump() override { return false; }
};
class CancellingFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<CancellingHost>(); }
};

TEST(CdImage, CancelledOrFailedWriteLeavesTheOldImageAlone)
{
    testsupport::TempDir dir;
    const std::string szCue = dir.File("disc.cue");
    testsupport::WriteFileBytes(szCue, {'o', 'l', 'd'});
    KnownTracks known;
    LCdImageWriter writer(known.Items(), "", "", kGap);
    std::string szError;
    CancellingFactory cancel;
    EXPECT_EQ(RunBody([&](LProgressDialog& dlg) { return writer.Write(dlg, szCue, &szError); }, &cancel), 1);
    EXPECT_EQ(testsupport::ReadFileBytes(szCue), (std::vector<uint8_t>{'o', 'l', 'd'}));
    EXPECT_FALSE(std::filesystem::exists(dir.File("disc.bin")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);

    std::vector<LCdSourceItem> vBroken = {{LSoundSourcePtr(new LSRCSilence()), "", ""}};
    EXPECT_EQ(WriteImage(szCue, vBroken, 0, "", &szError), 2);
    EXPECT_FALSE(szError.empty());
    EXPECT_EQ(WriteImage(dir.File("none/disc.cue"), known.Items(), 0, "", &szError), 2);
    EXPECT_EQ(WriteImage(szCue, {}, 0, "", &szError), 2);
    EXPECT_EQ(testsupport::ReadFileBytes(szCue), (std::vector<uint8_t>{'o', 'l', 'd'}));
}

TEST(CdImage, BadImagesAndTrackNumbersAreReportedNotRead)
{
    testsupport::TempDir dir;
    auto pMissing = LCdDisc::Open(dir.File("missing.cue"));
    EXPECT_TRUE(pMissing->IsError());
    EXPECT_NE(pMissing->GetError().find("missing.cue"), std::string::npos);
    EXPECT_TRUE(pMissing->OpenTrack(1, LCdReadMode::Fast)->IsError());

    testsupport::WriteFileBytes(dir.File("nobin.cue"), {});
    const std::string szCue = "FILE \"nobin.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n";
    testsupport::WriteFileBytes(dir.File("nobin.cue"), std::vector<uint8_t>(szCue.begin(), szCue.end()));
    EXPECT_TRUE(LCdDisc::Open(dir.File("nobin.cue"))->IsError());

    KnownTracks known;
    ASSERT_EQ(WriteImage(dir.File("disc.cue"), known.Items(), kGap), 0);
    auto pDisc = LCdDisc::Open(dir.File("disc.cue"));
    ASSERT_FALSE(pDisc->IsError());
    EXPECT_TRUE(pDisc->OpenTrack(0, LCdReadMode::Fast)->IsError());
    EXPECT_TRUE(pDisc->OpenTrack(4, LCdReadMode::Fast)->IsError());
    EXPECT_TRUE(pDisc->OpenSpan(300, 100, LCdReadMode::Fast)->IsError());
}

TEST(CdImage, SheetsTheReaderWouldMishandleAreRefusedWithAReason)
{
    testsupport::TempDir dir;
    testsupport::WriteFileBytes(dir.File("f.bin"), std::vector<uint8_t>(20 * 2352));
    auto open = [&](const std::string& szName, const std::string& szText) {
        testsupport::WriteFileBytes(dir.File(szName), std::vector<uint8_t>(szText.begin(), szText.end()));
        return LCdDisc::Open(dir.File(szName))->GetError();
    };
    // A track without its mode once made the reader divide by zero.
    EXPECT_NE(open("a.toc", "CD_DA\nTRACK AUDIO\n FILE \"f.bin\" 0 00:00:05\nTRACK\n FILE \"f.bin\" 0\n").find("no known mode"),
              std::string::npos);
    EXPECT_NE(open("b.cue", "FILE \"f.bin\" BINARY\n TRACK 01\n INDEX 01 00:00:00\n").find("no known mode"), std::string::npos);
    EXPECT_NE(open("c.cue", std::string("FILE \"f.bin\" BINARY\n TRACK 01 AUDIO\0\n INDEX 01 00:00:00\n", 50)).find("not a text file"),
              std::string::npos);
    EXPECT_NE(open("d.toc", "CD_DA\n// TRACK\n").find("names no tracks"), std::string::npos);
    // The word inside a title or a comment is no track.
    EXPECT_EQ(open("e.toc", "CD_DA\n// a TRACK here\nTRACK AUDIO\n FILE \"f.bin\" 0 00:00:05\n"), "");
    EXPECT_EQ(open("f.cue", "TITLE \"TRACK\"\nFILE \"f.bin\" BINARY\n TRACK 01 AUDIO\n INDEX 01 00:00:00\n"), "");
}

TEST(CdImage, CdrdaoTocImagesOpenLikeCueSheets)
{
    testsupport::TempDir dir;
    KnownTracks known;
    ASSERT_EQ(WriteImage(dir.File("disc.cue"), known.Items(), 0), 0);
    // The same data described the way cdrdao does: raw samples from offsets in one file.
    const std::string szToc = "CD_DA\n"
                              "// written by hand\n"
                              "TRACK AUDIO\n"
                              "  FILE \"disc.bin\" 0 00:00:02\n"
                              "TRACK AUDIO\n  FILE \"disc.bin\" 00:00:02 00:00:03\n"
                              "TRACK AUDIO\n  FILE \"disc.bin\" 00:00:05 00:00:02\n";
    testsupport::WriteFileBytes(dir.File("disc.toc"), std::vector<uint8_t>(szToc.begin(), szToc.end()));
    auto pDisc = LCdDisc::Open(dir.File("disc.toc"));
    ASSERT_FALSE(pDisc->IsError()) << pDisc->GetError();
    const LCdToc& toc = pDisc->GetToc();
    ASSERT_EQ(toc.vTracks.size(), 3u);
    EXPECT_EQ(toc.vTracks[1].lsnStart, 2);
    EXPECT_EQ(toc.vTracks[2].lsnStart, 5);
    EXPECT_EQ(toc.lsnLeadOut, 7);
    LSoundSourcePtr pTwo = pDisc->OpenTrack(2, LCdReadMode::Fast);
    EXPECT_EQ(ReadAll16(*pTwo), known.vTwo);
}

} // namespace

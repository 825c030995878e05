// The project file: its layout, byte-for-byte round trips through saving and loading, the
// version message, counts kept within their bytes, every channel count, and damaged input.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/LFile.h"
#include "project/LBytes.h"
#include "ProjectTestSupport.h"

using namespace projtest;
using testsupport::ReadFileBytes;
using testsupport::WriteFileBytes;

namespace {
// Two files (the second edited into several cuts, one of them silence with a gain), bookmarks
// on both and a region.
LEdProject RichProject(const std::string& szFolder)
{
    LEdProject p;
    LCutListAudioPtr pA = MakeDoc(Ramp(3000), 1, 8000);
    LCutListAudioPtr pB = MakeDoc(Ramp(2000, 5000), 2, 22050);
    pB->InsertSilence(100, 50);
    pB->EfAmplify(0, 40, 150);
    pB->EfDelete(500, 700);
    p.vFiles.push_back(FileOf(szFolder + "/a.wav", pA));
    p.vFiles.push_back(FileOf(szFolder + "/b.wav", pB));
    p.vFiles[0].entry.sCursor = 123;
    p.vFiles[0].entry.sSelStart = 10;
    p.vFiles[0].entry.sSelEnd = 20;
    p.vFiles[1].entry.bVerticalZoom = 1;
    p.vFiles[1].entry.nDisplayMode = 1;
    p.vFiles[1].entry.nFlags = LEdFileEntry::kFlagModified;
    p.vFiles[1].entry.SetEncoding("pcm16");
    p.nState = 1;
    p.vBookmarks.emplace_back("start", szFolder + "/a.wav", 0);
    p.vBookmarks.emplace_back("drop", szFolder + "/b.wav", 900);
    p.vBookmarks.emplace_back("end", szFolder + "/a.wav", 2999);
    p.vBookmarks[1].Visit(1700000000);
    p.vRegions.emplace_back("verse", szFolder + "/a.wav", *pA, 100, 600);
    return p;
}

// The documents of a loaded project as a project of their own (as the editor would save them).
std::vector<std::vector<int32_t>> AllSamples(const LEdProject& p)
{
    std::vector<std::vector<int32_t>> v;
    for (const LEdProjectFile& f : p.vFiles)
        v.push_back(ReadDoc(*f.pDoc));
    for (const LEdRegion& r : p.vRegions)
        v.push_back(ReadDoc(*r.pDoc));
    return v;
}
} // namespace

TEST(ProjectRecords, TheFileEntryIs540BytesWithThePathFirst)
{
    LEdFileEntry e;
    e.SetPath("/p/x.wav");
    e.sCursor = 0x11223344;
    e.nSampleRate = 44100;
    e.nChans = 2;
    e.SetName("x.wav");
    LByteWriter out;
    e.Write(out);
    const std::vector<uint8_t>& v = out.Bytes();
    ASSERT_EQ(v.size(), LEdFileEntry::kRecordSize);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[0])), "/p/x.wav");
    EXPECT_EQ(v[260], 0x44);
    EXPECT_EQ(v[280] | (v[281] << 8), 44100);
    EXPECT_EQ(v[284], 2);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[304])), "x.wav");
}

TEST(ProjectRecords, TheAudioFolderSharesTheNameFieldOnlyWhereTheNameLeavesRoom)
{
    auto roundTrip = [](const LEdFileEntry& e, std::vector<uint8_t>& vBytes) {
        LByteWriter out;
        e.Write(out);
        vBytes = out.Bytes();
        LEdFileEntry back;
        LByteReader in(vBytes.data(), vBytes.size());
        EXPECT_TRUE(back.Read(in));
        return back;
    };
    LEdFileEntry e;
    e.SetName("x.wav");
    e.nFlags = LEdFileEntry::kFlagModified;
    e.SetAudioFolder("song_audio");
    std::vector<uint8_t> v;
    LEdFileEntry back = roundTrip(e, v);
    ASSERT_EQ(v.size(), LEdFileEntry::kRecordSize);
    EXPECT_EQ(v[287], LEdFileEntry::kFlagModified | LEdFileEntry::kFlagAudioFolder);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[304])), "x.wav");
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[444])), "song_audio");
    EXPECT_EQ(back.GetName(), "x.wav");
    EXPECT_EQ(back.GetAudioFolder(), "song_audio");
    EXPECT_TRUE(back.IsModified());

    // A long name keeps its whole field: the entry then says nothing of the folder, as entries
    // of earlier saves never did.
    const std::string szLong(200, 'n');
    e.SetName(szLong);
    back = roundTrip(e, v);
    EXPECT_EQ(v[287], LEdFileEntry::kFlagModified);
    EXPECT_EQ(back.GetName(), szLong);
    EXPECT_EQ(back.GetAudioFolder(), "");
}

TEST(ProjectRecords, ARegionIs528BytesAndDescribesItselfWithTimes)
{
    LCutListAudio doc(8000, 1);
    doc.InsertSilence(0, 80000);
    LEdRegion r("Intro", "/p/x.wav", doc, 8000, 20000);
    LByteWriter out;
    r.Write(out);
    EXPECT_EQ(out.Size(), LEdRegion::kRecordSize);
    EXPECT_EQ(r.Describe(), "Intro@0:00:01.000-0:00:02.500");
    EXPECT_EQ(r.pDoc->GetLength(), 12000);
    EXPECT_TRUE(r.bAssemble);
}

TEST(ProjectRecords, ARegionOfAnyRateAndLengthDescribesItselfWithoutOverflow)
{
    LEdRegion r;
    r.SetName("odd");
    r.pDoc->SetFormat(1, 1);
    r.sStart = -2000000000;
    r.sEnd = 2000000000;
    EXPECT_EQ(r.Describe(), "odd@-596:31:23.647-596:31:23.647");
}

class ProjectFileTest : public ProjectTest
{
};

TEST_F(ProjectFileTest, AProjectWithNoFilesStillWritesItsCountsAndState)
{
    LEdProject p;
    std::unique_ptr<LProjectSegments> pSegs;
    ASSERT_EQ(Save(dir.File("empty.snp"), p, pSegs), 0);
    EXPECT_EQ(ReadFileBytes(dir.File("empty.snp")), (std::vector<uint8_t>{1, 0, 255, 0, 0}));
    LEdLoadProject load(dir.File("empty.snp"));
    EXPECT_EQ(load.Run(), 0);
    EXPECT_TRUE(load.GetProject().vFiles.empty());
    EXPECT_EQ(load.GetProject().nState, 255);
}

TEST_F(ProjectFileTest, SavingWhatWasLoadedGivesTheSameBytesAndSamples)
{
    std::vector<uint8_t> vFirst;
    std::vector<std::vector<int32_t>> vSamples;
    {
        LEdProject p = RichProject(dir.Path());
        vSamples = AllSamples(p);
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(dir.File("one.snp"), p, pSegs), 0);
        vFirst = ReadFileBytes(dir.File("one.snp"));
    }
    ASSERT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0);
    // Numbers the tank hands out now differ from those of the first run.
    LCutListAudioPtr pSquatter = MakeDoc(Ramp(10), 1);
    LEdLoadProject load(dir.File("one.snp"));
    ASSERT_EQ(load.Run(), 0) << load.GetError();
    LEdProject& back = load.GetProject();
    EXPECT_EQ(AllSamples(back), vSamples);
    ASSERT_EQ(back.vBookmarks.size(), 3u);
    EXPECT_EQ(back.vBookmarks[1].GetName(), "end") << "bookmarks come grouped by file";
    EXPECT_EQ(back.vBookmarks[2].nLastVisited, 1700000000u);

    // Under the same name elsewhere, so that its audio folder is named the same.
    std::filesystem::create_directory(dir.File("other"));
    std::unique_ptr<LProjectSegments> pSegs;
    ASSERT_EQ(Save(dir.File("other/one.snp"), back, pSegs), 0);
    EXPECT_EQ(ReadFileBytes(dir.File("other/one.snp")), vFirst);
}

TEST_F(ProjectFileTest, AWrongVersionLoadsNothingAndSaysSo)
{
    WriteFileBytes(dir.File("v2.snp"), {2, 0, 255, 0, 0});
    LEdLoadProject load(dir.File("v2.snp"));
    EXPECT_EQ(load.Run(), LProgressDialog::ResultError);
    EXPECT_TRUE(load.IsVersionError());
    EXPECT_EQ(load.GetError(),
              "This file does not have the same version with the current Sonitra version or it is corrupted.");
    EXPECT_TRUE(load.GetProject().vFiles.empty());
}

TEST_F(ProjectFileTest, BookmarksOfFilesNotInTheProjectAreCountedButNotWritten)
{
    LEdProject p;
    p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(10), 1)));
    p.vBookmarks.emplace_back("mine", dir.File("a.wav"), 1);
    p.vBookmarks.emplace_back("elsewhere", dir.File("gone.wav"), 2);
    std::unique_ptr<LProjectSegments> pSegs;
    ASSERT_EQ(Save(dir.File("p.snp"), p, pSegs), 0);
    const std::vector<uint8_t> v = ReadFileBytes(dir.File("p.snp"));
    const size_t nBookmarkCount = 2 + 540 + 9 + 14 + 1;
    ASSERT_EQ(v.size(), nBookmarkCount + 1 + 529 + 1);
    EXPECT_EQ(v[nBookmarkCount], 2);
}

TEST_F(ProjectFileTest, MoreRecordsThanACountByteHoldsAreRefusedAndTheOldProjectStays)
{
    LEdProject p;
    LCutListAudioPtr pDoc = MakeDoc(Ramp(10), 1);
    p.vFiles.push_back(FileOf(dir.File("a.wav"), pDoc));
    for (int i = 0; i < 255; ++i)
        p.vBookmarks.emplace_back("b" + std::to_string(i), dir.File("a.wav"), i);
    for (int i = 0; i < 255; ++i)
        p.vRegions.emplace_back("r" + std::to_string(i), dir.File("a.wav"), *pDoc, 0, 5);
    std::unique_ptr<LProjectSegments> pSegs;
    ASSERT_EQ(Save(dir.File("p.snp"), p, pSegs), 0) << "255 of each fit";
    const std::vector<uint8_t> vSaved = ReadFileBytes(dir.File("p.snp"));
    {
        LEdLoadProject load(dir.File("p.snp"));
        ASSERT_EQ(load.Run(), 0) << load.GetError();
        EXPECT_EQ(load.GetProject().vBookmarks.size(), 255u);
        ASSERT_EQ(load.GetProject().vRegions.size(), 255u);
        EXPECT_EQ(load.GetProject().vRegions[254].GetName(), "r254");
    }

    LEdProject tooMany[3] = {p, p, p};
    tooMany[0].vBookmarks.emplace_back("one more", dir.File("a.wav"), 0);
    tooMany[1].vRegions.emplace_back("one more", dir.File("a.wav"), *pDoc, 0, 5);
    for (int i = 0; i < 255; ++i)
        tooMany[2].vFiles.push_back(FileOf(dir.File("f" + std::to_string(i) + ".wav"), pDoc));
    for (const LEdProject& bad : tooMany) {
        LEdSaveProject save(dir.File("p.snp"), bad, pSegs.get());
        EXPECT_EQ(save.Run(), LProgressDialog::ResultError);
        EXPECT_EQ(save.GetError(), LEdSaveProject::kTooManyMessage);
        EXPECT_EQ(ReadFileBytes(dir.File("p.snp")), vSaved);
    }
}

TEST_F(ProjectFileTest, EveryChannelCountADocumentCanHaveReadsBack)
{
    for (const uint8_t nChans : {uint8_t(3), uint8_t(4), uint8_t(8), uint8_t(255)}) {
        std::vector<int32_t> vWant;
        {
            LEdProject p;
            p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(40 * nChans), nChans, 8000)));
            vWant = ReadDoc(*p.vFiles[0].pDoc);
            std::unique_ptr<LProjectSegments> pSegs;
            const std::string szName = "ch" + std::to_string(nChans) + ".snp";
            ASSERT_EQ(Save(dir.File(szName), p, pSegs), 0);
        }
        LEdLoadProject load(dir.File("ch" + std::to_string(nChans) + ".snp"));
        ASSERT_EQ(load.Run(), 0) << int(nChans) << ": " << load.GetError();
        ASSERT_EQ(load.GetProject().vFiles.size(), 1u);
        EXPECT_EQ(load.GetProject().vFiles[0].pDoc->GetChannels(), nChans);
        EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vWant) << int(nChans);
    }
}

TEST_F(ProjectFileTest, DamagedCutListsAreRefusedWithoutBuildingAnything)
{
    auto build = [](uint32_t nCount, int32_t nRate, uint8_t nChans, int32_t sLength) {
        LByteWriter out;
        out.U8(1);
        out.U8(1);
        LEdFileEntry().Write(out);
        out.I32(nRate);
        out.U8(nChans);
        out.U32(nCount);
        out.U16(65535);
        out.I32(sLength);
        out.I32(1 << 24);
        out.I32(0);
        return out.Bytes();
    };
    struct Case
    {
        std::vector<uint8_t> v;
        const char* szWhat;
    } cases[] = {
        {build(0xFFFFFFFF, 8000, 1, 10), "a count far beyond the file"},
        {build(2, 8000, 1, 10), "a count one beyond the file"},
        {build(1, 0, 1, 10), "rate 0"},
        {build(1, 8000, 0, 10), "no channels"},
        {build(1, 8000, 1, -5), "a negative length"},
    };
    for (const Case& c : cases) {
        WriteFileBytes(dir.File("bad.snp"), c.v);
        LEdLoadProject load(dir.File("bad.snp"));
        EXPECT_EQ(load.Run(), LProgressDialog::ResultError) << c.szWhat;
        EXPECT_FALSE(load.IsVersionError()) << c.szWhat;
        EXPECT_TRUE(load.GetProject().vFiles.empty()) << c.szWhat;
    }
    WriteFileBytes(dir.File("good.snp"), build(1, 8000, 1, 10));
    LEdLoadProject good(dir.File("good.snp"));
    good.Run(); // no state byte follows: damaged after the file
    ASSERT_EQ(good.GetProject().vFiles.size(), 1u);
    EXPECT_EQ(good.GetProject().vFiles[0].pDoc->GetLength(), 10);
}

TEST_F(ProjectFileTest, ACutOrPaddedProjectIsRefusedWhereverItEnds)
{
    LEdProject p = RichProject(dir.Path());
    std::unique_ptr<LProjectSegments> pSegs;
    ASSERT_EQ(Save(dir.File("whole.snp"), p, pSegs), 0);
    const std::vector<uint8_t> vWhole = ReadFileBytes(dir.File("whole.snp"));
    auto refused = [&](const std::vector<uint8_t>& v) {
        // Beside the saved one, so that its audio folder is the same.
        WriteFileBytes(dir.File("whole.snp"), v);
        LEdLoadProject load(dir.File("whole.snp"));
        return load.Run() == LProgressDialog::ResultError && !load.GetError().empty();
    };
    for (size_t n = 1; n < vWhole.size(); ++n)
        EXPECT_TRUE(refused(std::vector<uint8_t>(vWhole.begin(), vWhole.begin() + n))) << "cut to " << n << " bytes";
    std::vector<uint8_t> vPadded = vWhole;
    vPadded.push_back(0);
    EXPECT_TRUE(refused(vPadded)) << "one byte after the last region";
    WriteFileBytes(dir.File("whole.snp"), vWhole);
    LEdLoadProject load(dir.File("whole.snp"));
    EXPECT_EQ(load.Run(), 0) << load.GetError();
}

// The audio a project keeps beside it: linked once, placed again only when new, pruned when no
// longer used (and only what the project itself placed), found again wherever the project and
// its folder are moved or renamed to, and an error naming what has gone when it has.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sys/stat.h>

#include "core/LFile.h"
#include "ProjectTestSupport.h"

using namespace projtest;

namespace {
int CountAud(const std::string& szFolder)
{
    int n = 0;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(szFolder, ec), end; !ec && it != end; it.increment(ec))
        n += it->path().extension() == ".aud";
    return n;
}
} // namespace

class ProjectSegmentsTest : public ProjectTest
{
};

TEST_F(ProjectSegmentsTest, SavingAgainPlacesOnlyWhatIsNewAndDropsWhatIsGone)
{
    LEdProject p;
    p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(1000), 1)));
    p.vFiles.push_back(FileOf(dir.File("b.wav"), MakeDoc(Ramp(500), 1)));
    std::unique_ptr<LProjectSegments> pSegs;
    const std::string szProject = dir.File("p.snp");
    ASSERT_EQ(Save(szProject, p, pSegs), 0);
    EXPECT_EQ(pSegs->GetLinked() + pSegs->GetCopied(), 2);
    EXPECT_EQ(pSegs->GetCopied(), 0) << "the tank and the project share a file system here";
    EXPECT_EQ(CountAud(dir.File("p_audio")), 2);

    LCutListAudioPtr pNew = MakeDoc(Ramp(100, 9000), 1);
    p.vFiles[0].pDoc->Insert(500, *pNew);
    ASSERT_EQ(Save(szProject, p, pSegs), 0);
    EXPECT_EQ(pSegs->GetLinked() + pSegs->GetCopied(), 1) << "only the inserted segment is new";

    p.vFiles.pop_back();
    ASSERT_EQ(Save(szProject, p, pSegs), 0);
    EXPECT_EQ(pSegs->GetLinked() + pSegs->GetCopied(), 0);
    EXPECT_EQ(CountAud(dir.File("p_audio")), 2) << "the closed file's segment is removed";
}

TEST_F(ProjectSegmentsTest, AProjectFolderMovedAsAWholeStillOpens)
{
    std::vector<int32_t> vWant;
    {
        LEdProject p;
        p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(777), 1)));
        vWant = ReadDoc(*p.vFiles[0].pDoc);
        std::filesystem::create_directory(dir.File("old"));
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(dir.File("old/p.snp"), p, pSegs), 0);
    }
    std::filesystem::rename(dir.File("old"), dir.File("new"));
    LEdLoadProject load(dir.File("new/p.snp"));
    ASSERT_EQ(load.Run(), 0);
    ASSERT_EQ(load.GetProject().vFiles.size(), 1u);
    EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vWant);
}

TEST_F(ProjectSegmentsTest, MissingAudioIsAnErrorThatNamesWhatIsMissing)
{
    {
        LEdProject p;
        LCutListAudioPtr pDoc = MakeDoc(Ramp(300), 1);
        pDoc->Insert(300, *MakeDoc(Ramp(200, 4000), 1));
        p.vFiles.push_back(FileOf(dir.File("a.wav"), pDoc));
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(dir.File("p.snp"), p, pSegs), 0);
    }
    ASSERT_TRUE(LFile::Delete(dir.File("p_audio/1.aud")));
    {
        LEdLoadProject load(dir.File("p.snp"));
        EXPECT_EQ(load.Run(), LProgressDialog::ResultError);
        EXPECT_TRUE(load.IsMissingAudio());
        EXPECT_EQ(load.GetError(), "audio missing from " + dir.File("p_audio/") + ": 1.aud");
    }
    std::filesystem::remove_all(dir.File("p_audio"));
    LEdLoadProject load(dir.File("p.snp"));
    EXPECT_EQ(load.Run(), LProgressDialog::ResultError);
    EXPECT_TRUE(load.IsMissingAudio());
    EXPECT_EQ(load.GetError(), "its audio folder " + dir.File("p_audio/") + " is missing");
}

TEST_F(ProjectSegmentsTest, ARenamedOrMovedPairOpensAsSaved)
{
    std::vector<int32_t> vWant;
    {
        LEdProject p;
        p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(640), 2)));
        vWant = ReadDoc(*p.vFiles[0].pDoc);
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(dir.File("song.snp"), p, pSegs), 0);
    }
    auto opens = [&](const std::string& szProject) {
        LEdLoadProject load(szProject);
        ASSERT_EQ(load.Run(), 0) << szProject << ": " << load.GetError();
        ASSERT_EQ(load.GetProject().vFiles.size(), 1u);
        EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vWant) << szProject;
    };
    std::filesystem::rename(dir.File("song.snp"), dir.File("final.snp"));
    opens(dir.File("final.snp"));
    std::filesystem::create_directory(dir.File("elsewhere"));
    std::filesystem::rename(dir.File("final.snp"), dir.File("elsewhere/take2.snp"));
    std::filesystem::rename(dir.File("song_audio"), dir.File("elsewhere/song_audio"));
    opens(dir.File("elsewhere/take2.snp"));
}

TEST_F(ProjectSegmentsTest, ProjectsSharingANameKeepTheirOwnAudio)
{
    LEdProject song, bak;
    song.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(300), 1)));
    bak.vFiles.push_back(FileOf(dir.File("b.wav"), MakeDoc(Ramp(200, 7000), 1)));
    std::unique_ptr<LProjectSegments> pSong, pBak;
    ASSERT_EQ(Save(dir.File("song.snp"), song, pSong), 0);
    ASSERT_EQ(Save(dir.File("song.bak"), bak, pBak), 0);
    EXPECT_NE(pSong->GetFolder(), pBak->GetFolder());
    // Each saved again after an edit that leaves its first segment unused.
    song.vFiles[0].pDoc = MakeDoc(Ramp(100, 3000), 1);
    bak.vFiles[0].pDoc = MakeDoc(Ramp(120, 5000), 1);
    ASSERT_EQ(Save(dir.File("song.snp"), song, pSong), 0);
    ASSERT_EQ(Save(dir.File("song.bak"), bak, pBak), 0);
    for (const auto& [szPath, pDoc] : {std::pair{dir.File("song.snp"), song.vFiles[0].pDoc},
                                       std::pair{dir.File("song.bak"), bak.vFiles[0].pDoc}}) {
        LEdLoadProject load(szPath);
        ASSERT_EQ(load.Run(), 0) << szPath << ": " << load.GetError();
        EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), ReadDoc(*pDoc)) << szPath;
    }
}

TEST_F(ProjectSegmentsTest, ASaveNeverRemovesAFileItDidNotPlaceInASharedFolder)
{
    // Two projects of earlier saves, which found their folder by name alone, share one.
    LEdProject first, second;
    first.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(300), 1)));
    second.vFiles.push_back(FileOf(dir.File("b.wav"), MakeDoc(Ramp(200, 7000), 1)));
    const std::vector<int32_t> vSecond = ReadDoc(*second.vFiles[0].pDoc);
    auto pFirst = std::make_unique<LProjectSegments>(dir.File("song_audio/"));
    auto pSecond = std::make_unique<LProjectSegments>(dir.File("song_audio/"));
    ASSERT_EQ(Save(dir.File("song.snp"), first, pFirst), 0);
    ASSERT_EQ(Save(dir.File("song.bak"), second, pSecond), 0);
    first.vFiles[0].pDoc->EfDelete(0, 100);
    first.vFiles[0].pDoc->Insert(0, *MakeDoc(Ramp(50, 9000), 1));
    ASSERT_EQ(Save(dir.File("song.snp"), first, pFirst), 0);
    EXPECT_EQ(CountAud(dir.File("song_audio")), 3) << "both of the first project's and the second's";
    first.vFiles.clear();
    ASSERT_EQ(Save(dir.File("song.snp"), first, pFirst), 0);
    EXPECT_EQ(CountAud(dir.File("song_audio")), 1);
    pFirst.reset();
    pSecond.reset();
    LEdLoadProject load(dir.File("song.bak"));
    ASSERT_EQ(load.Run(), 0) << load.GetError();
    EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vSecond);
}

TEST_F(ProjectSegmentsTest, ASaveUnderANewNameMakesAProjectOfItsOwn)
{
    LEdProject p;
    p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(500), 1)));
    const std::vector<int32_t> vWant = ReadDoc(*p.vFiles[0].pDoc);
    std::unique_ptr<LProjectSegments> pOld, pNew;
    ASSERT_EQ(Save(dir.File("song.snp"), p, pOld), 0);
    ASSERT_EQ(Save(dir.File("song.old.snp"), p, pNew), 0);
    EXPECT_EQ(pNew->GetFolder(), dir.File("song.old_audio/"));
    // The old project goes on without the file, and then goes altogether.
    p.vFiles.clear();
    ASSERT_EQ(Save(dir.File("song.snp"), p, pOld), 0);
    pOld.reset();
    std::filesystem::remove(dir.File("song.snp"));
    std::filesystem::remove_all(dir.File("song_audio"));
    pNew.reset();
    LEdLoadProject load(dir.File("song.old.snp"));
    ASSERT_EQ(load.Run(), 0) << load.GetError();
    EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vWant);
}

TEST_F(ProjectSegmentsTest, ALoadedProjectSavedAgainPlacesNothing)
{
    {
        LEdProject p;
        p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(100), 1)));
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(dir.File("p.snp"), p, pSegs), 0);
    }
    LEdLoadProject load(dir.File("p.snp"));
    ASSERT_EQ(load.Run(), 0);
    std::unique_ptr<LProjectSegments> pSegs = load.TakeSegments();
    ASSERT_EQ(Save(dir.File("p.snp"), load.GetProject(), pSegs), 0);
    EXPECT_EQ(pSegs->GetLinked() + pSegs->GetCopied(), 0);
    EXPECT_EQ(CountAud(dir.File("p_audio")), 1);
}

TEST_F(ProjectSegmentsTest, SegmentsAreCopiedWhereTheFileSystemRefusesLinks)
{
    struct stat stTank, stShm;
    if (::stat(LAudioCutTank::Instance().GetWorkingFolder().c_str(), &stTank) != 0 ||
        ::stat("/dev/shm", &stShm) != 0 || stTank.st_dev == stShm.st_dev || ::access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "no second writable file system at /dev/shm";
    char szTemplate[] = "/dev/shm/sonitra-project-XXXXXX";
    ASSERT_NE(::mkdtemp(szTemplate), nullptr);
    const std::string szShm = szTemplate;
    std::vector<int32_t> vWant;
    {
        LEdProject p;
        p.vFiles.push_back(FileOf(dir.File("a.wav"), MakeDoc(Ramp(400), 1)));
        vWant = ReadDoc(*p.vFiles[0].pDoc);
        std::unique_ptr<LProjectSegments> pSegs;
        ASSERT_EQ(Save(szShm + "/p.snp", p, pSegs), 0);
        EXPECT_EQ(pSegs->GetCopied(), 1);
        EXPECT_EQ(pSegs->GetLinked(), 0);
    }
    {
        LEdLoadProject load(szShm + "/p.snp");
        ASSERT_EQ(load.Run(), 0);
        EXPECT_EQ(ReadDoc(*load.GetProject().vFiles[0].pDoc), vWant);
    }
    std::filesystem::remove_all(szShm);
}

TEST_F(ProjectSegmentsTest, AFailedFirstSaveLeavesNoEmptyFolderToClaimAName)
{
    LEdProject p;
    LCutListAudioPtr pSilent(new LCutListAudio(8000, 1));
    pSilent->InsertSilence(0, 100);
    p.vFiles.push_back(FileOf(dir.File("a.wav"), pSilent));
    // Nothing can take the project's name.
    std::filesystem::create_directories(dir.File("p.snp/inside"));
    std::unique_ptr<LProjectSegments> pSegs;
    EXPECT_EQ(Save(dir.File("p.snp"), p, pSegs), LProgressDialog::ResultError);
    EXPECT_FALSE(std::filesystem::exists(dir.File("p_audio")));
    std::filesystem::remove_all(dir.File("p.snp"));
    ASSERT_EQ(Save(dir.File("p.snp"), p, pSegs), 0);
    EXPECT_EQ(pSegs->GetFolder(), dir.File("p_audio/"));
}

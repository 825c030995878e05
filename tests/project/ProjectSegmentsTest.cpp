// The audio a project keeps beside it: linked once, placed again only when new, pruned when no
// longer used, found again when the project folder moves, and silence where it has gone.
#include <gtest/gtest.h>

#include <filesystem>
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

TEST_F(ProjectSegmentsTest, AMissingSegmentReadsAsSilenceOfTheSameLength)
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
    LEdLoadProject load(dir.File("p.snp"));
    ASSERT_EQ(load.Run(), 0);
    const std::vector<int32_t> v = ReadDoc(*load.GetProject().vFiles[0].pDoc);
    ASSERT_EQ(v.size(), 500u);
    EXPECT_EQ(v[299], Ramp(300)[299]);
    EXPECT_EQ(v[300], 0);
    EXPECT_EQ(v[499], 0);
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

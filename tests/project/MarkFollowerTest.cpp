// Bookmarks and regions stay on their audio through edits, undo and saves, and the list written
// beside a file always speaks of the file on disk.
#include "ProjectTestSupport.h"

#include "core/LEdFile.h"
#include "project/LMarkFollower.h"

using namespace projtest;

namespace {

class MarkFollower : public ProjectTest
{
protected:
    void SetUp() override
    {
        ProjectTest::SetUp();
        pFile = std::make_unique<LEdFile>();
        pFile->GetDocument() = *MakeDoc(Ramp(1000), 1);
        vBookmarks = {LEdBookMark("b", "/a.wav", 600), LEdBookMark("other file", "/b.wav", 600)};
        vRegions = {LEdRegion("r", "/a.wav", pFile->GetDocument(), 500, 700)};
        EXPECT_FALSE(Follow()) << "the first sight is the file as it is on disk";
    }
    void TearDown() override
    {
        vRegions.clear();
        pFile.reset();
        ProjectTest::TearDown();
    }
    bool Follow() { return follower.Follow(*pFile, "/a.wav", vBookmarks, vRegions); }
    // An edit as the editor brackets one.
    void DeleteFront(int32_t nFrames)
    {
        pFile->StartModify("Delete");
        pFile->GetDocument().EfDelete(0, nFrames);
        pFile->EndModify(0, 0);
    }
    int32_t OnDisk() const { return follower.OnDisk(*pFile, "/a.wav", vBookmarks)[0].sPosition; }

    std::unique_ptr<LEdFile> pFile;
    std::vector<LEdBookMark> vBookmarks;
    std::vector<LEdRegion> vRegions;
    LMarkFollower follower;
};

} // namespace

TEST_F(MarkFollower, MarksMoveWithEditsAndUndoButOnlyThoseOfTheFile)
{
    DeleteFront(100);
    EXPECT_TRUE(Follow());
    EXPECT_EQ(vBookmarks[0].sPosition, 500);
    EXPECT_EQ(vBookmarks[1].sPosition, 600) << "another file's bookmark stays";
    EXPECT_EQ(vRegions[0].sStart, 400);
    EXPECT_EQ(vRegions[0].sEnd, 600);
    EXPECT_FALSE(Follow()) << "nothing changed since";
    ASSERT_TRUE(pFile->Undo());
    EXPECT_TRUE(Follow());
    EXPECT_EQ(vBookmarks[0].sPosition, 600);
    EXPECT_EQ(vRegions[0].sStart, 500);
    ASSERT_TRUE(pFile->Redo());
    Follow();
    EXPECT_EQ(vBookmarks[0].sPosition, 500);
}

TEST_F(MarkFollower, TheListBesideTheFileKeepsPositionsOnDiskUntilItIsSaved)
{
    DeleteFront(100);
    Follow();
    EXPECT_EQ(OnDisk(), 600) << "the file on disk still has the deleted audio";
    EXPECT_EQ(follower.OnDisk(*pFile, "/a.wav", vBookmarks)[1].sPosition, 600);
    follower.Saved(*pFile);
    EXPECT_EQ(OnDisk(), 500);
    DeleteFront(50);
    Follow();
    EXPECT_EQ(vBookmarks[0].sPosition, 450);
    EXPECT_EQ(OnDisk(), 500);

    // A list read beside the file lands on the same audio in the edited document.
    std::vector<LEdBookMark> vRead = {LEdBookMark("read", "/a.wav", 500), LEdBookMark("gone", "/a.wav", 20)};
    follower.FromDisk(*pFile, vRead);
    EXPECT_EQ(vRead[0].sPosition, 450);
    EXPECT_EQ(vRead[1].sPosition, 0);

    // Forgotten, the file is taken afresh as it is on disk.
    follower.Retain({});
    EXPECT_FALSE(Follow());
    EXPECT_EQ(OnDisk(), 450);
}

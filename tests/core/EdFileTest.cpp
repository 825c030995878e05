#include "DocumentTestSupport.h"

#include "core/LEdFile.h"

using namespace doctest;

class EdFile : public DocumentTest
{
};

TEST_F(EdFile, NineEditsThenEightUndosRestoreTheStateAfterTheFirst)
{
    LEdFile file;
    LCutListAudioPtr pSeg = MakeDoc(Ramp(100), 1);
    file.GetDocument() = *pSeg;
    EXPECT_FALSE(file.Undo()) << "nothing to undo right after opening";
    for (int i = 1; i <= 9; ++i) {
        file.StartModify("Delete");
        file.SetSelection(i, i + 1);
        file.GetDocument().EfDelete(0, 1);
    }
    EXPECT_EQ(file.GetUndoLevels(), 8);
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(file.Undo());
    EXPECT_EQ(file.GetDocument().GetLength(), 99);
    EXPECT_EQ(file.GetSelStart(), 1);
    EXPECT_FALSE(file.IsUndoAvailable());
    EXPECT_FALSE(file.Undo());
    EXPECT_EQ(file.GetDocument().GetLength(), 99);
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(pSeg->GetCuts().First()->nRef), 2)
        << "undone snapshots released their references";
}

TEST_F(EdFile, UndoAfterSaveAndEditLeavesTheFileUnmodified)
{
    LEdFile file;
    file.GetDocument() = *MakeDoc(Ramp(10), 1);
    file.StartModify("Amplify");
    file.GetDocument().EfAmplify(0, 5, 150);
    EXPECT_TRUE(file.IsModified());
    file.SetModified(false); // saved
    file.StartModify("Trim");
    file.GetDocument().CropEnd(3);
    EXPECT_TRUE(file.IsModified());
    EXPECT_EQ(file.GetUndoMenuText(), "Undo Trim\tCtrl+Z");
    file.Undo();
    EXPECT_FALSE(file.IsModified());
    EXPECT_EQ(file.GetUndoMenuText(), "Undo Amplify\tCtrl+Z");
    file.Undo();
    EXPECT_FALSE(file.IsModified()) << "as it was when opened";
    EXPECT_EQ(file.GetUndoMenuText(), "Undo \tCtrl+Z");
    EXPECT_EQ(ReadDoc(file.GetDocument()), Ramp(10));
}

TEST_F(EdFile, EndModifyMovesTheCursorAndAsksForPlaybackWhenSet)
{
    LEdFile file;
    file.StartModify(std::string(300, 'x'));
    EXPECT_EQ(file.GetUndoLabel().size(), 259u);
    EXPECT_TRUE(file.EndModify(30000, 44100));
    EXPECT_EQ(file.GetCursor(), 0);
    EXPECT_TRUE(file.EndModify(30000, 22050));
    EXPECT_EQ(file.GetCursor(), 7950);
    LSettings::SetBool("Settings", "AutoPlaybackAfterEffects", false);
    EXPECT_FALSE(file.EndModify(30000, 22050));
    EXPECT_EQ(file.GetCursor(), 30000);
    LSettings::Store().DeleteValue("Settings", "AutoPlaybackAfterEffects");
}

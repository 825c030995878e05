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
    EXPECT_EQ(file.GetRedoLevels(), 8);
    // A new edit drops the redo side and with it the references of the undone states.
    file.StartModify("Delete");
    EXPECT_FALSE(file.IsRedoAvailable());
    EXPECT_FALSE(file.Redo());
    EXPECT_EQ(LAudioCutTank::Instance().GetRefCount(pSeg->GetCuts().First()->nRef), 3)
        << "the segment, the document and the one new snapshot";
}

TEST_F(EdFile, RedoBringsBackExactlyWhatUndoTookBack)
{
    LEdFile file;
    file.GetDocument() = *MakeDoc(Ramp(100), 1);
    const std::vector<int32_t> v0 = ReadDoc(file.GetDocument());
    EXPECT_EQ(file.GetRedoMenuText(), "Redo \tCtrl+Y");
    file.StartModify("Delete");
    file.GetDocument().EfDelete(10, 20);
    file.SetSelection(10, 10);
    const std::vector<int32_t> v1 = ReadDoc(file.GetDocument());
    const std::string szCuts1 = DescribeCuts(file.GetDocument());
    file.StartModify("Amplify");
    file.GetDocument().EfAmplify(0, 50, 200);
    file.SetSelection(0, 50);
    file.SetCursor(50);
    const std::string szCuts2 = DescribeCuts(file.GetDocument());

    ASSERT_TRUE(file.Undo());
    ASSERT_TRUE(file.Undo());
    EXPECT_EQ(ReadDoc(file.GetDocument()), v0);
    EXPECT_EQ(file.GetRedoMenuText(), "Redo Delete\tCtrl+Y");
    EXPECT_EQ(file.GetRedoLevels(), 2);

    ASSERT_TRUE(file.Redo());
    EXPECT_EQ(DescribeCuts(file.GetDocument()), szCuts1);
    EXPECT_EQ(ReadDoc(file.GetDocument()), v1);
    EXPECT_EQ(file.GetSelStart(), 10);
    EXPECT_EQ(file.GetUndoMenuText(), "Undo Delete\tCtrl+Z");
    EXPECT_EQ(file.GetRedoMenuText(), "Redo Amplify\tCtrl+Y");
    ASSERT_TRUE(file.Redo());
    EXPECT_EQ(DescribeCuts(file.GetDocument()), szCuts2);
    EXPECT_EQ(file.GetSelEnd(), 50);
    EXPECT_EQ(file.GetCursor(), 50);
    EXPECT_FALSE(file.Redo()) << "nothing left to redo";
    EXPECT_EQ(file.GetUndoLevels(), 2);
    // And the chain still undoes after the redos.
    ASSERT_TRUE(file.Undo());
    EXPECT_EQ(ReadDoc(file.GetDocument()), v1);
}

TEST_F(EdFile, RedoAfterUndoingPastASaveKeepsTheSavedFlag)
{
    LEdFile file;
    file.GetDocument() = *MakeDoc(Ramp(10), 1);
    file.StartModify("Trim");
    file.GetDocument().CropEnd(5);
    file.SetModified(false); // saved with the trim
    ASSERT_TRUE(file.Undo());
    EXPECT_FALSE(file.IsModified());
    ASSERT_TRUE(file.Redo());
    EXPECT_FALSE(file.IsModified()) << "back to exactly what was saved";
    EXPECT_EQ(file.GetDocument().GetLength(), 5);
}

TEST_F(EdFile, UndoLevelsFollowTheSettingUpToAHundred)
{
    LSettings::SetInt("Settings", "UndoLevels", 20);
    {
        LEdFile file;
        EXPECT_EQ(file.GetUndoCapacity(), 20);
        file.GetDocument() = *MakeDoc(Ramp(100), 1);
        for (int i = 0; i < 25; ++i) {
            file.StartModify("Delete");
            file.GetDocument().EfDelete(0, 1);
        }
        EXPECT_EQ(file.GetUndoLevels(), 20);
        while (file.Undo()) {
        }
        EXPECT_EQ(file.GetDocument().GetLength(), 95) << "twenty of the twenty-five deletes undone";
    }
    LSettings::SetInt("Settings", "UndoLevels", 500);
    EXPECT_EQ(LEdFile().GetUndoCapacity(), 100);
    LSettings::SetInt("Settings", "UndoLevels", 0);
    EXPECT_EQ(LEdFile().GetUndoCapacity(), 1);
    LSettings::Store().DeleteValue("Settings", "UndoLevels");
    EXPECT_EQ(LEdFile().GetUndoCapacity(), 8);
}

TEST_F(EdFile, ANewDepthKeepsTheNewestLevels)
{
    LEdFile file;
    file.GetDocument() = *MakeDoc(Ramp(100), 1);
    for (int i = 1; i <= 6; ++i) {
        file.StartModify("Delete " + std::to_string(i));
        file.GetDocument().EfDelete(0, 1);
    }
    ASSERT_TRUE(file.Undo()); // a redo level, dropped by the new depth
    file.SetUndoCapacity(3);
    EXPECT_EQ(file.GetUndoLevels(), 3);
    EXPECT_FALSE(file.IsRedoAvailable());
    EXPECT_EQ(file.GetUndoLabel(), "Delete 5");
    file.SetUndoCapacity(10);
    EXPECT_EQ(file.GetUndoLevels(), 3);
    file.StartModify("Delete 7");
    file.GetDocument().EfDelete(0, 1);
    EXPECT_EQ(file.GetUndoLevels(), 4);
    EXPECT_EQ(file.GetDocument().GetLength(), 94);
    while (file.Undo()) {
    }
    EXPECT_EQ(file.GetDocument().GetLength(), 98) << "the state before the third delete";
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

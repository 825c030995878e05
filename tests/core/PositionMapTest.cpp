// Marks follow the audio they were set on through the document's edits.
#include "DocumentTestSupport.h"

#include "core/LPositionMap.h"

using namespace doctest;

namespace {

class PositionMap : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        pDoc = MakeDoc(Ramp(1000), 1);
        before = LPositionMap::VersionOf(*pDoc);
    }
    void TearDown() override
    {
        pDoc = LCutListAudioPtr();
        DocumentTest::TearDown();
    }
    LPositionMap After() const { return LPositionMap(before, LPositionMap::VersionOf(*pDoc)); }
    // Whether a mark at s still stands on the sample it stood on (the ramp's value s + 1).
    bool StaysOnItsSample(int32_t s) const { return ReadDoc(*pDoc)[After().Map(s)] == s + 1; }

    LCutListAudioPtr pDoc;
    LPositionMap::Version before;
};

} // namespace

TEST_F(PositionMap, DeletingOrInsertingBeforeAMarkMovesItWithItsAudio)
{
    pDoc->EfDelete(100, 200);
    for (int32_t s : {0, 99, 200, 500, 999})
        EXPECT_TRUE(StaysOnItsSample(s)) << s;
    EXPECT_EQ(After().Map(150), 100) << "a mark in deleted audio stays where the deletion was";
    EXPECT_EQ(After().Map(1000), 900) << "the end stays the end";

    pDoc = MakeDoc(Ramp(1000), 1);
    before = LPositionMap::VersionOf(*pDoc);
    LCutListAudioPtr pOther = MakeDoc(Ramp(50, -1, -1), 1);
    pDoc->Insert(300, *pOther);
    for (int32_t s : {0, 299, 300, 301, 999})
        EXPECT_TRUE(StaysOnItsSample(s)) << s;
    pOther = LCutListAudioPtr();
}

TEST_F(PositionMap, AudioMovedOrRepeatedKeepsTheMarksOutsideIt)
{
    // Cut from the middle and pasted at the start: the runs around it are shared only in part.
    LCutListAudio clip;
    pDoc->Cut(400, 500, clip);
    pDoc->Insert(0, clip);
    clip.Clear();
    EXPECT_TRUE(StaysOnItsSample(999));
    EXPECT_TRUE(StaysOnItsSample(600));
    // The same audio pasted right after itself: the shared start and end must not overlap.
    pDoc = MakeDoc(Ramp(1000), 1);
    before = LPositionMap::VersionOf(*pDoc);
    pDoc->Repeat(0, 1000, 1);
    const LPositionMap map = After();
    EXPECT_EQ(map.Map(0), 0);
    EXPECT_LE(map.Map(999), 1999);
    for (int32_t s = 0; s < 1000; s += 111)
        EXPECT_EQ(ReadDoc(*pDoc)[map.Map(s)], s + 1) << s;
    // Head, middle, the head again; then all but the first head goes. Its end looks like the
    // old end, but marks in the middle must land at the deletion, not before it.
    pDoc = MakeDoc(Ramp(1000), 1);
    pDoc->EfCopy(0, 300, clip);
    pDoc->Insert(1000, clip);
    clip.Clear();
    before = LPositionMap::VersionOf(*pDoc);
    pDoc->EfDelete(300, 1300);
    EXPECT_EQ(After().Map(500), 300);
    EXPECT_EQ(After().Map(100), 100);
}

TEST_F(PositionMap, AnEffectInPlaceKeepsPositionsAndOneThatChangesLengthScalesThem)
{
    pDoc->EfAmplify(200, 400, 50);
    const LPositionMap same = After();
    EXPECT_TRUE(same.IsChange());
    for (int32_t s : {0, 199, 200, 300, 399, 400, 999})
        EXPECT_EQ(same.Map(s), s);

    // The middle replaced by audio twice as long (as a slower speed would give).
    pDoc = MakeDoc(Ramp(1000), 1);
    before = LPositionMap::VersionOf(*pDoc);
    LCutListAudioPtr pLonger = MakeDoc(Ramp(400, 5000), 1);
    pDoc->Replace(200, 400, *pLonger);
    pLonger = LCutListAudioPtr();
    const LPositionMap longer = After();
    EXPECT_EQ(longer.Map(199), 199);
    EXPECT_EQ(longer.Map(300), 400);
    EXPECT_EQ(longer.Map(400), 600);
    EXPECT_EQ(longer.Map(999), 1199);
}

TEST_F(PositionMap, UndoingAnEditMapsBackAndNoEditMapsToItself)
{
    const LPositionMap none(before, before);
    EXPECT_FALSE(none.IsChange());
    EXPECT_EQ(none.Map(123), 123);
    LCutListAudio saved(*pDoc);
    pDoc->EfDelete(10, 60);
    const LPositionMap::Version edited = LPositionMap::VersionOf(*pDoc);
    *pDoc = saved;
    saved.Clear();
    const LPositionMap there(before, edited), back(edited, LPositionMap::VersionOf(*pDoc));
    EXPECT_EQ(there.Map(700), 650);
    EXPECT_EQ(back.Map(there.Map(700)), 700);
    EXPECT_EQ(back.Map(5), 5);
    EXPECT_EQ(back.Map(10), 60) << "the audio brought back comes before a mark at its place";
    // Silence is silence wherever it came from.
    pDoc->InsertSilence(500, 30);
    before = LPositionMap::VersionOf(*pDoc);
    pDoc->EfDelete(500, 530);
    pDoc->InsertSilence(500, 30);
    EXPECT_FALSE(After().IsChange());
}

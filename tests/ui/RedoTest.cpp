// Undo and redo through the frame: the Edit menu's texts, both redo keys, and a new edit that
// takes the redo side away.
#include <QAction>
#include <QtTest>

#include "core/LEdFile.h"
#include "support/DocSupport.h"
#include "UiTestSupport.h"

using namespace uitest;

class RedoTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    QString RedoText() const { return frame->GetAction(CmRedoId)->text(); }
    QString UndoText() const { return frame->GetAction(CmUndoId)->text(); }

    // Presses a key on the frame and lets the queued command run.
    void Press(int nKey, Qt::KeyboardModifiers mods)
    {
        QTest::keyClick(frame.get(), static_cast<Qt::Key>(nKey), mods);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void redoRestoresTheUndoneCutListAndItsLabel()
    {
        LEdFileWindow* pWindow = OpenRamp(8000);
        QVERIFY(pWindow);
        LEdFile& file = pWindow->GetFile();
        QCOMPARE(RedoText(), QString("Redo \tCtrl+Y"));
        QVERIFY(!frame->GetAction(CmRedoId)->isEnabled());

        pWindow->SetSelection(1000, 3000);
        QVERIFY(frame->Command(CmCutId));
        const std::string szAfterCut = testsupport::DescribeCuts(file.GetDocument());
        const std::vector<int16_t> vAfterCut = Samples(file.GetDocument());
        pWindow->SetSelection(200, 400);
        QVERIFY(frame->Command(CmDeleteId));
        const std::string szAfterDelete = testsupport::DescribeCuts(file.GetDocument());

        QVERIFY(frame->Command(CmUndoId));
        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(Samples(file.GetDocument()), vOrig);
        QCOMPARE(RedoText(), QString("Redo Cut\tCtrl+Y"));
        QVERIFY(frame->GetAction(CmRedoId)->isEnabled());
        QVERIFY(!file.IsModified());

        QVERIFY(frame->Command(CmRedoId));
        QCOMPARE(testsupport::DescribeCuts(file.GetDocument()), szAfterCut);
        QCOMPARE(Samples(file.GetDocument()), vAfterCut);
        QCOMPARE(UndoText(), QString("Undo Cut\tCtrl+Z"));
        QCOMPARE(RedoText(), QString("Redo Delete\tCtrl+Y"));
        QVERIFY(file.IsModified());
        QCOMPARE(pWindow->Caption(), QString("ramp.wav *"));

        QVERIFY(frame->Command(CmRedoId));
        QCOMPARE(testsupport::DescribeCuts(file.GetDocument()), szAfterDelete);
        QCOMPARE(RedoText(), QString("Redo \tCtrl+Y"));
        QVERIFY(!frame->Command(CmRedoId)); // nothing left: unavailable
    }

    void bothRedoKeysWork()
    {
        LEdFileWindow* pWindow = OpenRamp(8000);
        QVERIFY(pWindow);
        LEdFile& file = pWindow->GetFile();
        pWindow->SetSelection(0, 4000);
        QVERIFY(frame->Command(CmDeleteId));
        pWindow->SetSelection(0, 1000);
        QVERIFY(frame->Command(CmDeleteId));
        QCOMPARE(file.GetDocument().GetLength(), 3000);
        frame->activateWindow(); // the progress dialog of the load had it
        QVERIFY(QTest::qWaitForWindowActive(frame.get()));

        Press(Qt::Key_Z, Qt::ControlModifier);
        QTRY_COMPARE(file.GetDocument().GetLength(), 4000);
        Press(Qt::Key_Z, Qt::ControlModifier);
        QTRY_COMPARE(file.GetDocument().GetLength(), 8000);
        Press(Qt::Key_Y, Qt::ControlModifier);
        QTRY_COMPARE(file.GetDocument().GetLength(), 4000);
        Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_COMPARE(file.GetDocument().GetLength(), 3000);
    }

    void aNewEditClearsTheRedoSide()
    {
        LEdFileWindow* pWindow = OpenRamp(8000);
        QVERIFY(pWindow);
        pWindow->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId));
        QVERIFY(frame->Command(CmUndoId));
        QVERIFY(frame->GetAction(CmRedoId)->isEnabled());
        pWindow->SetSelection(0, 10);
        QVERIFY(frame->Command(CmTrimId));
        QVERIFY(!frame->GetAction(CmRedoId)->isEnabled());
        QCOMPARE(RedoText(), QString("Redo \tCtrl+Y"));
        QCOMPARE(UndoText(), QString("Undo Trim\tCtrl+Z"));
        QVERIFY(!frame->Command(CmRedoId));
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 10);
    }

    void theRedoSideBelongsToItsFile()
    {
        LEdFileWindow* pFirst = OpenRamp(8000);
        QVERIFY(pFirst);
        pFirst->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId));
        QVERIFY(frame->Command(CmUndoId));
        QVERIFY(frame->Command(CmNewId));
        QCOMPARE(RedoText(), QString("Redo \tCtrl+Y"));
        QVERIFY(!frame->GetAction(CmRedoId)->isEnabled());
    }
};

QTEST_MAIN(RedoTest)
#include "RedoTest.moc"

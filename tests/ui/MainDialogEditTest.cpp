// Editing through the real frame: open, select with the mouse, cut, paste, undo, the clipboard.
#include <QAction>
#include <QClipboard>
#include <QMimeData>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QtTest>

#include <memory>

#include "core/LEdFile.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEdWaveWindow.h"
#include "ui/MainDialog.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
std::vector<int16_t> Slice(const std::vector<int16_t>& v, size_t nFrom, size_t nTo)
{
    return std::vector<int16_t>(v.begin() + nFrom, v.begin() + nTo);
}

std::vector<int16_t> Join(std::vector<int16_t> a, const std::vector<int16_t>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Presses at one column of a display, drags to another and lets go.
void Drag(LEdWaveWindow* pView, int x0, int x1)
{
    const int y = pView->height() / 2;
    QTest::mousePress(pView, Qt::LeftButton, {}, QPoint(x0 + 1, y));
    QTest::mouseMove(pView, QPoint((x0 + x1) / 2 + 1, y));
    QTest::mouseMove(pView, QPoint(x1 + 1, y));
    QTest::mouseRelease(pView, Qt::LeftButton, {}, QPoint(x1 + 1, y));
}
} // namespace

class MainDialogEditTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    LEdFileWindow* OpenDrawnRamp(int nFrames)
    {
        LEdFileWindow* pWindow = OpenRamp(nFrames);
        if (pWindow)
            WaitDrawn(pWindow);
        return pWindow;
    }

    static void WaitDrawn(LEdFileWindow* pWindow)
    {
        QTRY_VERIFY(pWindow->GetDetail()->IsDrawn());
    }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void cutPasteUndoWithTheMouse()
    {
        LEdFileWindow* pWindow = OpenDrawnRamp(8000);
        QVERIFY(pWindow);
        QCOMPARE(frame->windowTitle(), QString("Sonitra - ramp.wav"));
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo \tCtrl+Z"));
        QVERIFY(!frame->GetAction(CmUndoId)->isEnabled());
        QVERIFY(!frame->GetAction(CmCutId)->isEnabled());

        LEdWaveWindow* pDetail = pWindow->GetDetail();
        LWaveGeometry geo = pDetail->GetGeometry();
        QVERIFY(geo.GetWidth() > 320);
        Drag(pDetail, 100, 300);
        const int32_t s = geo.SampleOfColumn(100);
        const int32_t e = geo.SampleOfColumn(300);
        LEdFile& file = pWindow->GetFile();
        QCOMPARE(file.GetSelStart(), s);
        QCOMPARE(file.GetSelEnd(), e);
        QCOMPARE(file.GetCursor(), e);
        QVERIFY(frame->GetAction(CmCutId)->isEnabled());

        QVERIFY(frame->Command(CmCutId));
        const std::vector<int16_t> vAfterCut = Join(Slice(vOrig, 0, s), Slice(vOrig, e, vOrig.size()));
        QCOMPARE(Samples(file.GetDocument()), vAfterCut);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Cut\tCtrl+Z"));
        QVERIFY(file.IsModified());
        QCOMPARE(pWindow->Caption(), QString("ramp.wav *"));

        // A click without motion puts the cursor there with an empty selection.
        WaitDrawn(pWindow);
        geo = pDetail->GetGeometry();
        Drag(pDetail, 40, 40);
        const int32_t c = geo.SampleOfColumn(40);
        QCOMPARE(file.GetCursor(), c);
        QCOMPARE(file.GetSelStart(), file.GetSelEnd());
        QVERIFY(frame->Command(CmPasteId));
        const std::vector<int16_t> vAfterPaste =
            Join(Join(Slice(vAfterCut, 0, c), Slice(vOrig, s, e)), Slice(vAfterCut, c, vAfterCut.size()));
        QCOMPARE(Samples(file.GetDocument()), vAfterPaste);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Paste\tCtrl+Z"));

        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(Samples(file.GetDocument()), vAfterCut);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Cut\tCtrl+Z"));
        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(Samples(file.GetDocument()), vOrig);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo \tCtrl+Z"));
        QVERIFY(!file.IsModified());
        QVERIFY(!frame->Command(CmUndoId)); // nothing left: unavailable
        // The selection came back with the state before the cut.
        QCOMPARE(file.GetSelStart(), s);
        QCOMPARE(file.GetSelEnd(), e);
    }

    void zoomAndScrollThroughTheFileWindow()
    {
        LEdFileWindow* pWindow = OpenDrawnRamp(80000);
        QVERIFY(pWindow);
        LEdFile& file = pWindow->GetFile();
        // A mono file keeps the "L / R" button and command disabled.
        QVERIFY(!pWindow->findChild<QRadioButton*>("radio89")->isEnabled());
        QVERIFY(!frame->GetAction(CmDisplayLeftRightId)->isEnabled());
        pWindow->SetCursorPosition(40000);
        QVERIFY(frame->Command(CmZoomInId));
        QCOMPARE(file.GetViewStart(), 20000);
        QCOMPARE(file.GetViewEnd(), 60000);
        QVERIFY(frame->Command(CmZoomInId));
        QCOMPARE(file.GetViewEnd() - file.GetViewStart(), 20000);
        QVERIFY(frame->Command(CmZoomOutId));
        QCOMPARE(file.GetViewStart(), 20000);
        QCOMPARE(file.GetViewEnd(), 60000);
        WaitDrawn(pWindow);
        QCOMPARE(pWindow->GetDetail()->GetGeometry().GetViewStart(), 20000);
        // The scroll bar moves the cursor two seconds; the view follows it.
        pWindow->GetScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QCOMPARE(file.GetCursor(), 56000);
        pWindow->GetScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QCOMPARE(file.GetCursor(), 72000);
        QVERIFY(file.GetViewStart() <= 72000 && 72000 < file.GetViewEnd());
        QCOMPARE(file.GetViewEnd() - file.GetViewStart(), 40000);
        QTRY_COMPARE(pWindow->GetScrollBar()->value(), 180);
        QVERIFY(frame->Command(CmGoToStartId));
        QCOMPARE(file.GetCursor(), 0);
        QCOMPARE(file.GetViewStart(), 0);
        pWindow->SetSelection(100, 900);
        QVERIFY(frame->Command(CmZoomSelectionId));
        QCOMPARE(file.GetViewEnd(), 900);
        QVERIFY(frame->Command(CmZoomFullId));
        QCOMPARE(file.GetViewEnd(), 80000);
        QCOMPARE(frame->findChild<QLineEdit*>("time2")->text(), QString("0:00:00.100"));
        QVERIFY(frame->Command(CmVerticalZoomId));
        QVERIFY(pWindow->IsVerticalZoom());
        QVERIFY(frame->GetAction(CmVerticalZoomId)->isChecked());
    }

    // Seconds become frames by the engine's rule that the command line shares: 5 ms at
    // 44100 Hz is 220 frames.
    void insertSilenceCountsFramesAsTheCommandLineDoes()
    {
        const QString szPath = h->File("rate.wav");
        WriteWav16(szPath, 44100, 1, std::vector<int16_t>(1000, 3));
        h->prompts.openNames.push_back({szPath});
        QVERIFY(frame->Command(CmOpenId));
        LEdFileWindow* pWindow = frame->GetCurrentFileWindow();
        QVERIFY(pWindow);
        h->prompts.numbers.push_back(0.005);
        QVERIFY(frame->Command(CmInsertSilenceBeginId));
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 1220);
    }

    void trimsSilenceAndInsertions()
    {
        LEdFileWindow* pWindow = OpenDrawnRamp(4000);
        QVERIFY(pWindow);
        LEdFile& file = pWindow->GetFile();
        pWindow->SetSelection(1000, 3000);
        QVERIFY(frame->Command(CmTrimId));
        QCOMPARE(Samples(file.GetDocument()), Slice(vOrig, 1000, 3000));
        pWindow->SetCursorPosition(500);
        QVERIFY(frame->Command(CmTrimStartId));
        QCOMPARE(Samples(file.GetDocument()), Slice(vOrig, 1500, 3000));
        h->prompts.numbers.push_back(0.01); // 80 frames at 8000 Hz
        QVERIFY(frame->Command(CmInsertSilenceBeginId));
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Insert Silence At The Start\tCtrl+Z"));
        QCOMPARE(file.GetDocument().GetLength(), 1580);
        QCOMPARE(Samples(file.GetDocument()).front(), int16_t(0));
        pWindow->SetSelection(0, 80);
        QVERIFY(frame->Command(CmDeleteId));
        QCOMPARE(Samples(file.GetDocument()), Slice(vOrig, 1500, 3000));
        pWindow->SetSelection(0, 100);
        h->prompts.numbers.push_back(2);
        QVERIFY(frame->Command(CmRepeatLoopId));
        QCOMPARE(file.GetDocument().GetLength(), 1700);
        pWindow->SetSelection(10, 20);
        QVERIFY(frame->Command(CmSilenceId));
        QCOMPARE(Samples(file.GetDocument())[15], int16_t(0));
        QCOMPARE(file.GetDocument().GetLength(), 1700);
        // Insert a file at the end.
        const QString szOther = h->File("other.wav");
        WriteWav16(szOther, 8000, 1, std::vector<int16_t>(50, 1234));
        h->prompts.openNames.push_back({szOther});
        QVERIFY(frame->Command(CmInsertFileEndId));
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Insert File At The End\tCtrl+Z"));
        QCOMPARE(file.GetDocument().GetLength(), 1750);
        QCOMPARE(Samples(file.GetDocument()).back(), int16_t(1234));
        for (int i = 0; i < 6; ++i)
            QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(Samples(file.GetDocument()), Slice(vOrig, 1000, 3000));
    }

    void clipboardRoundTrip()
    {
        LEdFileWindow* pWindow = OpenDrawnRamp(6000);
        QVERIFY(pWindow);
        pWindow->SetSelection(1000, 3500);
        QVERIFY(frame->Command(CmCopyId));
        const QMimeData* pMime = QApplication::clipboard()->mimeData();
        QVERIFY(pMime && pMime->hasFormat("audio/wav"));
        QVERIFY(pMime->data("audio/wav").startsWith("RIFF"));

        LSettings::SetInt("Settings", "DefaultSampleRate", 8000);
        LSettings::SetInt("Settings", "DefaultChannels", 1);
        QVERIFY(frame->Command(CmNewId));
        LEdFileWindow* pNew = frame->GetCurrentFileWindow();
        QVERIFY(pNew != pWindow);
        QCOMPARE(QString::fromStdString(pNew->GetName()), QString("Untitled 1"));
        QVERIFY(frame->GetAction(CmPasteFromClipboardId)->isEnabled());
        QVERIFY(frame->Command(CmPasteFromClipboardId));
        QCOMPARE(Samples(pNew->GetFile().GetDocument()), Slice(vOrig, 1000, 3500));
        // The editor's own clipboard pastes the same; over a selection it would replace it.
        pNew->SetSelection(2500, 2500);
        pNew->SetCursorPosition(2500);
        QVERIFY(frame->Command(CmPasteId));
        QCOMPARE(pNew->GetFile().GetDocument().GetLength(), 5000);
        // Copy To New makes a third file of the selection.
        pWindow->SetSelection(0, 10);
        frame->GetMdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
        QVERIFY(frame->Command(CmCopyToNewId));
        QCOMPARE(Samples(frame->GetCurrentFileWindow()->GetFile().GetDocument()), Slice(vOrig, 0, 10));
        QCOMPARE(frame->GetFileWindows().size(), size_t(3));
    }
};

QTEST_MAIN(MainDialogEditTest)
#include "MainDialogEditTest.moc"

// Bookmarks and regions on the waveform: flags at their columns at every zoom, a click on a flag
// and a double click in a region, and the lists and the displays kept in step.
#include <QRegularExpression>
#include <QTreeWidget>
#include <QtTest>

#include <set>

#include "core/LEdFile.h"
#include "ui/LBookmarkListDlg.h"
#include "ui/LEdWaveWindow.h"
#include "ui/LMarkCommands.h"
#include "project/LBookmarkFile.h"
#include "ui/LRegionListDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

class MarkersTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    LEdFileWindow* pWindow = nullptr;

    void SetBookmarkAt(int32_t s)
    {
        pWindow->SetCursorPosition(s);
        QVERIFY(frame->Command(CmSetBookmarkId));
    }

    static QImage Drawn(LEdWaveWindow* pView)
    {
        for (int i = 0; i < 500 && !pView->IsDrawn(); ++i)
            QTest::qWait(10);
        return pView->grab().toImage();
    }

    // What a real double click delivers: press, release, double click, release.
    static void DoubleClick(QWidget* pView, QPoint pt)
    {
        QTest::mouseClick(pView, Qt::LeftButton, {}, pt);
        QTest::mouseDClick(pView, Qt::LeftButton, {}, pt);
        QTest::mouseRelease(pView, Qt::LeftButton, {}, pt);
    }

    static bool IsFlag(const QImage& img, int x, int y) { return img.pixelColor(x, y) == LWaveMarks::kFlag; }

    // Each bookmark's line is drawn at the column of its position, and nowhere near it.
    static void CheckFlags(LEdWaveWindow* pView, const std::vector<int32_t>& vAt, const char* szWhere)
    {
        const QImage img = Drawn(pView);
        const LWaveGeometry geo = pView->GetGeometry();
        const int y = img.height() * 3 / 4; // below the flags' heads and names
        std::set<int> setColumns; // bookmarks close together may share one
        for (int32_t s : vAt) {
            const int c = geo.ColumnOfSample(s);
            if (c < 0 || c >= geo.GetWidth())
                continue;
            setColumns.insert(c);
            QVERIFY2(IsFlag(img, c + 1, y), qPrintable(QString("%1: %2 at column %3").arg(szWhere).arg(s).arg(c)));
        }
        // No line where there is no bookmark.
        int nLines = 0;
        for (int x = 1; x < img.width() - 1; ++x)
            nLines += IsFlag(img, x, y);
        QVERIFY2(nLines == static_cast<int>(setColumns.size()),
                 qPrintable(QString("%1: %2 lines for %3 columns").arg(szWhere).arg(nLines).arg(setColumns.size())));
    }

private slots:
    void init()
    {
        QVERIFY(Start());
        pWindow = OpenRamp(80000);
        QVERIFY(pWindow);
    }
    void cleanup() { Stop(); }

    void flagsStandAtTheirColumnsAtEveryZoom()
    {
        const std::vector<int32_t> vAt{1000, 20000, 20100, 40007, 79999};
        for (int32_t s : vAt)
            SetBookmarkAt(s);
        LEdWaveWindow* pDetail = pWindow->GetDetail();
        QCOMPARE(pDetail->GetMarks().size(), vAt.size());
        pWindow->ZoomFull();
        CheckFlags(pDetail, vAt, "full");
        CheckFlags(pWindow->GetOverview(), vAt, "overview");
        pWindow->SetCursorPosition(20000);
        pWindow->ZoomIn();
        CheckFlags(pDetail, vAt, "zoomed in once");
        pWindow->ZoomIn();
        pWindow->ZoomIn();
        CheckFlags(pDetail, vAt, "zoomed in three times");
        pWindow->SetView(19990, 20300); // a few samples per column: 20000 and 20100 far apart
        CheckFlags(pDetail, vAt, "close up");
        pWindow->SetView(39000, 41000);
        CheckFlags(pDetail, vAt, "one flag in view");
        pWindow->ZoomOut();
        CheckFlags(pDetail, vAt, "zoomed out");
    }

    void clickingAFlagMovesTheCursorThere()
    {
        SetBookmarkAt(30011);
        pWindow->SetCursorPosition(0);
        pWindow->SetView(0, 80000);
        LEdWaveWindow* pDetail = pWindow->GetDetail();
        QTRY_VERIFY(pDetail->IsDrawn());
        const int x = LWaveMarks::FlagX(pDetail->GetGeometry(), 30011);
        QVERIFY(x > 0);
        // Beside the line, on the flag's head: the cursor goes to the bookmark, not the column.
        QTest::mouseClick(pDetail, Qt::LeftButton, {}, QPoint(x + 2, 4));
        QCOMPARE(pWindow->GetFile().GetCursor(), 30011);
        QCOMPARE(pWindow->GetFile().GetSelStart(), pWindow->GetFile().GetSelEnd());
        // Lower down the same column is a plain click.
        QTest::mouseClick(pDetail, Qt::LeftButton, {}, QPoint(x + 2, pDetail->height() / 2));
        QCOMPARE(pWindow->GetFile().GetCursor(), pDetail->GetGeometry().SampleOfColumn(x + 1));
        // On the overview too.
        LEdWaveWindow* pOverview = pWindow->GetOverview();
        QTRY_VERIFY(pOverview->IsDrawn());
        const int xo = LWaveMarks::FlagX(pOverview->GetGeometry(), 30011);
        QTest::mouseClick(pOverview, Qt::LeftButton, {}, QPoint(xo, 3));
        QCOMPARE(pWindow->GetFile().GetCursor(), 30011);
    }

    void doubleClickingARegionSelectsIt()
    {
        pWindow->SetSelection(10000, 30000);
        QVERIFY(frame->Command(CmAddRegionId));
        pWindow->SetSelection(20000, 22000); // a shorter one inside the first
        QVERIFY(frame->Command(CmAddRegionId));
        pWindow->SetSelection(0, 0);
        pWindow->SetView(0, 80000);
        LEdWaveWindow* pDetail = pWindow->GetDetail();
        QTRY_VERIFY(pDetail->IsDrawn());
        const LWaveGeometry geo = pDetail->GetGeometry();
        const int y = pDetail->height() / 2;
        DoubleClick(pDetail, QPoint(geo.ColumnOfSample(15000) + 1, y));
        QCOMPARE(pWindow->GetFile().GetSelStart(), 10000);
        QCOMPARE(pWindow->GetFile().GetSelEnd(), 30000);
        QCOMPARE(frame->GetCurrentFileWindow(), pWindow);
        DoubleClick(pDetail, QPoint(geo.ColumnOfSample(21000) + 1, y));
        QCOMPARE(pWindow->GetFile().GetSelStart(), 20000);
        QCOMPARE(pWindow->GetFile().GetSelEnd(), 22000);
        // Outside every region a double click is a click.
        DoubleClick(pDetail, QPoint(geo.ColumnOfSample(50000) + 1, y));
        QCOMPARE(pWindow->GetFile().GetSelStart(), pWindow->GetFile().GetSelEnd());
        // The span is shaded: its columns differ from the same file without it.
        const QImage withRegions = Drawn(pDetail);
        frame->GetMarks().GetRegions().clear();
        frame->GetMarks().RegionsChanged();
        const QImage without = Drawn(pDetail);
        const int x = geo.ColumnOfSample(12000) + 1;
        QVERIFY(withRegions.pixelColor(x, 5) != without.pixelColor(x, 5));
        const int xOut = geo.ColumnOfSample(60000) + 1;
        QCOMPARE(withRegions.pixelColor(xOut, 5), without.pixelColor(xOut, 5));
    }

    void listsAndWaveformsStayInStep()
    {
        SetBookmarkAt(5000);
        LEdWaveWindow* pDetail = pWindow->GetDetail();
        QCOMPARE(pDetail->GetMarks().size(), size_t(1));
        QCOMPARE(pDetail->GetMarks()[0].szName, QString("Bookmark 1"));
        {
            LBookmarkListDlg dlg(*frame, frame->GetMarks());
            QCOMPARE(dlg.GetList()->topLevelItem(0)->text(3), QString("-")); // never visited
            dlg.Rename(0, "Chorus");
            QCOMPARE(pDetail->GetMarks()[0].szName, QString("Chorus"));
            QCOMPARE(pWindow->GetOverview()->GetMarks()[0].szName, QString("Chorus"));
            QVERIFY(frame->GetMarks().GoToBookmark(0));
            dlg.Fill();
            QVERIFY(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$")
                        .match(dlg.GetList()->topLevelItem(0)->text(3))
                        .hasMatch());
            dlg.Delete(0);
            QVERIFY(pDetail->GetMarks().empty());
        }
        pWindow->SetSelection(100, 900);
        QVERIFY(frame->Command(CmAddRegionId));
        QCOMPARE(pDetail->GetMarks().size(), size_t(1));
        QVERIFY(pDetail->GetMarks()[0].bRegion);
        QCOMPARE(pDetail->GetMarks()[0].sStart, 100);
        QCOMPARE(pDetail->GetMarks()[0].sEnd, 900);
        {
            LRegionListDlg dlg(*frame, frame->GetMarks());
            dlg.Rename(0, "Intro");
            QCOMPARE(pDetail->GetMarks()[0].szName, QString("Intro"));
            dlg.Delete(0);
            QVERIFY(pDetail->GetMarks().empty());
        }
        // A second file has marks of its own only.
        SetBookmarkAt(10);
        LEdFileWindow* pOther = OpenRamp(1000);
        QVERIFY(pOther);
        QVERIFY(pOther->GetDetail()->GetMarks().empty());
        QCOMPARE(pDetail->GetMarks().size(), size_t(1));
    }

    // Marks stay on their audio through edits, undo and redo, while the list beside the file
    // speaks of the file on disk: it follows a save, and edits thrown away never reach it.
    void marksFollowTheirAudioAndTheListBesideTheFileFollowsSaves()
    {
        const std::string szPath = pWindow->GetPath();
        const auto onDisk = [&] {
            std::vector<LEdBookMark> v;
            LBookmarkFile::Load(szPath, v);
            return v.size() == 1 ? v[0].sPosition : -1;
        };
        const auto edit = [&](int nId, int32_t sEnd) {
            pWindow->SetSelection(0, sEnd);
            QVERIFY(frame->Command(nId));
        };
        const std::vector<LEdBookMark>& vMarks = frame->GetMarks().GetBookmarks();
        const std::vector<LEdRegion>& vRegions = frame->GetMarks().GetRegions();
        SetBookmarkAt(60000);
        pWindow->SetSelection(55000, 57000);
        QVERIFY(frame->Command(CmAddRegionId));

        edit(CmDeleteId, 10000);
        QCOMPARE(vMarks[0].sPosition, 50000);
        QCOMPARE(vRegions[0].sStart, 45000);
        QCOMPARE(vRegions[0].sEnd, 47000);
        QCOMPARE(onDisk(), 60000);
        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(vMarks[0].sPosition, 60000);
        QVERIFY(frame->Command(CmRedoId));
        QCOMPARE(vMarks[0].sPosition, 50000);
        QCOMPARE(int(Samples(pWindow->GetFile().GetDocument())[50000]), int(vOrig[60000]));

        QVERIFY(frame->Command(CmSaveId));
        QCOMPARE(onDisk(), 50000);
        edit(CmDeleteId, 5000);
        QCOMPARE(vMarks[0].sPosition, 45000);
        QCOMPARE(onDisk(), 50000);
        h->prompts.answers.push_back(LUiPrompts::AnswerNo); // the changes are thrown away
        QVERIFY(frame->Command(CmCloseId));
        QCOMPARE(onDisk(), 50000);
        h->prompts.openNames.push_back({QString::fromStdString(szPath)});
        QVERIFY(frame->Command(CmOpenId));
        QCOMPARE(vMarks.size(), size_t(1));
        QCOMPARE(vMarks[0].sPosition, 50000);
        QCOMPARE(int(Samples(frame->GetCurrentFile()->GetDocument())[50000]), int(vOrig[60000]));
    }
};

QTEST_MAIN(MarkersTest)
#include "MarkersTest.moc"

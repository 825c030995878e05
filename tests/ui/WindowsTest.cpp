// The frame's file windows: the Window menu follows them, a file opened twice keeps one window,
// new windows land inside the area, and a file window's controls never cover its waveforms.
#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScrollBar>
#include <QtTest>

#include "core/LEdFile.h"
#include "ui/LEdWaveWindow.h"
#include "UiTestSupport.h"

using namespace uitest;

class WindowsTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    // The file windows' items of the Window menu, in order.
    QStringList WindowItems() const
    {
        QStringList v;
        for (int i = 1; QAction* p = frame->findChild<QAction*>(QString("window%1").arg(i)); ++i)
            v << p->text();
        return v;
    }

    QString Wav(const QString& szName, int nFrames = 800)
    {
        const QString szPath = h->File(szName);
        WriteWav16(szPath, 8000, 1, Ramp(nFrames));
        return szPath;
    }

    bool Open(const QString& szPath)
    {
        h->prompts.openNames.push_back({szPath});
        return frame->Command(CmOpenId);
    }

    static QMdiSubWindow* SubOf(LEdFileWindow* p) { return qobject_cast<QMdiSubWindow*>(p->parentWidget()); }

    // The displays and the controls of a file window never share a pixel.
    static void CheckNoOverlap(LEdFileWindow* p, const char* szWhere)
    {
        const QRect rcRow = p->GetControlRow()->geometry();
        const QRect rcBar = p->GetScrollBar()->geometry();
        for (LEdWaveWindow* pWave : {p->GetDetail(), p->GetOverview()}) {
            if (!pWave->isVisible())
                continue;
            const QRect rcWave = pWave->geometry();
            QVERIFY2(!rcWave.intersects(rcRow), szWhere);
            QVERIFY2(!rcWave.intersects(rcBar), szWhere);
            QVERIFY2(p->rect().contains(rcWave), szWhere);
        }
        QVERIFY2(!rcRow.intersects(rcBar), szWhere);
        QVERIFY2(!p->GetDetail()->geometry().intersects(p->GetOverview()->geometry()) ||
                     !p->GetOverview()->isVisible() || !p->GetDetail()->isVisible(),
                 szWhere);
    }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void theWindowMenuFollowsOpenAndClose()
    {
        QVERIFY(WindowItems().isEmpty());
        QVERIFY(Open(Wav("one.wav")));
        LEdFileWindow* pOne = frame->GetCurrentFileWindow();
        QVERIFY(Open(Wav("two.wav")));
        LEdFileWindow* pTwo = frame->GetCurrentFileWindow();
        QVERIFY(pOne != pTwo);
        QTRY_COMPARE(WindowItems(), QStringList({"&1 one.wav", "&2 two.wav"}));
        QVERIFY(frame->findChild<QAction*>("window2")->isChecked());

        // Choosing an item activates its window.
        frame->findChild<QAction*>("window1")->trigger();
        QCOMPARE(frame->GetCurrentFileWindow(), pOne);
        QTRY_VERIFY(frame->findChild<QAction*>("window1") && frame->findChild<QAction*>("window1")->isChecked());

        // A renamed (modified) file is renamed in the menu too.
        pOne->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId));
        QTRY_COMPARE(WindowItems(), QStringList({"&1 one.wav *", "&2 two.wav"}));

        // A minimized window comes back when chosen.
        SubOf(pTwo)->showMinimized();
        frame->findChild<QAction*>("window2")->trigger();
        QCOMPARE(frame->GetCurrentFileWindow(), pTwo);
        QVERIFY(!SubOf(pTwo)->isMinimized());

        QVERIFY(frame->Command(CmCloseId));
        QTRY_COMPARE(WindowItems(), QStringList({"&1 one.wav *"}));
        h->prompts.answers.push_back(LUiPrompts::AnswerNo);
        QVERIFY(frame->Command(CmCloseAllId));
        QTRY_VERIFY(WindowItems().isEmpty());
    }

    void aSecondOpenOfTheSamePathActivatesTheFirstWindow()
    {
        const QString szPath = Wav("same.wav");
        QVERIFY(Open(szPath));
        LEdFileWindow* pFirst = frame->GetCurrentFileWindow();
        pFirst->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId)); // changes that a second copy would hide
        QVERIFY(Open(Wav("other.wav")));
        QVERIFY(frame->GetCurrentFileWindow() != pFirst);

        QVERIFY(Open(QDir(h->dir.path()).filePath("./same.wav")));
        QCOMPARE(frame->GetCurrentFileWindow(), pFirst);
        QCOMPARE(frame->GetFileWindows().size(), size_t(2));
        QCOMPARE(pFirst->GetFile().GetDocument().GetLength(), 700);
        QVERIFY(h->prompts.informs.isEmpty());
        // Through a link to it as well.
        QVERIFY(QFile::link(szPath, h->File("link.wav")));
        QVERIFY(Open(h->File("link.wav")));
        QCOMPARE(frame->GetCurrentFileWindow(), pFirst);
        QCOMPARE(frame->GetFileWindows().size(), size_t(2));
    }

    void newWindowsLieInsideTheArea_data()
    {
        QTest::addColumn<int>("nWindows");
        QTest::newRow("1") << 1;
        QTest::newRow("4") << 4;
        QTest::newRow("12") << 12;
    }
    void newWindowsLieInsideTheArea()
    {
        QFETCH(int, nWindows);
        QCOMPARE(frame->size(), QSize(1000, 700));
        const QRect area = frame->GetMdiArea()->viewport()->rect();
        QPoint ptLast(-1, -1);
        for (int i = 0; i < nWindows; ++i) {
            QVERIFY(Open(Wav(QString("w%1.wav").arg(i))));
            QMdiSubWindow* pSub = SubOf(frame->GetCurrentFileWindow());
            QVERIFY(pSub);
            QVERIFY2(area.contains(pSub->geometry()), qPrintable(QString("window %1").arg(i)));
            QVERIFY(pSub->geometry().topLeft() != ptLast); // cascading, not stacked
            ptLast = pSub->geometry().topLeft();
        }
        // Every one is still inside once all are open.
        for (QMdiSubWindow* pSub : frame->GetMdiArea()->subWindowList())
            QVERIFY(area.contains(pSub->geometry()));
    }

    void theControlsNeverCoverTheWaveforms()
    {
        for (int i = 0; i < 4; ++i)
            QVERIFY(Open(Wav(QString("t%1.wav").arg(i), 8000)));
        QVERIFY(frame->Command(CmTileHorizontalId));
        QCoreApplication::processEvents();
        for (LEdFileWindow* p : frame->GetFileWindows())
            CheckNoOverlap(p, "tiled in four");
        QVERIFY(frame->Command(CmTileVerticalId));
        QCoreApplication::processEvents();
        for (LEdFileWindow* p : frame->GetFileWindows())
            CheckNoOverlap(p, "side by side");
        // And at any size of one window, down to nothing.
        LEdFileWindow* p = frame->GetCurrentFileWindow();
        QMdiSubWindow* pSub = SubOf(p);
        for (int nHeight : {600, 300, 200, 150, 120, 100, 80, 60, 40}) {
            pSub->resize(300, nHeight);
            QCoreApplication::processEvents();
            CheckNoOverlap(p, qPrintable(QString("height %1").arg(nHeight)));
        }
        // A display that has room still gets a useful share.
        pSub->resize(400, 200);
        QCoreApplication::processEvents();
        QVERIFY(p->GetDetail()->isVisible());
        QVERIFY(p->GetDetail()->height() >= 20);
    }

    void fileWindowsShowTheProgramsIcon()
    {
        QVERIFY(Open(Wav("icon.wav")));
        const QIcon icon = SubOf(frame->GetCurrentFileWindow())->windowIcon();
        QVERIFY(!icon.isNull());
        QCOMPARE(icon.pixmap(48, 48).toImage(), MainDialog::AppIcon().pixmap(48, 48).toImage());
        QCOMPARE(frame->windowIcon().pixmap(48, 48).toImage(), MainDialog::AppIcon().pixmap(48, 48).toImage());
        QVERIFY(!QImage(":/icons/sonitra-48.png").isNull());
    }
};

QTEST_MAIN(WindowsTest)
#include "WindowsTest.moc"

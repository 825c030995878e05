// The Qt faces of the engine's seams: wake-ups from worker threads reach the event loop, and the
// progress dialog disables its parent, pumps events and cancels.
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

#include <atomic>
#include <thread>

#include "platform/qtcore/LQtNotifyPoster.h"
#include "ui/LQtProgressHost.h"
#include "work/LProgressDialog.h"

namespace {
class Probe : public LThreadQueuedNotify
{
public:
    std::atomic<int> nCalls{0};
    std::thread::id idThread;

protected:
    void OnNotify() override
    {
        ++nCalls;
        idThread = std::this_thread::get_id();
    }
};

// A body that clicks Cancel halfway and reports what it then sees.
class CancelledBody : public LProgressDialog
{
public:
    CancelledBody(QWidget* pParent) : LProgressDialog("Working"), pParent(pParent) {}
    int32_t Process() override
    {
        SetText("Step one", 0);
        SetText("Please wait...", 1);
        SetText("ignored", 2);
        SetProgress(0.996);
        auto* pWindow = QApplication::topLevelWidgets().isEmpty() ? nullptr : FindWindow();
        if (!pWindow)
            return 2;
        bParentDisabled = !pParent->isEnabled();
        szLine0 = pWindow->findChild<QLabel*>("line100")->text();
        nBar = pWindow->findChild<QProgressBar*>("bar102")->value();
        if (IsCancelled())
            return 2;
        QMetaObject::invokeMethod(pWindow->findChild<QPushButton*>("cancel"), "click", Qt::QueuedConnection);
        for (int i = 0; i < 1000 && !IsCancelled(); ++i)
            QThread::msleep(1);
        return IsCancelled() ? 1 : 0;
    }
    static QWidget* FindWindow()
    {
        for (QWidget* p : QApplication::topLevelWidgets())
            if (p->objectName() == "LProgressDialog" && p->isVisible())
                return p;
        return nullptr;
    }
    QWidget* pParent;
    bool bParentDisabled = false;
    QString szLine0;
    int nBar = -1;
};
} // namespace

class QtSeamsTest : public QObject
{
    Q_OBJECT
private slots:
    void wakeUpsRunOnTheUserInterfaceThread()
    {
        LQtNotifyPoster poster;
        poster.Install();
        Probe probe;
        std::thread worker([&] {
            for (int i = 0; i < 100; ++i)
                probe.Notify();
        });
        worker.join();
        QTRY_VERIFY(probe.nCalls > 0);
        QVERIFY(probe.nCalls <= 100); // wake-ups merge
        QCOMPARE(probe.idThread, std::this_thread::get_id());
    }

    void progressDialogDisablesItsParentAndCancels()
    {
        QWidget parent;
        parent.show();
        LQtProgressHostFactory factory(&parent);
        CancelledBody body(&parent);
        QCOMPARE(body.Run(&factory), 1);
        QVERIFY(body.bParentDisabled);
        QCOMPARE(body.szLine0, QString("Step one"));
        QCOMPARE(body.nBar, 99);
        QVERIFY(parent.isEnabled());
        QVERIFY(CancelledBody::FindWindow() == nullptr);
    }
};

QTEST_MAIN(QtSeamsTest)
#include "QtSeamsTest.moc"

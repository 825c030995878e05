// Recovery end to end: the built editor runs under a virtual display, opens a file, makes three
// edits and is killed; started again, it offers the session, recovering is accepted, and the
// document is the one after the third edit, sample for sample. The editor is driven by its
// test script hook (SONITRA_TEST_SCRIPT) in folders of the test's own.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/types.h>

#include "formats/LAudioFile.h"
#include "UiTestSupport.h"

using namespace uitest;

class RecoveryEndToEndTest : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir dir;

    QString Path(const QString& szName) const { return dir.filePath(szName); }

    void WriteText(const QString& szName, const QByteArray& text)
    {
        QFile f(Path(szName));
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text);
    }

    // The editor under xvfb-run, in the test's own home, cache, configuration and runtime folders.
    void StartEditor(QProcess& process, const QString& szScript)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", Path("home"));
        env.insert("XDG_CACHE_HOME", Path("cache"));
        env.insert("XDG_CONFIG_HOME", Path("config"));
        env.insert("XDG_RUNTIME_DIR", Path("run"));
        env.insert("SONITRA_AUDIO_DEVICE", "virtual");
        env.insert("SONITRA_TEST_SCRIPT", Path(szScript));
        env.remove("QT_QPA_PLATFORM");
        process.setProcessEnvironment(env);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("xvfb-run", {"-a", SONITRA_APP_PATH});
        QVERIFY(process.waitForStarted(30000));
    }

    // Waits for the script to reach its mark; the editor's process id is in it.
    qint64 WaitForMark(QProcess& process, const QString& szMark)
    {
        QFile f(Path(szMark));
        for (int i = 0; i < 1200 && !f.exists() && process.state() != QProcess::NotRunning; ++i)
            process.waitForFinished(100);
        if (!f.open(QIODevice::ReadOnly))
            return 0;
        return f.readAll().trimmed().toLongLong();
    }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable("xvfb-run").isEmpty())
            QSKIP("xvfb-run is not installed");
        for (const char* sz : {"home", "cache", "config/Korvane", "run"})
            QVERIFY(QDir().mkpath(Path(sz)));
        QFile::setPermissions(Path("run"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        WriteText("config/Korvane/Sonitra.conf", "[Settings]\nAutoPlaybackAfterEffects=0\n");
    }

    void aKilledEditorsDocumentComesBack()
    {
        WriteWav16(Path("in.wav"), 8000, 1, Ramp(16000));
        WriteText("first.txt", "open " + Path("in.wav").toUtf8() +
                                   "\nselect 1000 3000\ncommand 2006\n"
                                   "select 0 500\ncommand 2014\n"
                                   "select 2000 9000\ncommand 2010\n"
                                   "render " + Path("expected.wav").toUtf8() + "\nmark " + Path("killed").toUtf8() + "\n");
        QProcess first;
        StartEditor(first, "first.txt");
        const qint64 pid = WaitForMark(first, "killed");
        QVERIFY2(pid > 0, "the first editor never reached its mark");
        QCOMPARE(::kill(static_cast<pid_t>(pid), SIGKILL), 0);
        QVERIFY(first.state() == QProcess::NotRunning || first.waitForFinished(60000));
        QVERIFY(QDir(Path("cache/sonitra")).entryList({"segments-*"}, QDir::Dirs).size() == 1);

        // Yes to recovering; then No to saving the recovered file when the editor closes.
        WriteText("second.txt", "answer yes\nanswer no\nrender " + Path("actual.wav").toUtf8() + "\nmark " +
                                    Path("recovered").toUtf8() + "\nquit\n");
        QProcess second;
        StartEditor(second, "second.txt");
        const qint64 pidSecond = WaitForMark(second, "recovered");
        QVERIFY(second.state() == QProcess::NotRunning || second.waitForFinished(60000));
        const QByteArray log = second.readAll();
        QVERIFY2(pidSecond > 0, log.constData());
        QVERIFY2(log.contains("question: Sonitra did not close normally last time."), log.constData());
        QVERIFY2(log.contains("question: Save changes to \"in.wav\"?"), "recovered as a modified in.wav");

        QFile expected(Path("expected.wav")), actual(Path("actual.wav"));
        QVERIFY(expected.open(QIODevice::ReadOnly) && actual.open(QIODevice::ReadOnly));
        const QByteArray vWant = expected.readAll();
        QCOMPARE(LAudioFile::OpenSource(Path("expected.wav").toStdString())->GetLength(), 7000); // the trim kept 7000
        QCOMPARE(actual.readAll(), vWant);
        // The killed session's folder is gone, and so is the one that closed normally.
        QVERIFY(QDir(Path("cache/sonitra")).entryList({"segments-*"}, QDir::Dirs).isEmpty());
    }
};

QTEST_MAIN(RecoveryEndToEndTest)
#include "RecoveryEndToEndTest.moc"

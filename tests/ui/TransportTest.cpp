// The transport through the real frame on the virtual sound device: play to the end, play after
// an edit, record into a new file, rewind while held.
#include <QAction>
#include <QSignalSpy>
#include <QtTest>

#include <cstdlib>
#include <memory>

#include "core/LEdFile.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/MainDialog.h"
#include "UiTestSupport.h"

using namespace uitest;

class TransportTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;
    std::unique_ptr<MainDialog> frame;

    LEdFileWindow* OpenRamp(int nFrames)
    {
        const QString szPath = h->File("t.wav");
        WriteWav16(szPath, 8000, 1, Ramp(nFrames));
        h->prompts.openNames.push_back({szPath});
        frame->Command(CmOpenId);
        return frame->GetCurrentFileWindow();
    }

private slots:
    void initTestCase()
    {
        // A device with no hardware, running ten times faster than real time.
        setenv("SONITRA_AUDIO_DEVICE", "virtual", 1);
        setenv("SONITRA_VIRTUAL_SPEED", "10", 1);
    }

    void init()
    {
        h = std::make_unique<Harness>();
        frame = std::make_unique<MainDialog>();
        frame->show();
    }

    void cleanup()
    {
        frame.reset();
        h.reset();
    }

    void playsToTheEndWithTheCursorFollowing()
    {
        LEdFileWindow* pWindow = OpenRamp(8000);
        QVERIFY(pWindow);
        QVERIFY(frame->GetAction(CmPlayId)->isEnabled());
        QVERIFY(frame->Command(CmPlayId));
        QVERIFY(frame->GetTransport().IsPlaying());
        QVERIFY(frame->GetAction(CmStopId)->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(!frame->GetTransport().IsPlaying(), 10000);
        QCOMPARE(pWindow->GetFile().GetCursor(), 8000);
        QVERIFY(h->prompts.informs.isEmpty());
        // From the last second, play starts over from the beginning.
        QVERIFY(frame->Command(CmPlayId));
        QVERIFY(pWindow->GetFile().GetCursor() < 8000);
        QVERIFY(frame->Command(CmStopId));
        QVERIFY(!frame->GetTransport().IsPlaying());
    }

    void playsAfterAnEditFromBeforeIt()
    {
        LEdFileWindow* pWindow = OpenRamp(40000);
        QVERIFY(pWindow);
        LSettings::SetBool("Settings", "AutoPlaybackAfterEffects", true);
        pWindow->SetSelection(20000, 24000);
        QVERIFY(frame->Command(CmDeleteId));
        QVERIFY(frame->GetTransport().IsPlaying());
        // One second of pre-roll before the edit.
        QVERIFY(pWindow->GetFile().GetCursor() >= 12000);
        QVERIFY(pWindow->GetFile().GetCursor() < 20000);
        QVERIFY(frame->Command(CmStopId));
    }

    void recordsIntoANewFile()
    {
        LSettings::SetInt("Settings", "DefaultSampleRate", 8000);
        LSettings::SetInt("Settings", "DefaultChannels", 1);
        QVERIFY(frame->GetCurrentFileWindow() == nullptr);
        QSignalSpy spy(&frame->GetTransport(), &LTransport::PositionChanged);
        QVERIFY(frame->Command(CmRecordId));
        LEdFileWindow* pWindow = frame->GetCurrentFileWindow();
        QVERIFY(pWindow);
        QVERIFY(frame->GetTransport().IsRecording());
        QTRY_VERIFY(spy.count() >= 2); // a few blocks have arrived
        QVERIFY(frame->Command(CmStopId));
        QVERIFY(!frame->GetTransport().IsRecording());
        QVERIFY(pWindow->GetFile().GetDocument().GetLength() > 0);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Record\tCtrl+Z"));
        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 0);
    }

    void voiceActivatedRecordingKeepsNothingOfSilence()
    {
        LSettings::SetInt("Settings", "DefaultSampleRate", 8000);
        LSettings::SetBool("Recorder", "Vor", true);
        LSettings::SetInt("Recorder", "Threshold", -30);
        QSignalSpy spy(&frame->GetTransport(), &LTransport::PositionChanged);
        QVERIFY(frame->Command(CmRecordId));
        QVERIFY(frame->GetTransport().IsRecording());
        QTRY_VERIFY(spy.count() >= 2); // the virtual device records silence
        QVERIFY(frame->Command(CmStopId));
        QCOMPARE(frame->GetCurrentFileWindow()->GetFile().GetDocument().GetLength(), 0);
    }

    void rewindsWhileHeld()
    {
        LEdFileWindow* pWindow = OpenRamp(80000);
        QVERIFY(pWindow);
        pWindow->SetCursorPosition(60000);
        QVERIFY(frame->Command(CmRewindId));
        QVERIFY(frame->GetTransport().IsShuttling());
        QTest::qWait(100);
        frame->GetTransport().EndShuttle();
        QVERIFY(!frame->GetTransport().IsPlaying());
        // The initial jump back is a fifth of a second; playing backwards moves on from there.
        QVERIFY(pWindow->GetFile().GetCursor() <= 60000 - 1600);
    }
};

QTEST_MAIN(TransportTest)
#include "TransportTest.moc"

// The Effects menu through the real frame: dialog, process, undo label, and a refused value
// that leaves the file alone.
#include <QAction>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

#include "core/LEdFile.h"
#include "dsp/effects/LStoredValues.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/MainDialog.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
void Type(LEffectSettingsDlg& dlg, const char* szKey, const QString& sz)
{
    qobject_cast<QLineEdit*>(dlg.FieldOf(szKey))->setText(sz);
}
} // namespace

class EffectMenuTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    QString UndoText() const { return frame->GetAction(CmUndoId)->text(); }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void echoRunsOnTheSelectionWithItsUndoLabel()
    {
        LEdFileWindow* pWindow = OpenRamp(8000);
        QVERIFY(pWindow);
        pWindow->SetSelection(1000, 5000);
        QVERIFY(frame->GetAction(EffectCommand("echo"))->isEnabled());
        WhenDialogShows<LEffectSettingsDlg>([](LEffectSettingsDlg& dlg) {
            Type(dlg, "EchoTime", "100");
            Type(dlg, "EchoGain", "50");
            dlg.accept();
        });
        QVERIFY(frame->Command(EffectCommand("echo")));
        QCOMPARE(UndoText(), QString("Undo Echo\tCtrl+Z"));
        QCOMPARE(LStoredValues::Get("EchoTime"), 100);
        const auto v = Samples(pWindow->GetFile().GetDocument());
        QCOMPARE(v.size(), vOrig.size());
        QCOMPARE(v[999], vOrig[999]);
        QCOMPARE(v[1000], vOrig[1000]);
        QVERIFY(v[1900] != vOrig[1900]); // 800 frames into the echo
        QCOMPARE(v[5000], vOrig[5000]);
        QVERIFY(frame->Command(CmUndoId));
        QCOMPARE(Samples(pWindow->GetFile().GetDocument()), vOrig);
    }

    void constantPitchSpeedChangeShortensTheSelection()
    {
        LEdFileWindow* pWindow = OpenRamp(44100);
        QVERIFY(pWindow);
        pWindow->SetSelection(0, 40000);
        WhenDialogShows<LEffectSettingsDlg>([](LEffectSettingsDlg& dlg) {
            Type(dlg, "ConstPitchSpeed", "200");
            dlg.accept();
        });
        QVERIFY(frame->Command(EffectCommand("constant-pitch-and-speed-change")));
        QCOMPARE(UndoText(), QString("Undo Constant Pitch and Speed Change\tCtrl+Z"));
        QCOMPARE(LStoredValues::Get("ConstPitchSpeed"), 200);
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 20000 + 4100);
        WhenDialogShows<LEffectSettingsDlg>([this](LEffectSettingsDlg& dlg) {
            Type(dlg, "ConstSpeedPitch", "301");
            dlg.accept();
            QCOMPARE(h->prompts.informs.last(), QString("Sonitra: Speed Change Percent must be less than 300."));
            dlg.reject();
        });
        QVERIFY(frame->Command(EffectCommand("constant-speed-and-pitch-change")));
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 24100);
    }

    void refusedValueChangesNothing()
    {
        LEdFileWindow* pWindow = OpenRamp(4000);
        QVERIFY(pWindow);
        WhenDialogShows<LEffectSettingsDlg>([this](LEffectSettingsDlg& dlg) {
            Type(dlg, "ReverbTime", "1001");
            dlg.accept();
            QVERIFY(dlg.isVisible());
            QCOMPARE(h->prompts.informs.last(), QString("Sonitra: Reverb time must be between 50 and 1000. Please try again."));
            dlg.reject();
        });
        QVERIFY(frame->Command(EffectCommand("reverb")));
        QCOMPARE(UndoText(), QString("Undo \tCtrl+Z"));
        QVERIFY(!pWindow->GetFile().IsModified());
        QCOMPARE(Samples(pWindow->GetFile().GetDocument()), vOrig);
        QCOMPARE(LSettings::GetString("StoredValues", "ReverbTime"), std::string());
    }

    void commandsWithoutDialogsAndWholeFileConversions()
    {
        LEdFileWindow* pWindow = OpenRamp(4000);
        QVERIFY(pWindow);
        pWindow->SetSelection(100, 300);
        QVERIFY(frame->Command(EffectCommand("reverse")));
        QCOMPARE(UndoText(), QString("Undo Reverse\tCtrl+Z"));
        const auto v = Samples(pWindow->GetFile().GetDocument());
        QCOMPARE(v[100], vOrig[299]);
        QCOMPARE(v[299], vOrig[100]);
        QCOMPARE(v[300], vOrig[300]);

        QVERIFY(!frame->GetAction(CmMonoId)->isEnabled());
        QVERIFY(frame->Command(CmStereoId));
        QCOMPARE(pWindow->GetFile().GetDocument().GetChannels(), uint8_t(2));
        QCOMPARE(UndoText(), QString("Undo Convert Channels\tCtrl+Z"));
        QVERIFY(frame->GetAction(CmMonoId)->isEnabled());

        QVERIFY(frame->GetAction(EffectCommand("simple-speed-and-pitch-change"))->isEnabled());
        QVERIFY(frame->GetAction(EffectCommand("constant-pitch-and-speed-change"))->isEnabled());
        QVERIFY(frame->GetAction(EffectCommand("constant-speed-and-pitch-change"))->isEnabled());
        QVERIFY(frame->GetAction(EffectCommand("fade-out-and-trim"))->isEnabled());
        QVERIFY(frame->Command(EffectCommand("fade-out-and-trim")));
        QCOMPARE(UndoText(), QString("Undo Fade Out and Trim\tCtrl+Z"));
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 300);
    }
};

QTEST_MAIN(EffectMenuTest)
#include "EffectMenuTest.moc"

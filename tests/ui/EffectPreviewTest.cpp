// The Preview button of the effect dialogs on the virtual sound device: the button and Space
// start and stop it, a changed value restarts it, closing the dialog stops it, and the file is
// never touched.
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <cstdlib>

#include "core/LEdFile.h"
#include "devices/LEffectPreview.h"
#include "devices/LVirtualWave.h"
#include "dsp/effects/LEffectCatalog.h"
#include "ui/effects/LCurveDlg.h"
#include "ui/effects/LEffectPreviewButton.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "ui/settings/LSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
const LEffectInfo& Echo()
{
    return *LEffectCatalog::ByCliName("echo");
}

LEffectPreviewButton* PreviewOf(QDialog& dlg)
{
    return dlg.findChild<LEffectPreviewButton*>("preview");
}

// Runs what the dialog queued (starts and restarts run from the event loop).
void Settle()
{
    QCoreApplication::processEvents();
}

LVirtualWaveDriver& Device()
{
    return dynamic_cast<LVirtualWaveDriver&>(LWaveDevices::Get());
}
} // namespace

class EffectPreviewTest : public QObject, private FrameFixture
{
    Q_OBJECT
private:
    LEdFileWindow* pWindow = nullptr;

    LCutListAudio& Doc() { return pWindow->GetFile().GetDocument(); }

private slots:
    void initTestCase()
    {
        // Real time: a preview outlasts the test's steps.
        setenv("SONITRA_AUDIO_DEVICE", "virtual", 1);
        setenv("SONITRA_VIRTUAL_SPEED", "1", 1);
    }
    void init()
    {
        QVERIFY(Start());
        pWindow = OpenRamp(8000 * 3);
        QVERIFY(pWindow);
    }
    void cleanup() { Stop(); }

    void aDialogWithNothingToPreviewHasNoButton()
    {
        LEffectSettingsDlg dlg(nullptr, Echo());
        QVERIFY(!PreviewOf(dlg));
    }

    void theButtonAndSpaceStartAndStopIt()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        LEffectSettingsDlg dlg(nullptr, Echo());
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        LEffectPreviewButton* pButton = PreviewOf(dlg);
        QVERIFY(pButton);
        QCOMPARE(pButton->text(), QString("Preview"));

        QTest::mouseClick(pButton, Qt::LeftButton);
        Settle();
        QVERIFY(pButton->IsPreviewing());
        QCOMPARE(pButton->text(), QString("Stop"));
        QVERIFY(Device().stats.bOutOpen.load());
        QTest::mouseClick(pButton, Qt::LeftButton);
        QVERIFY(!pButton->IsPreviewing());
        QCOMPARE(pButton->text(), QString("Preview"));
        QVERIFY(!Device().stats.bOutOpen.load());

        // Space in a field is the preview's, not a character of the value.
        auto* pTime = qobject_cast<QLineEdit*>(dlg.FieldOf("EchoTime"));
        pTime->setFocus();
        QTest::keyClick(pTime, Qt::Key_Space);
        Settle();
        QVERIFY(pButton->IsPreviewing());
        QCOMPARE(pTime->text(), QString("800"));
        QTest::keyClick(pTime, Qt::Key_Space);
        QVERIFY(!pButton->IsPreviewing());
        // The button itself takes Space once, not once for the key and again as a click.
        pButton->setFocus();
        QTest::keyClick(pButton, Qt::Key_Space);
        Settle();
        QVERIFY(pButton->IsPreviewing());
        QTest::keyClick(pButton, Qt::Key_Space);
        QVERIFY(!pButton->IsPreviewing());
    }

    void aChangedValueRestartsItAndClosingStopsIt()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        for (bool bAccept : {false, true}) {
            LEffectSettingsDlg dlg(nullptr, Echo());
            dlg.show();
            LEffectPreviewButton* pButton = PreviewOf(dlg);
            QVERIFY(pButton);
            QTest::keyClick(&dlg, Qt::Key_Space);
            Settle();
            QVERIFY(pButton->IsPreviewing());
            const int nResets = Device().stats.nResets.load();
            qobject_cast<QLineEdit*>(dlg.FieldOf("EchoGain"))->setText("90");
            Settle();
            QVERIFY(pButton->IsPreviewing());
            QVERIFY(Device().stats.nResets.load() > nResets); // the queued old values are dropped
            // A value that is refused keeps what plays.
            const int nResetsBefore = Device().stats.nResets.load();
            qobject_cast<QLineEdit*>(dlg.FieldOf("EchoGain"))->setText("100");
            Settle();
            QCOMPARE(Device().stats.nResets.load(), nResetsBefore);
            QVERIFY(pButton->IsPreviewing());
            qobject_cast<QLineEdit*>(dlg.FieldOf("EchoGain"))->setText("40");
            if (bAccept)
                dlg.accept();
            else
                dlg.reject();
            QVERIFY(!pButton->IsPreviewing());
            QVERIFY(!Device().stats.bOutOpen.load());
        }
    }

    // A range longer than the setting plays only its first seconds; the setting is on the
    // general page of the settings.
    void thePreviewLengthIsASetting()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        {
            LEffectSettingsDlg dlg(nullptr, Echo());
            QCOMPARE(PreviewOf(dlg)->GetPreview().GetRange().GetLength(), 8000 * 3); // 5 s by default
        }
        {
            LSettingsDlg settings(nullptr);
            auto* pSeconds = settings.findChild<QSpinBox*>("EffectPreviewSeconds");
            QVERIFY(pSeconds);
            QCOMPARE(pSeconds->value(), 5);
            pSeconds->setValue(2);
            settings.accept();
        }
        LEffectSettingsDlg dlg(nullptr, Echo());
        QCOMPARE(PreviewOf(dlg)->GetPreview().GetRange().GetLength(), 8000 * 2);
    }

    void aRefusedValueDoesNotStartIt()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        LEffectSettingsDlg dlg(nullptr, Echo());
        dlg.show();
        qobject_cast<QLineEdit*>(dlg.FieldOf("EchoTime"))->setText("3000");
        QTest::mouseClick(PreviewOf(dlg), Qt::LeftButton);
        Settle();
        QVERIFY(!PreviewOf(dlg)->IsPreviewing());
        QVERIFY(h->prompts.informs.isEmpty()); // the message belongs to OK
    }

    void aDeviceThatWillNotOpenIsReported()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        LEffectSettingsDlg dlg(nullptr, Echo());
        dlg.show();
        Device().SetFailOpen(true);
        QTest::mouseClick(PreviewOf(dlg), Qt::LeftButton);
        Settle();
        Device().SetFailOpen(false);
        QVERIFY(!PreviewOf(dlg)->IsPreviewing());
        QCOMPARE(h->prompts.informs.size(), 1);
        QVERIFY(h->prompts.informs.front().startsWith("Sonitra: Please check that you have selected the correct "
                                                      "sound player device"));
    }

    void theCurveDialogsPreviewTheirCurve()
    {
        const LEffectArgs base;
        LEffectPreviewButton::Target target(Doc(), 0, Doc().GetLength(), base);
        LCurveDlg dlg(nullptr, LCurveDlg::Equalizer);
        dlg.show();
        LEffectPreviewButton* pButton = PreviewOf(dlg);
        QVERIFY(pButton);
        QTest::mouseClick(pButton, Qt::LeftButton);
        Settle();
        QVERIFY(pButton->IsPreviewing());
        const int nResets = Device().stats.nResets.load();
        QTest::mouseClick(dlg.findChild<QPushButton*>("flat"), Qt::LeftButton);
        Settle();
        QVERIFY(Device().stats.nResets.load() > nResets);
        dlg.reject();
        QVERIFY(!pButton->IsPreviewing());
    }

    // Through the Effects menu: the preview plays while the dialog is up, and a cancelled
    // dialog leaves the file and its undo as they were.
    void theEffectCommandOffersAPreviewAndCancelLeavesTheFile()
    {
        const std::vector<int16_t> vBefore = Samples(Doc());
        bool bSawPreview = false;
        WhenDialogShows<LEffectSettingsDlg>([&](LEffectSettingsDlg& dlg) {
            LEffectPreviewButton* pButton = PreviewOf(dlg);
            if (pButton) {
                QTest::mouseClick(pButton, Qt::LeftButton);
                Settle();
                bSawPreview = pButton->IsPreviewing();
                QTRY_VERIFY(Device().stats.nFramesPlayed.load() > 0);
            }
            dlg.reject();
        });
        QVERIFY(frame->Command(Echo().nCommandId));
        QVERIFY(bSawPreview);
        QVERIFY(!Device().stats.bOutOpen.load());
        QVERIFY(Samples(Doc()) == vBefore);
        QVERIFY(!pWindow->GetFile().IsUndoAvailable());
        QVERIFY(!pWindow->GetFile().IsModified());
    }
};

QTEST_MAIN(EffectPreviewTest)
#include "EffectPreviewTest.moc"

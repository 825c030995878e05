// The spectrogram view of a file window: the command and the toggle switch both displays, the
// default comes from the settings, and a click tells time, frequency and level in the status bar.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <QRegularExpression>
#include <QStatusBar>
#include <QToolButton>
#include <QtTest>

#include <cmath>

#include "dsp/LSpectroRows.h"
#include "ui/LEdWaveWindow.h"
#include "ui/LWaveSpectro.h"
#include "ui/settings/LDisplayPage.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
constexpr int kRate = 16000;

// Tones on bin centres of the default window: 1000 Hz left (or alone), 3000 Hz right.
std::vector<int16_t> Tones(int nChans, int nFrames)
{
    std::vector<int16_t> v;
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v.push_back(static_cast<int16_t>(std::lround(16384.0 * std::sin(2 * M_PI * (c ? 3000.0 : 1000.0) * i / kRate))));
    return v;
}
} // namespace

class SpectrogramViewTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    LEdFileWindow* OpenTones(int nChans)
    {
        const QString szPath = h->File(QString("tones%1.wav").arg(nChans));
        WriteWav16(szPath, kRate, nChans, Tones(nChans, 2 * kRate));
        h->prompts.openNames.push_back({szPath});
        return frame->Command(CmOpenId) ? frame->GetCurrentFileWindow() : nullptr;
    }

    // Clicks the detail view on the row of fHz in the given lane and returns the status text.
    QString ClickAt(LEdFileWindow* p, double fHz, int nLanes, int nLane)
    {
        LEdWaveWindow* pDetail = p->GetDetail();
        const int nPixelRows = pDetail->height() - 1;
        const int nLaneRows = LWaveSpectro::LaneRows(nPixelRows, nLanes);
        const LSpectroRows rows(LSpectroSettings::Load().eScale, kRate, nLaneRows, 1.0, 2);
        const int y = 1 + nLane * (nLaneRows + 1) + nLaneRows - 1 - rows.RowOf(fHz);
        QTest::mouseClick(pDetail, Qt::LeftButton, {}, QPoint(pDetail->width() / 2, y));
        return frame->statusBar()->currentMessage();
    }

    static double Number(const QString& sz, const QString& szAfter)
    {
        const QRegularExpressionMatch m = QRegularExpression("(-?[0-9.]+) " + szAfter).match(sz);
        return m.hasMatch() ? m.captured(1).toDouble() : -1e9;
    }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void commandSwitchesBothDisplaysAndBack()
    {
        LEdFileWindow* p = OpenTones(1);
        QVERIFY(p);
        QVERIFY(!p->IsSpectrogram());
        QVERIFY(frame->Command(CmSpectrogramId));
        QVERIFY(p->IsSpectrogram());
        QVERIFY(p->GetDetail()->IsSpectrogram());
        QVERIFY(p->GetOverview()->IsSpectrogram());
        QVERIFY(p->findChild<QToolButton*>("spectrogram")->isChecked());
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        // The toggle beside the display modes does the same.
        p->findChild<QToolButton*>("spectrogram")->click();
        QVERIFY(!p->IsSpectrogram());
        QVERIFY(!p->GetDetail()->IsSpectrogram());
    }

    void clickTellsTimeFrequencyAndLevel()
    {
        LEdFileWindow* p = OpenTones(1);
        QVERIFY(p);
        p->SetSpectrogram(true);
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        const QString sz = ClickAt(p, 1000.0, 1, 0);
        QVERIFY2(sz.startsWith("Time 0:00:0"), qPrintable(sz));
        QVERIFY2(std::abs(Number(sz, "Hz") - 1000.0) < 60.0, qPrintable(sz));
        // A sine at half of full scale reads -6 dB.
        QVERIFY2(std::abs(Number(sz, "dB") + 6.0) < 1.0, qPrintable(sz));
        const QString szQuiet = ClickAt(p, 5000.0, 1, 0);
        QVERIFY2(szQuiet.contains("below") || Number(szQuiet, "dB") < -60.0, qPrintable(szQuiet));
    }

    void leftAndRightGetALaneEach()
    {
        LEdFileWindow* p = OpenTones(2);
        QVERIFY(p);
        p->SetSpectrogram(true);
        p->SetDisplayMode(1);
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        const QString szRight = ClickAt(p, 3000.0, 2, 1);
        QVERIFY2(szRight.contains("right"), qPrintable(szRight));
        QVERIFY2(std::abs(Number(szRight, "dB") + 6.0) < 1.0, qPrintable(szRight));
        const QString szLeft = ClickAt(p, 3000.0, 2, 0);
        QVERIFY2(szLeft.contains("left"), qPrintable(szLeft));
        QVERIFY2(szLeft.contains("below") || Number(szLeft, "dB") < -60.0, qPrintable(szLeft));
    }

    void scrollShiftsTheSameColumnsAFullRedrawComputes()
    {
        LEdFileWindow* p = OpenTones(2);
        QVERIFY(p);
        p->SetSpectrogram(true);
        p->SetDisplayMode(1);
        p->SetView(0, 8000);
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        p->ScrollViewTo(700);
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        std::vector<uint8_t> vShifted, vFull;
        p->GetDetail()->CopySpectrogram(vShifted);
        p->SetSpectrogram(false);
        p->SetSpectrogram(true);
        QTRY_VERIFY(p->GetDetail()->IsDrawn());
        p->GetDetail()->CopySpectrogram(vFull);
        QVERIFY(!vFull.empty());
        QVERIFY(vShifted == vFull);
    }

    void newWindowsFollowTheSetting()
    {
        LSettings::SetBool("Settings", "SpectrogramView", true);
        LEdFileWindow* p = OpenTones(1);
        LSettings::SetBool("Settings", "SpectrogramView", false);
        QVERIFY(p);
        QVERIFY(p->IsSpectrogram());
        QVERIFY(p->GetDetail()->IsSpectrogram());
    }

    void displayPageKeepsTheChoices()
    {
        LDisplayPage page(nullptr);
        page.findChild<QCheckBox*>("SpectrogramView")->setChecked(true);
        page.findChild<QComboBox*>("SpectrogramWindowSize")->setCurrentText("512");
        page.findChild<QComboBox*>("SpectrogramScale")->setCurrentIndex(SpectroMel);
        page.findChild<QComboBox*>("SpectrogramColours")->setCurrentIndex(SpectroColoursGrey);
        page.findChild<QSpinBox*>("SpectrogramRange")->setValue(80);
        page.Save();
        const LSpectroSettings s = LSpectroSettings::Load();
        QCOMPARE(s.nWindow, 512);
        QCOMPARE(s.eScale, SpectroMel);
        QCOMPARE(s.eColours, SpectroColoursGrey);
        QCOMPARE(s.nRangeDb, 80);
        QVERIFY(LSettings::GetBool("Settings", "SpectrogramView", false));
        // A window opened now shows the stored choices.
        LEdFileWindow* p = OpenTones(1);
        QVERIFY(p && p->IsSpectrogram());
        LSpectroSettings().Store();
        LSettings::SetBool("Settings", "SpectrogramView", false);
    }
};

QTEST_MAIN(SpectrogramViewTest)
#include "SpectrogramViewTest.moc"

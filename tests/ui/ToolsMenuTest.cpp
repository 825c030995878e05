// The Tools menu through the real frame: the frequency analysis window follows the file, the
// tone generator and text to speech make new files or insert at the cursor.
#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <functional>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/MainDialog.h"
#include "ui/tools/LSpectrumWindow.h"
#include "ui/tools/LTextToSpeechDlg.h"
#include "ui/tools/LToneGeneratorDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
bool HaveEspeak()
{
    return QProcess::execute("sh", {"-c", "command -v espeak-ng >/dev/null"}) == 0;
}
} // namespace

class ToolsMenuTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    int FileCount() const { return static_cast<int>(frame->GetFileWindows().size()); }

private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void toneGeneratorMakesANewFileThenInsertsAtTheCursor()
    {
        QVERIFY(frame->GetAction(CmToneGeneratorId)->isEnabled());
        QVERIFY(frame->Command(CmToneGeneratorId));
        WhenDialogShows<LToneGeneratorDlg>([](LToneGeneratorDlg& dlg) {
            dlg.findChild<QComboBox*>("wave")->setCurrentIndex(0);
            dlg.findChild<QDoubleSpinBox*>("freq")->setValue(1000);
            dlg.findChild<QDoubleSpinBox*>("level")->setValue(-6);
            dlg.findChild<QLineEdit*>("length")->setText("0.5");
            dlg.findChild<QComboBox*>("rate")->setCurrentText("8000");
            dlg.findChild<QComboBox*>("channels")->setCurrentIndex(1);
            dlg.accept();
        });
        QTRY_COMPARE(FileCount(), 1);
        LCutListAudio& doc = frame->GetCurrentFile()->GetDocument();
        QCOMPARE(doc.GetLength(), 4000);
        QCOMPARE(doc.GetSampleRate(), 8000);
        QCOMPARE(int(doc.GetChannels()), 2);
        const auto v = Samples(doc);
        int nPeak = 0;
        for (int16_t s : v)
            nPeak = std::max(nPeak, std::abs(int(s)));
        QVERIFY(std::abs(nPeak - 16384) < 200); // -6 dBFS

        // Inserted, the tone takes the file's format, whatever the dialog says.
        frame->GetCurrentFileWindow()->SetCursorPosition(1000);
        QVERIFY(frame->Command(CmToneGeneratorId));
        WhenDialogShows<LToneGeneratorDlg>([](LToneGeneratorDlg& dlg) {
            dlg.findChild<QComboBox*>("wave")->setCurrentIndex(6);
            dlg.findChild<QLineEdit*>("digits")->setText("12");
            dlg.findChild<QLineEdit*>("length")->setText("0:00:00.250");
            dlg.findChild<QRadioButton*>("insert")->setChecked(true);
            dlg.accept();
        });
        QTRY_COMPARE(doc.GetLength(), 6000);
        QCOMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Tone Generator\tCtrl+Z"));
        QCOMPARE(FileCount(), 1);
    }

    void toneGeneratorRefusesABadFrequency()
    {
        QVERIFY(frame->Command(CmToneGeneratorId));
        WhenDialogShows<LToneGeneratorDlg>([this](LToneGeneratorDlg& dlg) {
            dlg.findChild<QComboBox*>("rate")->setCurrentText("8000");
            dlg.findChild<QDoubleSpinBox*>("freq")->setValue(5000);
            dlg.accept();
            QVERIFY(dlg.isVisible());
            QVERIFY(h->prompts.informs.last().contains("below half the sample rate"));
            dlg.reject();
        });
        QTest::qWait(50);
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(FileCount(), 0);
    }

    void frequencyAnalysisFollowsTheSelectionAndKeepsItsSize()
    {
        std::vector<int16_t> v(16000);
        for (size_t i = 0; i < v.size(); ++i)
            v[i] = static_cast<int16_t>(i < 8000 ? 16000 * std::sin(2 * M_PI * 500.0 * i / 8000)
                                                 : 16000 * std::sin(2 * M_PI * 2000.0 * i / 8000));
        const QString szPath = h->File("two.wav");
        WriteWav16(szPath, 8000, 1, v);
        h->prompts.openNames.push_back({szPath});
        QVERIFY(frame->Command(CmOpenId));
        LEdFileWindow* pWindow = frame->GetCurrentFileWindow();
        QVERIFY(pWindow);

        QVERIFY(frame->Command(CmFrequencyAnalysisId));
        auto* pSpectrum = frame->findChild<LSpectrumWindow*>();
        QVERIFY(pSpectrum && pSpectrum->isVisible());
        pSpectrum->SetSize(1024);
        QCOMPARE(LSpectrumWindow::StoredSize(), 1024);
        QCOMPARE(LSettings::GetInt("StoredValues", "FreqFourTimes", 0), 1024);

        pWindow->SetSelection(0, 8000);
        pSpectrum->Follow();
        QCOMPARE(pSpectrum->GetStart(), 0);
        QCOMPARE(pSpectrum->GetEnd(), 8000);
        QVERIFY(std::abs(pSpectrum->GetSpectrum().Peaks(1).at(0).fHz - 500.0) < 8000.0 / 1024);
        pWindow->SetSelection(9000, 15000);
        QTRY_COMPARE(pSpectrum->GetStart(), 9000);
        QVERIFY(std::abs(pSpectrum->GetSpectrum().Peaks(1).at(0).fHz - 2000.0) < 8000.0 / 1024);

        // No selection: a frame around the cursor.
        pWindow->SetSelection(3000, 3000);
        pWindow->SetCursorPosition(3000);
        QTRY_COMPARE(pSpectrum->GetEnd() - pSpectrum->GetStart(), 1024);
        QCOMPARE(pSpectrum->GetStart(), 3000 - 512);

        // The readout names what lies under the mouse.
        QWidget* pPlot = pSpectrum->findChild<QWidget*>("spectrumPlot");
        QVERIFY(pPlot);
        const QPointF pt(pPlot->width() / 2, pPlot->height() / 2);
        QMouseEvent move(QEvent::MouseMove, pt, pPlot->mapToGlobal(pt), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(pPlot, &move);
        QVERIFY(pSpectrum->GetReadout().contains(" Hz, "));
        QVERIFY(pSpectrum->GetReadout().endsWith(" dB"));

        pSpectrum->close();
        QVERIFY(frame->Command(CmFrequencyAnalysisId));
        QCOMPARE(frame->findChildren<LSpectrumWindow*>().size(), 1);
        QCOMPARE(pSpectrum->GetSize(), 1024);
    }

    void frequencyLabelsNeverOverlapAtAnyWidth()
    {
        for (int nRate : {8000, 44100, 96000}) {
            const QString szPath = h->File(QString("r%1.wav").arg(nRate));
            WriteWav16(szPath, nRate, 1, std::vector<int16_t>(4096, 0));
            h->prompts.openNames.push_back({szPath});
            QVERIFY(frame->Command(CmOpenId));
            QVERIFY(frame->Command(CmFrequencyAnalysisId));
            auto* pSpectrum = frame->findChild<LSpectrumWindow*>();
            QVERIFY(pSpectrum);
            pSpectrum->Follow();
            for (int nWidth : {380, 450, 600, 800, 1200, 1900}) {
                pSpectrum->resize(nWidth, 320);
                QCoreApplication::processEvents();
                const QRect rcPlot = pSpectrum->GetPlotRect();
                const std::vector<LAxisTick> v = pSpectrum->GetFrequencyTicks();
                const QString szWhere = QString("%1 Hz, %2 wide").arg(nRate).arg(nWidth);
                std::vector<QRectF> vLabels;
                for (const LAxisTick& t : v) {
                    QVERIFY2(t.fHz > 10 && t.fHz < nRate / 2.0, qPrintable(szWhere));
                    if (t.szLabel.isEmpty())
                        continue;
                    QVERIFY2(QRegularExpression("^\\d+(\\.\\d+)? k?Hz$").match(t.szLabel).hasMatch(),
                             qPrintable(szWhere + ": " + t.szLabel));
                    QVERIFY2(t.rcLabel.left() >= 0 && t.rcLabel.right() <= rcPlot.width(),
                             qPrintable(szWhere + ": " + t.szLabel));
                    for (const QRectF& o : vLabels)
                        QVERIFY2(!o.intersects(t.rcLabel), qPrintable(szWhere + ": " + t.szLabel));
                    vLabels.push_back(t.rcLabel);
                }
                QVERIFY2(vLabels.size() >= 3, qPrintable(szWhere));
                // Wider windows label at least as much.
                if (nWidth >= 1200)
                    QVERIFY2(vLabels.size() >= 6, qPrintable(szWhere));
            }
        }
        QCOMPARE(LFrequencyAxis::Label(20000), QString("20 kHz"));
        QCOMPARE(LFrequencyAxis::Label(2500), QString("2.5 kHz"));
        QCOMPARE(LFrequencyAxis::Label(50), QString("50 Hz"));
    }

    void textToSpeechMakesANewFile()
    {
        if (!HaveEspeak())
            QSKIP("espeak-ng is not installed");
        QVERIFY(frame->Command(CmTextToSpeechId));
        WhenDialogShows<LTextToSpeechDlg>([](LTextToSpeechDlg& dlg) {
            dlg.findChild<QPlainTextEdit*>("text")->setPlainText("Hello, this is a test.");
            dlg.findChild<QComboBox*>("voice")->setCurrentText("en");
            dlg.accept();
        });
        QTRY_COMPARE(FileCount(), 1);
        QVERIFY(frame->GetCurrentFile()->GetDocument().GetLength() > 10000);
    }

    void textToSpeechRefusesAnEmptyText()
    {
        QVERIFY(frame->Command(CmTextToSpeechId));
        WhenDialogShows<LTextToSpeechDlg>([this](LTextToSpeechDlg& dlg) {
            dlg.accept();
            QVERIFY(dlg.isVisible());
            QCOMPARE(h->prompts.informs.last(), QString("Sonitra: Type or paste the text to speak."));
            dlg.reject();
        });
        QTest::qWait(50);
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(FileCount(), 0);
    }
};

QTEST_MAIN(ToolsMenuTest)
#include "ToolsMenuTest.moc"

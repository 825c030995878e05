// The waveform display as a window: its worker, scrolling by shifting columns, redraws on mode
// and zoom changes, and the codes it sends while the mouse selects.
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <memory>

#include "core/LMemorySound.h"
#include "ui/LEdWaveWindow.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
// Counts the frames read from a memory source, to tell a shift from a full recompute.
class CountingSource : public LSRCMemory
{
public:
    using LSRCMemory::LSRCMemory;
    void Read(int32_t* pBuffer, int32_t nFrames) override
    {
        nRead += nFrames;
        LSRCMemory::Read(pBuffer, nFrames);
    }
    std::atomic<int64_t> nRead{0};
};

std::vector<int32_t> Wave(int nFrames)
{
    std::vector<int32_t> v(nFrames);
    for (int i = 0; i < nFrames; ++i)
        v[i] = ((i * 7919) % 65536 - 32768) * (1 + i % 13);
    return v;
}

std::shared_ptr<LWaveContent> ContentOf(LSoundSourceBase* pSource)
{
    auto p = std::make_shared<LWaveContent>();
    p->pSource = pSource;
    p->nChans = pSource->GetChannels();
    p->sLength = pSource->GetLength();
    return p;
}
} // namespace

class WaveWindowTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;
    std::unique_ptr<LEdWaveWindow> w;

    std::vector<uint8_t> Top()
    {
        std::vector<uint8_t> vTop, vBottom;
        w->CopyColumns(vTop, vBottom);
        return vTop;
    }

private slots:
    void init()
    {
        h = std::make_unique<Harness>();
        w = std::make_unique<LEdWaveWindow>(nullptr, 90);
        w->resize(402, 120); // 400 columns
        w->show();
        QVERIFY(QTest::qWaitForWindowExposed(w.get()));
        w->Start();
    }

    void cleanup()
    {
        w.reset();
        h.reset();
    }

    void scrollShiftsInsteadOfRecomputing()
    {
        QCOMPARE(w->GetColumnCount(), 400);
        auto* pSource = new CountingSource(Wave(200000), 8000, 1);
        w->SetContent(ContentOf(pSource));
        w->SetView(0, 40000); // 100 frames per column
        QTRY_VERIFY(w->IsDrawn());
        const int64_t nFull = pSource->nRead;
        QVERIFY(nFull >= 40000);
        // Half a window to the right: only the new half (and one column) is read.
        pSource->nRead = 0;
        w->SetView(20000, 40000);
        QTRY_VERIFY(w->IsDrawn());
        QVERIFY(pSource->nRead <= 20000 + 200);
        const std::vector<uint8_t> vShifted = Top();
        // The same view drawn from scratch gives the same picture.
        w->SetContent(ContentOf(new LSRCMemory(Wave(200000), 8000, 1)));
        QTRY_VERIFY(w->IsDrawn());
        QCOMPARE(Top(), vShifted);
        // And back to the left.
        auto* pAgain = new CountingSource(Wave(200000), 8000, 1);
        w->SetContent(ContentOf(pAgain));
        QTRY_VERIFY(w->IsDrawn());
        pAgain->nRead = 0;
        w->SetView(10000, 40000);
        QTRY_VERIFY(w->IsDrawn());
        QVERIFY(pAgain->nRead <= 10000 + 200);
        const std::vector<uint8_t> vLeft = Top();
        w->SetContent(ContentOf(new LSRCMemory(Wave(200000), 8000, 1)));
        QTRY_VERIFY(w->IsDrawn());
        QCOMPARE(Top(), vLeft);
    }

    void zoomAndModeRedraw()
    {
        std::vector<int32_t> v(8000);
        for (size_t i = 0; i < v.size(); ++i)
            v[i] = (i % 2) ? 0x1000 : -0x800; // soft: 2 and 1 on the normal scale
        w->SetContent(ContentOf(new LSRCMemory(v, 8000, 1)));
        w->SetView(0, 8000);
        QTRY_VERIFY(w->IsDrawn());
        QCOMPARE(int(Top()[10]), 0x1000 >> 11);
        w->SetVerticalZoom(true);
        QTRY_VERIFY(w->IsDrawn());
        QCOMPARE(int(Top()[10]), 0x1000 >> 8);
        // A mono file in "L / R" shows as "+ /-".
        w->SetDisplayMode(1);
        QTRY_VERIFY(w->IsDrawn());
        QCOMPARE(int(Top()[10]), 0x1000 >> 8);
    }

    void mouseSelectionSendsItsCodes()
    {
        w->SetContent(ContentOf(new LSRCMemory(Wave(40000), 8000, 1)));
        w->SetView(0, 4000); // 10 frames per column
        QTRY_VERIFY(w->IsDrawn());
        QSignalSpy spy(w.get(), &LEdWaveWindow::Notify);
        const int y = 50;
        QTest::mousePress(w.get(), Qt::LeftButton, {}, QPoint(101, y)); // column 100
        QTest::mouseMove(w.get(), QPoint(450, y));                        // beyond the right edge
        QTest::mouseMove(w.get(), QPoint(201, y));                        // back inside
        QTest::mouseMove(w.get(), QPoint(0, y));                          // beyond the left edge
        QTest::mouseRelease(w.get(), Qt::LeftButton, {}, QPoint(51, y));  // column 50
        QList<int> codes;
        for (const QList<QVariant>& args : spy)
            codes << args.front().toInt();
        QCOMPARE(codes, QList<int>({4, 8, 5, 8, 6, 8, 7, 2}));
        QCOMPARE(w->GetSelectionStart(), 500);
        QCOMPARE(w->GetSelectionEnd(), 1000);
        QCOMPARE(w->GetCursor(), 500);
        // A click without motion: an empty selection at the click.
        QTest::mouseClick(w.get(), Qt::LeftButton, {}, QPoint(301, y));
        QCOMPARE(w->GetSelectionStart(), 3000);
        QCOMPARE(w->GetSelectionEnd(), 3000);
        QCOMPARE(w->GetCursor(), 3000);
    }
};

QTEST_MAIN(WaveWindowTest)
#include "WaveWindowTest.moc"

// The arithmetic under the waveform display and the file window: column/sample mapping,
// column computation from samples and from overview files, zoom and scroll targets.
#include <QTemporaryDir>
#include <QtTest>

#include <fstream>

#include "core/LMemorySound.h"
#include "ui/LEdViewMath.h"
#include "ui/LWaveColumns.h"
#include "ui/LWaveGeometry.h"
#include "work/LSignalObject.h"

namespace {
LWaveGeometry Geo(int nWidth, int32_t sStart, int32_t sLength)
{
    LWaveGeometry g;
    g.SetWidth(nWidth);
    g.SetView(sStart, sLength);
    return g;
}

struct Columns
{
    std::vector<uint8_t> vTop = std::vector<uint8_t>(2048, 0xEE);
    std::vector<uint8_t> vBottom = std::vector<uint8_t>(2048, 0xEE);
};

void WriteBytes(const QString& szPath, const std::vector<uint8_t>& v)
{
    std::ofstream f(szPath.toStdString(), std::ios::binary);
    f.write(reinterpret_cast<const char*>(v.data()), static_cast<std::streamsize>(v.size()));
}
} // namespace

class WaveArithmeticTest : public QObject
{
    Q_OBJECT
private slots:
    void geometryMapsColumnsAndSamples()
    {
        LWaveGeometry g = Geo(100, 1000, 400); // 0.25 pixels per sample
        QCOMPARE(g.GetPixelsPerSample(), 0.25);
        QCOMPARE(g.GetPixelOffset(), 250);
        QCOMPARE(g.SampleOfColumn(0), 1000);
        QCOMPARE(g.SampleOfColumn(1), 1004);
        QCOMPARE(g.ColumnOfSample(1004), 1);
        QCOMPARE(g.ColumnOfSample(1007), 1);
        QCOMPARE(g.ColumnOfSample(999), -1);  // before the view
        QCOMPARE(g.ColumnOfSample(5000), 100); // past the view: the width
        // A scroll keeps the scale and moves only the offset, truncated.
        g.SetStart(1003);
        QCOMPARE(g.GetPixelOffset(), 250);
        QCOMPARE(g.GetPixelsPerSample(), 0.25);
    }

    void geometryNarrowAndEmptyViews()
    {
        LWaveGeometry g = Geo(3, 0, 80); // narrower than 8 columns still scales by 8
        QCOMPARE(g.GetPixelsPerSample(), 0.1);
        QCOMPARE(g.SampleOfColumn(1), 10);
        LWaveGeometry e = Geo(100, 0, 0);
        QCOMPARE(e.ColumnOfSample(0), -1);
        LWaveGeometry w;
        w.SetWidth(5000);
        QCOMPARE(w.GetWidth(), 2048);
        w.SetWidth(-4);
        QCOMPARE(w.GetWidth(), 1);
    }

    void samplesPosNegMode()
    {
        // Stereo, two frames per column; peaks over both channels.
        std::vector<int32_t> v = {
            0x7FFF0, -0x800,  0x800, -0x7FFF0, // column 0
            0x1000,  0x1800,  -0x10, 0,        // column 1
            -0x4000, -0x5000, -1,    -2,       // column 2: only negative
            0,       0,       0,     0,        // column 3: silence
        };
        LSoundSourcePtr src(new LSRCMemory(v, 44100, 2));
        LWaveGeometry g = Geo(8, 0, 16); // 8 columns of 2 frames
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(maker.FromSamples(*src, g, 0, 4, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(255));
        QCOMPARE(c.vBottom[0], uint8_t(255));
        QCOMPARE(c.vTop[1], uint8_t(0x1800 >> 11));
        QCOMPARE(c.vBottom[1], uint8_t(0));
        QCOMPARE(c.vTop[2], uint8_t(0));
        QCOMPARE(c.vBottom[2], uint8_t(0x5000 >> 11));
        QCOMPARE(c.vTop[3], uint8_t(0));
        QCOMPARE(c.vTop[4], uint8_t(0xEE)); // untouched outside the range
        // Vertical zoom shifts by 8 instead of 11 and caps at 255.
        QVERIFY(maker.FromSamples(*src, g, 0, 3, WaveModePosNeg, true, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[1], uint8_t(0x1800 >> 8));
        QCOMPARE(c.vBottom[2], uint8_t(0x5000 >> 8));
        QCOMPARE(c.vTop[0], uint8_t(255));
    }

    void samplesLeftRightMode()
    {
        std::vector<int32_t> v = {0x2000, -0x6000, -0x3000, 0x800};
        LSoundSourcePtr src(new LSRCMemory(v, 8000, 2));
        LWaveGeometry g = Geo(8, 0, 16);
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(maker.FromSamples(*src, g, 0, 1, WaveModeLeftRight, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(0x3000 >> 11));    // left: largest magnitude
        QCOMPARE(c.vBottom[0], uint8_t(0x6000 >> 11)); // right
        // A mono source in "L / R" is drawn as in "+ /-".
        LSoundSourcePtr mono(new LSRCMemory({0x2000, -0x6000}, 8000, 1));
        QVERIFY(maker.FromSamples(*mono, g, 0, 1, WaveModeLeftRight, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(0x2000 >> 11));
        QCOMPARE(c.vBottom[0], uint8_t(0x6000 >> 11));
    }

    void samplesCloseZoomShowsEachFrame()
    {
        // Four columns per sample: every column shows the frame it lies in.
        LSoundSourcePtr src(new LSRCMemory({0x8000, 0x10000, -0x8000}, 8000, 1));
        LWaveGeometry g = Geo(12, 0, 3);
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(maker.FromSamples(*src, g, 0, 12, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        for (int x = 0; x < 4; ++x)
            QCOMPARE(c.vTop[x], uint8_t(0x8000 >> 11));
        for (int x = 4; x < 8; ++x)
            QCOMPARE(c.vTop[x], uint8_t(0x10000 >> 11));
        for (int x = 8; x < 12; ++x)
            QCOMPARE(c.vBottom[x], uint8_t(0x8000 >> 11));
        // Past the end of the source reads as silence.
        LWaveGeometry past = Geo(4, 3, 8);
        QVERIFY(maker.FromSamples(*src, past, 0, 4, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(0));
        QCOMPARE(c.vBottom[3], uint8_t(0));
    }

    void samplesStopEarly()
    {
        LSoundSourcePtr src(new LSRCMemory(std::vector<int32_t>(1000, 0x1000), 8000, 1));
        LSignalObject stop;
        stop.Set();
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(!maker.FromSamples(*src, Geo(10, 0, 1000), 0, 10, 0, false, c.vTop.data(), c.vBottom.data(), &stop));
        QCOMPARE(c.vTop[1], uint8_t(0xEE)); // stopped after the first column
    }

    void overviewColumnsApplyGainZoomAndSilence()
    {
        QTemporaryDir dir;
        // Segment 3: stereo, 8 records of 256 frames. Record k: left +10k/-k, right +k/-20.
        std::vector<uint8_t> grf;
        for (int k = 0; k < 8; ++k) {
            grf.push_back(uint8_t(10 * k));
            grf.push_back(uint8_t(k));
            grf.push_back(uint8_t(k));
            grf.push_back(uint8_t(20));
        }
        WriteBytes(dir.filePath("3.grf"), grf);
        LWaveContent content;
        content.nChans = 2;
        content.fnGrfPath = [&dir](uint16_t n) { return dir.filePath(QString("%1.grf").arg(n)).toStdString(); };
        // Cuts: records 0..3 at unity, 1024 frames of silence, records 4..7 at double gain,
        // then a segment whose overview is missing.
        content.vCuts = {{3, 1024, 0x1000000, 0}, {0xFFFF, 1024, 0x1000000, 0}, {3, 1024, 0x2000000, 1024},
                         {9, 1024, 0x1000000, 0}};
        content.sLength = 4096;
        LWaveGeometry g = Geo(8, 0, 4096); // 512 frames (two records) per column
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(maker.FromOverview(content, g, 0, 8, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(10));   // records 0,1
        QCOMPARE(c.vBottom[0], uint8_t(20));
        QCOMPARE(c.vTop[1], uint8_t(30));   // records 2,3
        QCOMPARE(c.vTop[2], uint8_t(0));    // silence
        QCOMPARE(c.vBottom[3], uint8_t(0));
        QCOMPARE(c.vTop[4], uint8_t(100));  // records 4,5: 50 doubled
        QCOMPARE(c.vBottom[4], uint8_t(40));
        QCOMPARE(c.vTop[5], uint8_t(140));
        QCOMPARE(c.vTop[6], uint8_t(0));    // no overview file: silence
        // "L / R": channel 0's larger byte up, channel 1's down.
        QVERIFY(maker.FromOverview(content, g, 0, 2, WaveModeLeftRight, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[1], uint8_t(30));
        QCOMPARE(c.vBottom[1], uint8_t(20));
        // Vertical zoom: eight times, capped.
        QVERIFY(maker.FromOverview(content, g, 0, 8, WaveModePosNeg, true, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[0], uint8_t(80));
        QCOMPARE(c.vTop[1], uint8_t(240));
        QCOMPARE(c.vTop[4], uint8_t(255));
        QCOMPARE(LWaveColumnMaker::OverviewFactor(0x1000000, false), 256);
        QCOMPARE(LWaveColumnMaker::OverviewFactor(0x800000, true), 1024);
    }

    void overviewCutOffsetsAndPartialRanges()
    {
        QTemporaryDir dir;
        std::vector<uint8_t> grf; // mono: record k has +k, -(100+k)
        for (int k = 0; k < 16; ++k) {
            grf.push_back(uint8_t(k));
            grf.push_back(uint8_t(100 + k));
        }
        WriteBytes(dir.filePath("0.grf"), grf);
        LWaveContent content;
        content.fnGrfPath = [&dir](uint16_t n) { return dir.filePath(QString("%1.grf").arg(n)).toStdString(); };
        // One cut starting in the middle of record 4.
        content.vCuts = {{0, 2048, 0x1000000, 4 * 256 + 100}};
        content.sLength = 2048;
        // A view from 1024 in columns of 256 frames; the cut ends under column 4.
        LWaveGeometry g = Geo(8, 1024, 2048);
        Columns c;
        LWaveColumnMaker maker;
        QVERIFY(maker.FromOverview(content, g, 1, 3, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        // Column 1 = document 1280..1535 = segment 2404..2659: record 9 (from 2304) reaches
        // into it and record 10 starts in it; a record counts in the column where it starts.
        QCOMPARE(c.vTop[0], uint8_t(0xEE));
        QCOMPARE(c.vTop[1], uint8_t(10));
        QCOMPARE(c.vBottom[1], uint8_t(110));
        QCOMPARE(c.vTop[2], uint8_t(11));
        QCOMPARE(c.vBottom[2], uint8_t(111));
        QCOMPARE(c.vTop[3], uint8_t(0xEE));
        QVERIFY(maker.FromOverview(content, g, 3, 8, WaveModePosNeg, false, c.vTop.data(), c.vBottom.data(), nullptr));
        QCOMPARE(c.vTop[3], uint8_t(12));
        QCOMPARE(c.vTop[4], uint8_t(0)); // past the document
    }

    void zoomArithmetic()
    {
        using namespace LEdViewMath;
        // Zooming in halves around the cursor, never below 100 samples.
        QCOMPARE(ZoomIn({0, 150}, 75, 1000), (LViewRange{25, 125}));
        QCOMPARE(ZoomIn({0, 1000}, 900, 1000), (LViewRange{650, 1000}));
        QCOMPARE(ZoomIn({0, 1000}, 10, 1000), (LViewRange{0, 500}));
        // Zooming out doubles around the old centre, at most the file length.
        QCOMPARE(ZoomOut({400, 600}, 1000), (LViewRange{300, 700}));
        QCOMPARE(ZoomOut({0, 1000}, 1000), (LViewRange{0, 1000}));
        QCOMPARE(ZoomOut({100, 900}, 1000), (LViewRange{0, 1000}));
        LViewRange v{1, 2};
        QVERIFY(!ZoomToSelection(50, 50, 1000, v));
        QCOMPARE(v, (LViewRange{1, 2}));
        QVERIFY(ZoomToSelection(50, 2000, 1000, v));
        QCOMPARE(v, (LViewRange{50, 1000}));
        QCOMPARE(ZoomFull(777), (LViewRange{0, 777}));
        QCOMPARE(ClampView(-5, 5000, 1000), (LViewRange{0, 1000}));
        // After an edit: an empty file shows one second; a view past the end comes back.
        QCOMPARE(AfterEdit({100, 200}, 0, 8000), (LViewRange{0, 8000}));
        QCOMPARE(AfterEdit({1500, 2500}, 1000, 8000), (LViewRange{0, 1000}));
        QCOMPARE(AfterEdit({500, 2500}, 1000, 8000), (LViewRange{500, 1000}));
    }

    void scrollArithmetic()
    {
        using namespace LEdViewMath;
        int32_t s = -1;
        QVERIFY(ScrollTarget(ScrollLineLeft, 0, 44100, 44100, 500000, s));
        QCOMPARE(s, 0); // one second from the start: clamped to 0
        QVERIFY(ScrollTarget(ScrollPageRight, 0, 1000, 44100, 500000, s));
        QCOMPARE(s, 89200);
        QVERIFY(ScrollTarget(ScrollThumbTrack, 100, 0, 44100, 500001, s));
        QCOMPARE(s, 250000);
        QVERIFY(ScrollTarget(ScrollThumbPosition, 200, 0, 44100, 500001, s));
        QCOMPARE(s, 500001);
        s = 7;
        QVERIFY(!ScrollTarget(ScrollOther, 0, 0, 44100, 1000, s));
        QCOMPARE(s, 7);
        QCOMPARE(ThumbOf(250, 1000), 50);
        QCOMPARE(ThumbOf(5, 0), 0);
    }
};

QTEST_GUILESS_MAIN(WaveArithmeticTest)
#include "WaveArithmeticTest.moc"

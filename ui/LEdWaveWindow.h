// The waveform display of one file: selection, cursor and mouse selection. The picture lives
// in two byte columns per pixel that a worker thread of the window computes, so painting is
// cheap and zooming or scrolling never blocks the user-interface thread.
#pragma once

#include <QWidget>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "ui/LQueuedCall.h"
#include "ui/LWaveColumns.h"
#include "ui/LWaveGeometry.h"
#include "ui/LWaveMarks.h"
#include "ui/LWaveSpectro.h"
#include "work/LSignalObject.h"
#include "work/LThread.h"

class LEdWaveWindow : public QWidget, public LThread
{
    Q_OBJECT
public:
    // The codes sent to the parent through Notify().
    enum NotifyCode
    {
        NotifyButtonUp = 2,
        NotifyBeyondRight = 4,
        NotifyBackFromRight = 5,
        NotifyBeyondLeft = 6,
        NotifyBackFromLeft = 7,
        NotifySelecting = 8,
    };

    LEdWaveWindow(QWidget* pParent, int nControlId);
    ~LEdWaveWindow() override;

    void Start();
    void Stop();

    // What to draw; replaces the previous content and redraws everything.
    void SetContent(std::shared_ptr<LWaveContent> pContent);
    // Asks the worker for a new view; returns at once.
    void SetView(int32_t sStart, int32_t sLength);
    void SetSelectionStart(int32_t s);
    void SetSelectionEnd(int32_t s);
    void SetCursor(int32_t sPosition, int32_t sLength = 0);
    void SetDisplayMode(uint8_t nMode);
    void SetVerticalZoom(bool bOn);
    // Spectrogram instead of waveform, and how it is computed and coloured.
    void SetSpectrogram(bool bOn);
    bool IsSpectrogram() const;
    void SetSpectroSettings(const LSpectroSettings& settings);
    // What the spectrogram shows at a point of the window: time, frequency and level.
    QString DescribePoint(const QPoint& pt) const;
    // The file's bookmarks and regions, drawn over the waveform.
    void SetMarks(std::vector<LWaveMark> vNewMarks);
    const std::vector<LWaveMark>& GetMarks() const { return vMarks; }

    int GetControlId() const { return nControlId; }
    int32_t GetSelectionStart() const;
    int32_t GetSelectionEnd() const;
    int32_t GetCursor() const;
    int GetColumnCount() const;
    LWaveGeometry GetGeometry() const;
    // True once the worker has drawn the latest requested view.
    bool IsDrawn() const;
    void CopyColumns(std::vector<uint8_t>& vTop, std::vector<uint8_t>& vBottom) const;
    // The spectrogram's level bytes of the visible columns.
    void CopySpectrogram(std::vector<uint8_t>& vLevels) const;

signals:
    void Notify(int nCode);
    // A click on the spectrogram, with what it shows there.
    void Pointed(const QString& szWhat);

protected:
    void Body() override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;

private:
    struct Range
    {
        int x0 = 0;
        int x1 = 0;
    };
    Range ApplyView(int32_t sStart, int32_t sLength);
    void ComputeColumns(Range r);
    void RequestFullRedraw();
    void OnWorkerDrew();
    void SetDragMode(int nNewMode);
    // What each column shows besides the picture: the cursor line, outside the file, the cursor
    // band (in or out of the selection), the selection, or nothing more.
    enum ColumnKind
    {
        KindCursor,
        KindOutside,
        KindBand,
        KindBandInSelection,
        KindSelected,
        KindNormal,
    };
    struct ColumnKinds
    {
        int c0, c1, cFileStart, cFileEnd, cSelStart, cSelEnd;
        bool bSel;
        ColumnKind Of(int x) const;
    };
    ColumnKinds KindsOfColumns() const;
    // Painting under the drawing lock, columns xFrom..xTo-1.
    void PaintWave(QPainter& p, int xFrom, int xTo);
    void PaintSpectro(QPainter& p, int xFrom, int xTo);
    bool ComputeSpectro(Range r, const std::shared_ptr<LWaveContent>& pDraw, const LWaveGeometry& g, uint8_t nMode);
    // Cursor and selection set at once, as a finished click would leave them.
    void PlaceAsClicked(int32_t sStart, int32_t sEnd, int32_t sNewCursor);

    int nControlId;
    std::array<uint8_t, LWaveGeometry::kMaxColumns> vTop{};
    std::array<uint8_t, LWaveGeometry::kMaxColumns> vBottom{};
    int32_t sCursor = 0;
    int32_t sCursorLength = 0;
    int32_t sSelStart = 0;
    int32_t sSelEnd = 0;
    int32_t sOrigin = 0;
    LWaveGeometry geo;
    int nHeight = 1;
    int nDragMode = 0;
    bool bCaptured = false;
    uint8_t nDisplayMode = WaveModePosNeg;
    bool bVZoom = false;
    bool bSpectro = false;
    LSpectroSettings spectroSettings;
    LWaveSpectro spectro;
    std::shared_ptr<LWaveContent> pContent;
    std::vector<LWaveMark> vMarks; // the window thread's alone

    // The request: only the wanted view, under its own lock.
    mutable std::mutex mtxRequest;
    int32_t sReqStart = 0;
    int32_t sReqLength = 0;
    int32_t sDrawnStart = 0;
    int32_t sDrawnLength = -1;
    LSignalObject sigRequest;

    // Columns, view fields and painting.
    mutable std::mutex mtxDraw;
    bool bForceAll = true;
    // Set from the moment the worker takes a request until its columns are in place, so that
    // IsDrawn never reports a picture that is still being computed.
    std::atomic<bool> bComputing{false};
    LWaveColumnMaker maker;
    std::vector<uint8_t> vScratchTop;
    std::vector<uint8_t> vScratchBottom;
    LQueuedCall drew;
};

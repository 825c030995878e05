#include "ui/LEdWaveWindow.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QResizeEvent>

#include <algorithm>
#include <cstring>

#include "core/LSoundTime.h"
#include "core/LTrace.h"

namespace {
// Background and wave colours of each kind of column.
struct PenPair
{
    QColor back;
    QColor wave;
};
const PenPair kNormal{QColor(0x14, 0x1E, 0x2B), QColor(0x4C, 0xD1, 0x7E)};
const PenPair kSelected{QColor(0xD6, 0xE4, 0xF5), QColor(0x1F, 0x4E, 0x8C)};
const PenPair kOutside{QColor(0x6E, 0x6E, 0x6E), QColor(0x6E, 0x6E, 0x6E)};
const PenPair kCursorBand{QColor(0xFF, 0xF1, 0xC1), QColor(0x8A, 0x5A, 0x00)};
const QColor kCursorLine(0xE5, 0x39, 0x35);
} // namespace

LEdWaveWindow::LEdWaveWindow(QWidget* pParent, int nControlId)
    : QWidget(pParent), nControlId(nControlId), drew([this] { OnWorkerDrew(); })
{
    setObjectName(QString("LEdWaveWindow%1").arg(nControlId));
    setCursor(Qt::ArrowCursor);
    setMinimumSize(16, 16);
    setAttribute(Qt::WA_OpaquePaintEvent);
    vScratchTop.resize(LWaveGeometry::kMaxColumns);
    vScratchBottom.resize(LWaveGeometry::kMaxColumns);
}

LEdWaveWindow::~LEdWaveWindow()
{
    Stop();
}

void LEdWaveWindow::Start()
{
    LThread::Start(PriorityBelowNormal);
}

void LEdWaveWindow::Stop()
{
    StopThreadTimed(5000);
}

void LEdWaveWindow::SetContent(std::shared_ptr<LWaveContent> pNewContent)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        pContent = std::move(pNewContent);
    }
    RequestFullRedraw();
}

void LEdWaveWindow::SetView(int32_t sStart, int32_t sLength)
{
    {
        std::lock_guard<std::mutex> lock(mtxRequest);
        sReqStart = sStart;
        sReqLength = sLength;
    }
    sigRequest.Set();
}

void LEdWaveWindow::SetSelectionStart(int32_t s)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        sSelStart = s;
    }
    update();
}

void LEdWaveWindow::SetSelectionEnd(int32_t s)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        sSelEnd = s;
    }
    update();
}

void LEdWaveWindow::SetCursor(int32_t sPosition, int32_t sLength)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        sCursor = sPosition;
        sCursorLength = sLength;
    }
    update();
}

void LEdWaveWindow::SetDisplayMode(uint8_t nMode)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        if (nDisplayMode == nMode)
            return;
        nDisplayMode = nMode;
    }
    RequestFullRedraw();
}

void LEdWaveWindow::SetVerticalZoom(bool bOn)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        if (bVZoom == bOn)
            return;
        bVZoom = bOn;
    }
    RequestFullRedraw();
}

void LEdWaveWindow::SetSpectrogram(bool bOn)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        if (bSpectro == bOn)
            return;
        bSpectro = bOn;
    }
    RequestFullRedraw();
}

bool LEdWaveWindow::IsSpectrogram() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return bSpectro;
}

void LEdWaveWindow::SetSpectroSettings(const LSpectroSettings& settings)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        if (spectroSettings == settings)
            return;
        spectroSettings = settings;
    }
    RequestFullRedraw();
}

QString LEdWaveWindow::DescribePoint(const QPoint& pt) const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    if (!bSpectro || !pContent || !pContent->pDoc)
        return {};
    const int x = std::clamp(pt.x() - 1, 0, std::max(geo.GetWidth() - 1, 0));
    const int32_t nRate = pContent->pDoc->GetSampleRate();
    LSoundTime time;
    time.SetSamples(std::max(geo.SampleOfColumn(x), 0), nRate);
    const QString szWhat = spectro.Describe(x, pt.y() - 1, nRate, nHeight, spectroSettings);
    return QString("Time %1   %2").arg(QString::fromStdString(time.FormatMilliseconds()), szWhat);
}

int32_t LEdWaveWindow::GetSelectionStart() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return sSelStart;
}

int32_t LEdWaveWindow::GetSelectionEnd() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return sSelEnd;
}

int32_t LEdWaveWindow::GetCursor() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return sCursor;
}

int LEdWaveWindow::GetColumnCount() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return geo.GetWidth();
}

LWaveGeometry LEdWaveWindow::GetGeometry() const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    return geo;
}

bool LEdWaveWindow::IsDrawn() const
{
    bool bPending;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        bPending = bForceAll || bComputing;
    }
    std::lock_guard<std::mutex> lock(mtxRequest);
    return !bPending && sReqStart == sDrawnStart && sReqLength == sDrawnLength;
}

void LEdWaveWindow::CopyColumns(std::vector<uint8_t>& vOutTop, std::vector<uint8_t>& vOutBottom) const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    vOutTop.assign(vTop.begin(), vTop.begin() + geo.GetWidth());
    vOutBottom.assign(vBottom.begin(), vBottom.begin() + geo.GetWidth());
}

void LEdWaveWindow::CopySpectrogram(std::vector<uint8_t>& vLevels) const
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    const std::vector<uint8_t>& v = spectro.GetStore();
    const size_t nCells = v.size() / LWaveGeometry::kMaxColumns;
    vLevels.assign(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(nCells * geo.GetWidth()));
}

void LEdWaveWindow::RequestFullRedraw()
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        bForceAll = true;
    }
    sigRequest.Set();
}

void LEdWaveWindow::OnWorkerDrew()
{
    update();
}

void LEdWaveWindow::Body()
{
    while (!IsStopRequested()) {
        int32_t sStart, sLength;
        {
            std::lock_guard<std::mutex> lock(mtxRequest);
            sStart = sReqStart;
            sLength = sReqLength;
            sigRequest.Reset();
        }
        bool bForce;
        {
            std::lock_guard<std::mutex> lock(mtxDraw);
            bForce = bForceAll;
        }
        bool bSame;
        {
            std::lock_guard<std::mutex> lock(mtxRequest);
            bSame = sStart == sDrawnStart && sLength == sDrawnLength;
        }
        if (bSame && !bForce) {
            sigStop.WaitSignalDual(sigRequest, -1);
            continue;
        }
        Range r;
        {
            std::lock_guard<std::mutex> lock(mtxDraw);
            bComputing = true;
            r = ApplyView(sStart, sLength);
        }
        ComputeColumns(r);
        if (IsStopRequested())
            return;
        {
            std::lock_guard<std::mutex> lock(mtxRequest);
            sDrawnStart = sStart;
            sDrawnLength = sLength;
            bComputing = false;
        }
        drew.Notify();
    }
}

LEdWaveWindow::Range LEdWaveWindow::ApplyView(int32_t sStart, int32_t sLength)
{
    const int nWidth = geo.GetWidth();
    if (bForceAll || sLength != geo.GetViewLength()) {
        bForceAll = false;
        geo.SetView(sStart, sLength);
        return {0, nWidth};
    }
    const int32_t nOldOffset = geo.GetPixelOffset();
    geo.SetStart(sStart);
    if (nDragMode == 6)
        sSelStart = geo.SampleOfColumn(0);
    else if (nDragMode == 4)
        sSelEnd = geo.SampleOfColumn(nWidth);
    const int64_t d = static_cast<int64_t>(nOldOffset) - geo.GetPixelOffset();
    if (d == 0)
        return {0, 0};
    if (d >= nWidth || -d >= nWidth)
        return {0, nWidth};
    // Shift what is already known; only the columns that came into view are computed.
    const int n = static_cast<int>(d > 0 ? d : -d);
    spectro.Shift(static_cast<int>(d), nWidth);
    if (d > 0) {
        std::memmove(vTop.data() + n, vTop.data(), nWidth - n);
        std::memmove(vBottom.data() + n, vBottom.data(), nWidth - n);
        return {0, std::min(n + 1, nWidth)};
    }
    std::memmove(vTop.data(), vTop.data() + n, nWidth - n);
    std::memmove(vBottom.data(), vBottom.data() + n, nWidth - n);
    return {std::max(nWidth - n - 1, 0), nWidth};
}

void LEdWaveWindow::ComputeColumns(Range r)
{
    std::shared_ptr<LWaveContent> pDraw;
    LWaveGeometry g;
    uint8_t nMode;
    bool bZoom;
    bool bSpectrogram;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        pDraw = pContent;
        g = geo;
        nMode = nDisplayMode;
        bZoom = bVZoom;
        bSpectrogram = bSpectro;
    }
    const int nLimit = std::min(g.GetWidth(), LWaveGeometry::kMaxColumns);
    r.x0 = std::clamp(r.x0, 0, nLimit);
    r.x1 = std::clamp(r.x1, 0, nLimit);
    if (r.x1 <= r.x0)
        return;
    if (bSpectrogram) {
        ComputeSpectro(r, pDraw, g, nMode);
        return;
    }
    std::fill(vScratchTop.begin() + r.x0, vScratchTop.begin() + r.x1, 0);
    std::fill(vScratchBottom.begin() + r.x0, vScratchBottom.begin() + r.x1, 0);
    bool bDone = true;
    if (pDraw && g.GetViewLength() > 0) {
        // Computed outside the drawing lock so that painting never waits for the files.
        if (static_cast<int64_t>(g.GetViewLength()) <= static_cast<int64_t>(g.GetWidth()) * 256) {
            if (pDraw->pSource)
                bDone = maker.FromSamples(*pDraw->pSource, g, r.x0, r.x1, nMode, bZoom, vScratchTop.data(),
                                          vScratchBottom.data(), &sigStop);
        } else {
            bDone = maker.FromOverview(*pDraw, g, r.x0, r.x1, nMode, bZoom, vScratchTop.data(),
                                       vScratchBottom.data(), &sigStop);
        }
    }
    if (!bDone)
        return;
    std::lock_guard<std::mutex> lock(mtxDraw);
    if (bForceAll || geo.GetPixelOffset() != g.GetPixelOffset() || geo.GetViewLength() != g.GetViewLength())
        return; // a newer view is on its way and will redraw these columns
    std::copy(vScratchTop.begin() + r.x0, vScratchTop.begin() + r.x1, vTop.begin() + r.x0);
    std::copy(vScratchBottom.begin() + r.x0, vScratchBottom.begin() + r.x1, vBottom.begin() + r.x0);
}

bool LEdWaveWindow::ComputeSpectro(Range r, const std::shared_ptr<LWaveContent>& pDraw, const LWaveGeometry& g,
                                   uint8_t nMode)
{
    int nRows;
    LSpectroSettings settings;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        nRows = nHeight;
        settings = spectroSettings;
    }
    const int nLanes = nMode == WaveModeLeftRight && pDraw && pDraw->nChans == 2 ? 2 : 1;
    LWaveContent empty;
    if (!spectro.Compute(pDraw && g.GetViewLength() > 0 ? *pDraw : empty, g, r.x0, r.x1, nRows, nLanes, settings,
                         &sigStop, &sigRequest)) {
        // Given up for a newer request: whatever that asks, every column is computed again.
        std::lock_guard<std::mutex> lock(mtxDraw);
        bForceAll = true;
        return false;
    }
    std::lock_guard<std::mutex> lock(mtxDraw);
    if (bForceAll || geo.GetPixelOffset() != g.GetPixelOffset() || geo.GetViewLength() != g.GetViewLength())
        return false; // a newer view is on its way and will redraw these columns
    spectro.Commit(r.x0, r.x1);
    return true;
}

void LEdWaveWindow::paintEvent(QPaintEvent* pEvent)
{
    QPainter p(this);
    const int nW = width();
    const int nH = height();
    if (!isEnabled()) {
        p.fillRect(rect(), palette().brush(QPalette::Disabled, QPalette::Window));
    } else {
        std::lock_guard<std::mutex> lock(mtxDraw);
        const int nCols = geo.GetWidth();
        const QRect rcDirty = pEvent->rect();
        const int xFrom = std::max(rcDirty.left() - 1, 0);
        const int xTo = std::min(rcDirty.right(), nCols);
        if (bSpectro)
            PaintSpectro(p, xFrom, xTo);
        else
            PaintWave(p, xFrom, xTo);
        if (nW - 1 > nCols + 1)
            p.fillRect(nCols + 1, 1, nW - nCols - 2, nH - 1, kOutside.back);
        if (!vMarks.empty()) {
            p.setClipRect(1, 1, std::max(nW - 2, 0), std::max(nH - 2, 0));
            LWaveMarks::Paint(p, geo, nH, vMarks);
            p.setClipping(false);
        }
    }
    // A one-pixel sunken border.
    p.setPen(Qt::black);
    p.drawLine(0, 0, nW - 1, 0);
    p.drawLine(0, 0, 0, nH - 1);
    p.setPen(Qt::white);
    p.drawLine(0, nH - 1, nW - 1, nH - 1);
    p.drawLine(nW - 1, 0, nW - 1, nH - 1);
}

LEdWaveWindow::ColumnKinds LEdWaveWindow::KindsOfColumns() const
{
    ColumnKinds k;
    k.c0 = geo.ColumnOfSample(sCursor);
    k.c1 = geo.ColumnOfSample(sCursor + sCursorLength);
    if (k.c0 == geo.GetWidth())
        k.c0 = geo.GetWidth() - 1; // a cursor at the very end stays visible
    k.cFileStart = geo.ColumnOfSample(0);
    k.cFileEnd = pContent ? geo.ColumnOfSample(pContent->sLength) : -1;
    k.cSelStart = geo.ColumnOfSample(sSelStart);
    k.cSelEnd = geo.ColumnOfSample(sSelEnd);
    k.bSel = sSelStart < sSelEnd;
    return k;
}

LEdWaveWindow::ColumnKind LEdWaveWindow::ColumnKinds::Of(int x) const
{
    if (x == c0)
        return KindCursor;
    const bool bInSel = bSel && x >= std::max(cSelStart, 0) && x < cSelEnd;
    if (x < cFileStart || x > cFileEnd)
        return KindOutside;
    if (c0 < x && x < c1)
        return bInSel ? KindBandInSelection : KindBand;
    return bInSel ? KindSelected : KindNormal;
}

void LEdWaveWindow::PaintWave(QPainter& p, int xFrom, int xTo)
{
    const int nH = height();
    const int nMid = nHeight / 2;
    const ColumnKinds kinds = KindsOfColumns();
    for (int x = xFrom; x < xTo; ++x) {
        const int px = x + 1;
        const ColumnKind kind = kinds.Of(x);
        if (kind == KindCursor) {
            p.fillRect(px, 1, 1, nH - 1, kCursorLine);
            continue;
        }
        const PenPair swapped{kCursorBand.wave, kCursorBand.back};
        const PenPair* pPens = kind == KindOutside            ? &kOutside
                               : kind == KindBandInSelection ? &swapped
                               : kind == KindBand            ? &kCursorBand
                               : kind == KindSelected        ? &kSelected
                                                             : &kNormal;
        const int yTop = std::max(nMid - vTop[x] * nHeight / 512, 1);
        const int yBottom = std::min(nMid + vBottom[x] * nHeight / 512 + 1, nH);
        p.fillRect(px, 1, 1, yTop - 1, pPens->back);
        p.fillRect(px, yTop, 1, yBottom - yTop, pPens->wave);
        if (yBottom < nH)
            p.fillRect(px, yBottom, 1, nH - yBottom, pPens->back);
    }
}

void LEdWaveWindow::PaintSpectro(QPainter& p, int xFrom, int xTo)
{
    if (xTo <= xFrom)
        return;
    const int nH = height();
    p.drawImage(xFrom + 1, 1, spectro.Picture(xFrom, xTo, nHeight, spectroSettings));
    // The selection and the cursor band are veils over the picture, so the levels stay readable.
    const QColor veilSelected(0xFF, 0xFF, 0xFF, 0x50);
    const QColor veilBand(0xFF, 0xF1, 0xC1, 0x30);
    const ColumnKinds kinds = KindsOfColumns();
    for (int x = xFrom; x < xTo; ++x) {
        switch (kinds.Of(x)) {
        case KindCursor: p.fillRect(x + 1, 1, 1, nH - 1, kCursorLine); break;
        case KindOutside: p.fillRect(x + 1, 1, 1, nH - 1, kOutside.back); break;
        case KindBand:
        case KindBandInSelection: p.fillRect(x + 1, 1, 1, nH - 1, veilBand); break;
        case KindSelected: p.fillRect(x + 1, 1, 1, nH - 1, veilSelected); break;
        case KindNormal: break;
        }
    }
}

void LEdWaveWindow::resizeEvent(QResizeEvent* pEvent)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        geo.SetWidth(pEvent->size().width() - 2);
        nHeight = std::max(pEvent->size().height() - 1, 1);
    }
    RequestFullRedraw();
}

void LEdWaveWindow::SetDragMode(int nNewMode)
{
    std::lock_guard<std::mutex> lock(mtxDraw);
    nDragMode = nNewMode;
}

void LEdWaveWindow::SetMarks(std::vector<LWaveMark> vNewMarks)
{
    if (vNewMarks == vMarks)
        return;
    vMarks = std::move(vNewMarks);
    update();
}

void LEdWaveWindow::PlaceAsClicked(int32_t sStart, int32_t sEnd, int32_t sNewCursor)
{
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        sSelStart = sStart;
        sSelEnd = sEnd;
        sCursor = sNewCursor;
    }
    update();
    emit Notify(NotifyButtonUp);
}

void LEdWaveWindow::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(pEvent);
    const QPoint pt = pEvent->position().toPoint();
    const int nFlag = LWaveMarks::FlagAt(GetGeometry(), vMarks, pt.x(), pt.y());
    if (nFlag >= 0) {
        // A flag is picked, not dragged: the cursor goes exactly to its bookmark.
        const int32_t s = vMarks[nFlag].sStart;
        PlaceAsClicked(s, s, s);
        return;
    }
    const int x = static_cast<int>(pEvent->position().x()) - 1;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        sOrigin = geo.SampleOfColumn(x);
        sSelStart = sSelEnd = sOrigin;
    }
    bCaptured = true;
    update();
}

void LEdWaveWindow::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (!bCaptured)
        return;
    const int x = static_cast<int>(pEvent->position().x()) - 1;
    const int nWidth = GetColumnCount();
    int nMode;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        nMode = nDragMode;
    }
    if (x >= nWidth) {
        if (nMode != 4) {
            SetDragMode(4);
            emit Notify(NotifyBeyondRight);
        }
    } else if (x > 0) {
        if (nMode == 4)
            emit Notify(NotifyBackFromRight);
        if (nMode == 6)
            emit Notify(NotifyBackFromLeft);
        SetDragMode(0);
    } else if (nMode != 6) {
        SetDragMode(6);
        emit Notify(NotifyBeyondLeft);
    }
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        const int32_t s = geo.SampleOfColumn(x);
        if (s <= sOrigin)
            sSelStart = s;
        else
            sSelEnd = s;
    }
    update();
    emit Notify(NotifySelecting);
}

void LEdWaveWindow::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return QWidget::mouseDoubleClickEvent(pEvent);
    const QPoint pt = pEvent->position().toPoint();
    const int nRegion = LWaveMarks::FlagAt(GetGeometry(), vMarks, pt.x(), pt.y()) >= 0
                            ? -1
                            : LWaveMarks::RegionAt(GetGeometry(), vMarks, pt.x());
    if (nRegion < 0)
        return mousePressEvent(pEvent); // the second press of a plain double click
    const LWaveMark m = vMarks[nRegion];
    PlaceAsClicked(m.sStart, m.sEnd, m.sStart);
}

void LEdWaveWindow::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(pEvent);
    if (!bCaptured) {
        LTRACE("LEdWaveWindow::EvLButtonUp Called when not captured");
        return;
    }
    bCaptured = false;
    int nMode;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        nMode = nDragMode;
        nDragMode = 0;
    }
    if (nMode == 4)
        emit Notify(NotifyBackFromRight);
    else if (nMode == 6)
        emit Notify(NotifyBackFromLeft);
    const int x = static_cast<int>(pEvent->position().x()) - 1;
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        const int32_t s = geo.SampleOfColumn(x);
        sSelStart = std::min(sOrigin, s);
        sSelEnd = std::max(sOrigin, s);
        sCursor = s;
    }
    update();
    emit Notify(NotifyButtonUp);
    if (IsSpectrogram())
        emit Pointed(DescribePoint(pEvent->position().toPoint()));
}

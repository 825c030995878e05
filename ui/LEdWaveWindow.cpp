#include "ui/LEdWaveWindow.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QResizeEvent>

#include <algorithm>
#include <cstring>

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
    {
        std::lock_guard<std::mutex> lock(mtxDraw);
        pDraw = pContent;
        g = geo;
        nMode = nDisplayMode;
        bZoom = bVZoom;
    }
    const int nLimit = std::min(g.GetWidth(), LWaveGeometry::kMaxColumns);
    r.x0 = std::clamp(r.x0, 0, nLimit);
    r.x1 = std::clamp(r.x1, 0, nLimit);
    if (r.x1 <= r.x0)
        return;
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
        const int nMid = nHeight / 2;
        int c0 = geo.ColumnOfSample(sCursor);
        const int c1 = geo.ColumnOfSample(sCursor + sCursorLength);
        if (c0 == nCols)
            c0 = nCols - 1; // a cursor at the very end stays visible
        const int cFileStart = geo.ColumnOfSample(0);
        const int cFileEnd = pContent ? geo.ColumnOfSample(pContent->sLength) : -1;
        const int cSelStart = geo.ColumnOfSample(sSelStart);
        const int cSelEnd = geo.ColumnOfSample(sSelEnd);
        const bool bSel = sSelStart < sSelEnd;
        const QRect rcDirty = pEvent->rect();
        const int xFrom = std::max(rcDirty.left() - 1, 0);
        const int xTo = std::min(rcDirty.right(), nCols);
        for (int x = xFrom; x < xTo; ++x) {
            const int px = x + 1;
            if (x == c0) {
                p.fillRect(px, 1, 1, nH - 1, kCursorLine);
                continue;
            }
            const bool bInSel = bSel && x >= std::max(cSelStart, 0) && x < cSelEnd;
            const PenPair* pPens = &kNormal;
            PenPair swapped;
            if (x < cFileStart || x > cFileEnd) {
                pPens = &kOutside;
            } else if (c0 < x && x < c1) {
                if (bInSel) {
                    swapped = {kCursorBand.wave, kCursorBand.back};
                    pPens = &swapped;
                } else {
                    pPens = &kCursorBand;
                }
            } else if (bInSel) {
                pPens = &kSelected;
            }
            const int yTop = std::max(nMid - vTop[x] * nHeight / 512, 1);
            const int yBottom = std::min(nMid + vBottom[x] * nHeight / 512 + 1, nH);
            p.fillRect(px, 1, 1, yTop - 1, pPens->back);
            p.fillRect(px, yTop, 1, yBottom - yTop, pPens->wave);
            if (yBottom < nH)
                p.fillRect(px, yBottom, 1, nH - yBottom, pPens->back);
        }
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
}

#include "ui/effects/LBrainWaveWindow.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

#include "core/LTrace.h"

const LBrainWaveWindow::Axes LBrainWaveWindow::kEqualizerAxes = {20, 20000, -24, 24, 0, true, "Hz", "dB"};
const LBrainWaveWindow::Axes LBrainWaveWindow::kEnvelopeAxes = {0, 1000, 0, 200, 100, false, "", "%"};

namespace {
constexpr int kMargin = 8;
constexpr double kGrabPixels = 6.0;
} // namespace

LBrainWaveWindow::LBrainWaveWindow(QWidget* pParent, const Axes& a, const LPointList& l)
    : QWidget(pParent), axes(a), list(l)
{
    setObjectName("LBrainWaveWindow");
    setMinimumSize(240, 120);
    setMouseTracking(false);
}

void LBrainWaveWindow::SetPoints(const LPointList& newList)
{
    list = newList;
    update();
    emit PointsChanged();
}

QPointF LBrainWaveWindow::ToWidget(const LPoint& pt) const
{
    const double w = width() - 2 * kMargin;
    const double h = height() - 2 * kMargin;
    double fx;
    if (axes.bLogX)
        fx = std::log(std::max<double>(pt.x, axes.nMinX) / axes.nMinX) / std::log(double(axes.nMaxX) / axes.nMinX);
    else
        fx = double(pt.x - axes.nMinX) / (axes.nMaxX - axes.nMinX);
    const double fy = double(pt.y - axes.nMinY) / (axes.nMaxY - axes.nMinY);
    return QPointF(kMargin + fx * w, kMargin + (1.0 - fy) * h);
}

LPoint LBrainWaveWindow::FromWidget(const QPointF& pos) const
{
    const double w = std::max(width() - 2 * kMargin, 1);
    const double h = std::max(height() - 2 * kMargin, 1);
    const double fx = std::clamp((pos.x() - kMargin) / w, 0.0, 1.0);
    const double fy = std::clamp(1.0 - (pos.y() - kMargin) / h, 0.0, 1.0);
    LPoint pt;
    if (axes.bLogX)
        pt.x = static_cast<int32_t>(std::lround(axes.nMinX * std::pow(double(axes.nMaxX) / axes.nMinX, fx)));
    else
        pt.x = static_cast<int32_t>(std::lround(axes.nMinX + fx * (axes.nMaxX - axes.nMinX)));
    pt.y = static_cast<int32_t>(std::lround(axes.nMinY + fy * (axes.nMaxY - axes.nMinY)));
    return pt;
}

int LBrainWaveWindow::PointAt(const QPointF& pos) const
{
    for (int32_t i = 0; i < list.nPoints; ++i) {
        const QPointF d = ToWidget(list.aPoints[i]) - pos;
        if (std::hypot(d.x(), d.y()) <= kGrabPixels)
            return i;
    }
    return -1;
}

int LBrainWaveWindow::InsertPoint(const LPoint& pt)
{
    if (list.nPoints >= POINTLISTMAX - 1) {
        LTRACE("LBrainWaveWindow::EvLButtonDown pList.nPoints >= (POINTLISTMAX - 1)");
        return -1;
    }
    int32_t i = 0;
    while (i < list.nPoints && list.aPoints[i].x < pt.x)
        ++i;
    if (i < list.nPoints && list.aPoints[i].x == pt.x)
        return -1;
    for (int32_t k = list.nPoints; k > i; --k)
        list.aPoints[k] = list.aPoints[k - 1];
    list.aPoints[i] = pt;
    ++list.nPoints;
    return i;
}

void LBrainWaveWindow::MovePoint(int nIndex, LPoint pt)
{
    // A point stays strictly between its neighbours, so x keeps ascending.
    const int32_t nLow = nIndex > 0 ? list.aPoints[nIndex - 1].x + 1 : axes.nMinX;
    const int32_t nHigh = nIndex + 1 < list.nPoints ? list.aPoints[nIndex + 1].x - 1 : axes.nMaxX;
    if (nLow > nHigh)
        return;
    pt.x = std::clamp(pt.x, nLow, nHigh);
    list.aPoints[nIndex] = pt;
}

void LBrainWaveWindow::EvLButtonDown(const QPointF& pos)
{
    nDragging = PointAt(pos);
    if (nDragging < 0)
        nDragging = InsertPoint(FromWidget(pos));
    update();
    emit PointsChanged();
}

void LBrainWaveWindow::EvRButtonDown(const QPointF& pos)
{
    const int i = PointAt(pos);
    if (i < 0)
        return;
    for (int32_t k = i; k + 1 < list.nPoints; ++k)
        list.aPoints[k] = list.aPoints[k + 1];
    --list.nPoints;
    update();
    emit PointsChanged();
}

void LBrainWaveWindow::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton)
        EvLButtonDown(pEvent->position());
    else if (pEvent->button() == Qt::RightButton)
        EvRButtonDown(pEvent->position());
}

void LBrainWaveWindow::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (nDragging < 0 || nDragging >= list.nPoints)
        return;
    MovePoint(nDragging, FromWidget(pEvent->position()));
    update();
    emit PointsChanged();
}

void LBrainWaveWindow::mouseReleaseEvent(QMouseEvent*)
{
    nDragging = -1;
}

void LBrainWaveWindow::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), palette().base());
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(palette().mid().color(), 1, Qt::DotLine));
    const QPointF ref0 = ToWidget({axes.nMinX, axes.nReferenceY});
    const QPointF ref1 = ToWidget({axes.nMaxX, axes.nReferenceY});
    p.drawLine(ref0, ref1);
    p.setPen(palette().text().color());
    p.drawText(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin), Qt::AlignTop | Qt::AlignLeft,
               QString("%1 %2").arg(axes.nMaxY).arg(axes.szUnitY));
    p.drawText(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin), Qt::AlignBottom | Qt::AlignRight,
               QString("%1 %2").arg(axes.nMaxX).arg(axes.szUnitX));
    if (list.nPoints <= 0)
        return;
    // Flat beyond the ends, as the effect reads the curve.
    QPainterPath path(ToWidget({axes.nMinX, list.aPoints[0].y}));
    for (int32_t i = 0; i < list.nPoints; ++i)
        path.lineTo(ToWidget(list.aPoints[i]));
    path.lineTo(ToWidget({axes.nMaxX, list.aPoints[list.nPoints - 1].y}));
    p.setPen(QPen(palette().highlight().color(), 2));
    p.drawPath(path);
    p.setBrush(palette().highlight());
    for (int32_t i = 0; i < list.nPoints; ++i)
        p.drawEllipse(ToWidget(list.aPoints[i]), 3.5, 3.5);
}

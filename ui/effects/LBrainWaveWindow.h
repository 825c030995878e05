// The curve editor: shows a point list as straight lines over a grid. A left click adds a point
// (or picks up the one under the mouse, which then follows it between its neighbours), a right
// click on a point removes it. The equalizer's x axis is logarithmic in Hz, the envelope's runs
// over the selection from 0 to 1000.
#pragma once

#include <QWidget>

#include "dsp/LPointList.h"

class LBrainWaveWindow : public QWidget
{
    Q_OBJECT
public:
    struct Axes
    {
        int32_t nMinX, nMaxX;
        int32_t nMinY, nMaxY;
        int32_t nReferenceY; // drawn as a line: 0 dB, or 100 %
        bool bLogX;
        const char* szUnitX;
        const char* szUnitY;
    };
    static const Axes kEqualizerAxes;
    static const Axes kEnvelopeAxes;

    LBrainWaveWindow(QWidget* pParent, const Axes& axes, const LPointList& list);

    const LPointList& GetPoints() const { return list; }
    void SetPoints(const LPointList& newList);

    // Curve values at a widget position and back.
    QPointF ToWidget(const LPoint& pt) const;
    LPoint FromWidget(const QPointF& pos) const;

signals:
    void PointsChanged();

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    QSize sizeHint() const override { return QSize(480, 240); }

private:
    void EvLButtonDown(const QPointF& pos);
    void EvRButtonDown(const QPointF& pos);
    // The point within a few pixels of pos, or -1.
    int PointAt(const QPointF& pos) const;
    // Inserts keeping x ascending; -1 when the list is full or the x is taken.
    int InsertPoint(const LPoint& pt);
    void MovePoint(int nIndex, LPoint pt);

    Axes axes;
    LPointList list;
    int nDragging = -1;
};

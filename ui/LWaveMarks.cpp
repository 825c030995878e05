#include "ui/LWaveMarks.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cstdlib>

namespace LWaveMarks {

namespace {
// The pixel span [x0, x1) a region covers in the view, clipped to the columns; empty when unseen.
void RegionSpan(const LWaveGeometry& geo, const LWaveMark& m, int& x0, int& x1)
{
    const int nWidth = geo.GetWidth();
    const int c0 = geo.ColumnOfSample(m.sStart);
    const int c1 = geo.ColumnOfSample(m.sEnd);
    x0 = (c0 < 0 ? 0 : std::min(c0, nWidth)) + 1;
    x1 = (c1 < 0 ? 0 : std::min(c1, nWidth)) + 1;
    if (c1 < 0 || geo.GetViewLength() <= 0)
        x0 = x1 = 0;
}

void PaintRegion(QPainter& p, const LWaveGeometry& geo, int nHeight, const LWaveMark& m)
{
    int x0 = 0, x1 = 0;
    RegionSpan(geo, m, x0, x1);
    if (x1 <= x0)
        return;
    p.fillRect(x0, 1, x1 - x0, nHeight - 1, kRegionShade);
    p.setPen(kRegionEdge);
    if (geo.ColumnOfSample(m.sStart) >= 0)
        p.drawLine(x0, 1, x0, nHeight - 1);
    if (geo.ColumnOfSample(m.sEnd) >= 0 && geo.ColumnOfSample(m.sEnd) < geo.GetWidth())
        p.drawLine(x1 - 1, 1, x1 - 1, nHeight - 1);
    const QFontMetrics fm(p.font());
    if (nHeight > 2 * fm.height() && x1 - x0 > fm.averageCharWidth() * 3) {
        p.setPen(Qt::white);
        const QString sz = fm.elidedText(m.szName, Qt::ElideRight, x1 - x0 - 4);
        p.drawText(x0 + 2, nHeight - 3 - fm.descent(), sz);
    }
}

void PaintFlag(QPainter& p, const LWaveGeometry& geo, int nHeight, const LWaveMark& m)
{
    const int x = FlagX(geo, m.sStart);
    if (x < 0)
        return;
    p.fillRect(x, 1, 1, nHeight - 1, kFlag);
    p.fillRect(x, 1, kFlagWidth, std::min(kFlagHeight / 2, nHeight - 1), kFlag);
    const QFontMetrics fm(p.font());
    if (nHeight > kFlagHeight + 4) {
        p.setPen(kFlag);
        p.drawText(x + kFlagWidth + 2, 1 + fm.ascent(), m.szName);
    }
}
} // namespace

int FlagX(const LWaveGeometry& geo, int32_t sPosition)
{
    const int c = geo.ColumnOfSample(sPosition);
    if (c < 0 || c >= geo.GetWidth())
        return -1;
    return c + 1;
}

void Paint(QPainter& p, const LWaveGeometry& geo, int nHeight, const std::vector<LWaveMark>& vMarks)
{
    // Regions first, so that a flag inside one stays plain to see.
    for (const LWaveMark& m : vMarks)
        if (m.bRegion)
            PaintRegion(p, geo, nHeight, m);
    for (const LWaveMark& m : vMarks)
        if (!m.bRegion)
            PaintFlag(p, geo, nHeight, m);
}

int FlagAt(const LWaveGeometry& geo, const std::vector<LWaveMark>& vMarks, int x, int y)
{
    if (y > kFlagHeight)
        return -1;
    int nBest = -1;
    int nBestDistance = kPickSlack + kFlagWidth + 1;
    for (size_t i = 0; i < vMarks.size(); ++i) {
        if (vMarks[i].bRegion)
            continue;
        const int xFlag = FlagX(geo, vMarks[i].sStart);
        if (xFlag < 0 || x < xFlag - kPickSlack || x > xFlag + kFlagWidth)
            continue;
        const int nDistance = std::abs(x - xFlag);
        if (nDistance < nBestDistance) {
            nBestDistance = nDistance;
            nBest = static_cast<int>(i);
        }
    }
    return nBest;
}

int RegionAt(const LWaveGeometry& geo, const std::vector<LWaveMark>& vMarks, int x)
{
    int nBest = -1;
    int64_t nBestLength = INT64_MAX;
    for (size_t i = 0; i < vMarks.size(); ++i) {
        if (!vMarks[i].bRegion)
            continue;
        int x0 = 0, x1 = 0;
        RegionSpan(geo, vMarks[i], x0, x1);
        const int64_t nLength = static_cast<int64_t>(vMarks[i].sEnd) - vMarks[i].sStart;
        if (x >= x0 && x < x1 && nLength < nBestLength) {
            nBestLength = nLength;
            nBest = static_cast<int>(i);
        }
    }
    return nBest;
}

} // namespace LWaveMarks

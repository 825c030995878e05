#include "ui/tools/LFrequencyAxis.h"

#include <algorithm>
#include <cmath>

namespace LFrequencyAxis {

namespace {
constexpr double kGap = 6; // pixels between two labels

double XOf(const QRectF& r, double fLowHz, double fTopHz, double fHz)
{
    return r.left() + r.width() * std::log(fHz / fLowHz) / std::log(fTopHz / fLowHz);
}

// Tens first, then twos, then fives: the labels that matter most are placed before the others
// can take their room.
int Rank(double fHz)
{
    const double fMantissa = fHz / std::pow(10.0, std::floor(std::log10(fHz) + 1e-9));
    return fMantissa < 1.5 ? 0 : (fMantissa < 3 ? 1 : 2);
}
} // namespace

QString Label(double fHz)
{
    if (fHz >= 1000)
        return QString("%1 kHz").arg(QString::number(fHz / 1000, 'g', 3));
    return QString("%1 Hz").arg(QString::number(fHz, 'g', 4));
}

std::vector<LAxisTick> Ticks(const QRectF& rcPlot, double fLowHz, double fTopHz, const QFontMetrics& fm)
{
    std::vector<LAxisTick> v;
    if (fTopHz <= fLowHz || rcPlot.width() <= 0)
        return v;
    for (double fDecade = std::pow(10.0, std::floor(std::log10(fLowHz))); fDecade < fTopHz; fDecade *= 10)
        for (double fStep : {1.0, 2.0, 5.0})
            if (const double fHz = fDecade * fStep; fHz > fLowHz && fHz < fTopHz)
                v.push_back({fHz, XOf(rcPlot, fLowHz, fTopHz, fHz), QString(), QRectF()});
    std::vector<QRectF> vTaken;
    for (int nRank = 0; nRank < 3; ++nRank) {
        for (LAxisTick& t : v) {
            if (Rank(t.fHz) != nRank)
                continue;
            const QString sz = Label(t.fHz);
            const double w = fm.horizontalAdvance(sz) + 2;
            QRectF rc(t.x - w / 2, rcPlot.bottom() + 2, w, fm.height());
            // Labels near the ends slide inward rather than run off the axis.
            if (rc.left() < rcPlot.left() - 20)
                rc.moveLeft(rcPlot.left() - 20);
            if (rc.right() > rcPlot.right())
                rc.moveRight(rcPlot.right());
            const QRectF rcWithGap = rc.adjusted(-kGap / 2, 0, kGap / 2, 0);
            if (std::any_of(vTaken.begin(), vTaken.end(), [&](const QRectF& o) { return o.intersects(rcWithGap); }))
                continue;
            t.szLabel = sz;
            t.rcLabel = rc;
            vTaken.push_back(rcWithGap);
        }
    }
    return v;
}

} // namespace LFrequencyAxis

// The frequency axis of the analysis window: which ticks a log axis of a given width gets and how
// they read ("50 Hz", "2 kHz"). A label is kept only where it fits beside those already placed,
// so no two overlap however narrow the window.
#pragma once

#include <QFontMetrics>
#include <QRectF>
#include <QString>

#include <vector>

struct LAxisTick
{
    double fHz = 0;
    double x = 0;      // where the tick's line stands
    QString szLabel;   // empty for a line without a label
    QRectF rcLabel;    // where the label is drawn, below the plot
};

namespace LFrequencyAxis {

// "20 Hz", "500 Hz", "1 kHz", "2.5 kHz", "20 kHz".
QString Label(double fHz);
// Ticks on the 1-2-5 steps between fLowHz and fTopHz over the plot rectangle (log scale), their
// labels in a row below it, none overlapping another or passing the rectangle's right end.
std::vector<LAxisTick> Ticks(const QRectF& rcPlot, double fLowHz, double fTopHz, const QFontMetrics& fm);

} // namespace LFrequencyAxis

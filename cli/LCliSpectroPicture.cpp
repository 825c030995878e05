#include "cli/LCliSpectroPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "dsp/LSpectroColours.h"

namespace {
const LCliColour kBack{0x20, 0x22, 0x26};
const LCliColour kInk{0xE0, 0xE0, 0xE0};

std::string HzLabel(double fHz)
{
    char sz[32];
    if (fHz < 1000)
        std::snprintf(sz, sizeof sz, "%d", static_cast<int>(std::lround(fHz)));
    else
        std::snprintf(sz, sizeof sz, "%gk", std::round(fHz / 100.0) / 10.0);
    return sz;
}

std::string TimeLabel(double fSeconds, double fStep, double fTotal)
{
    char sz[32];
    const long nWhole = static_cast<long>(std::floor(fSeconds + 1e-9));
    if (fStep < 1.0) {
        std::snprintf(sz, sizeof sz, fStep < 0.1 ? "%.2f" : "%.1f", fSeconds);
    } else if (fTotal < 60.0) {
        std::snprintf(sz, sizeof sz, "%ld", nWhole);
    } else if (fSeconds < 3600.0 && fTotal < 3600.0) {
        std::snprintf(sz, sizeof sz, "%ld:%02ld", nWhole / 60, nWhole % 60);
    } else {
        std::snprintf(sz, sizeof sz, "%ld:%02ld:%02ld", nWhole / 3600, nWhole / 60 % 60, nWhole % 60);
    }
    return sz;
}

void FrequencyAxis(LCliCanvas& c, const LSpectroRows& rows, int nLaneTop, int nRows)
{
    static const double kLinearSteps[] = {50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000};
    static const double kMarks[] = {20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000};
    const double fTop = rows.HzAt(rows.GetRows());
    std::vector<double> vHz;
    if (rows.HzAt(0) <= 0.0 && rows.HzAt(rows.GetRows() / 2.0) >= fTop / 2.0 - 1.0) {
        // Linear: an even step, about 30 pixels apart at least.
        double fStep = kLinearSteps[std::size(kLinearSteps) - 1];
        for (double f : kLinearSteps)
            if (f / fTop * nRows >= 30) {
                fStep = f;
                break;
            }
        for (double f = 0; f <= fTop; f += fStep)
            vHz.push_back(f);
    } else {
        vHz.assign(std::begin(kMarks), std::end(kMarks));
    }
    int yLast = 1 << 30;
    for (double f : vHz) {
        if (f > fTop || f < rows.HzAt(0))
            continue;
        const double fRow = rows.RowOf(f) + 0.5;
        const int y = nLaneTop + nRows - 1 - static_cast<int>(fRow * nRows / rows.GetRows());
        if (yLast - y < 12)
            continue;
        yLast = y;
        c.Fill(LCliSpectroLayout::kLeft - 4, y, 4, 1, kInk);
        const std::string sz = HzLabel(f);
        c.Text(LCliSpectroLayout::kLeft - 6 - LCliCanvas::TextWidth(sz), y - 3, sz, kInk);
    }
}

void TimeAxis(LCliCanvas& c, const LCliSpectroLayout& l, const LCliSpectroSpan& span)
{
    static const double kSteps[] = {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200};
    const double fFrom = static_cast<double>(span.sStart) / span.nRate;
    const double fTotal = static_cast<double>(span.sEnd - span.sStart) / span.nRate;
    const int nMaxTicks = std::max(l.nPlotWidth / 90, 1);
    double fStep = kSteps[std::size(kSteps) - 1];
    for (double f : kSteps)
        if (fTotal / f <= nMaxTicks) {
            fStep = f;
            break;
        }
    const int y = LCliSpectroLayout::kTop + l.nPlotHeight;
    for (double t = std::ceil(fFrom / fStep - 1e-9) * fStep; t <= fFrom + fTotal + 1e-9; t += fStep) {
        const int x = LCliSpectroLayout::kLeft + static_cast<int>((t - fFrom) / std::max(fTotal, 1e-9) * l.nPlotWidth);
        c.Fill(x, y, 1, 4, kInk);
        const std::string sz = TimeLabel(t, fStep, fFrom + fTotal);
        c.Text(std::clamp(x - LCliCanvas::TextWidth(sz) / 2, 0, c.GetWidth() - LCliCanvas::TextWidth(sz)), y + 7, sz, kInk);
    }
    if (fFrom + fTotal < 60.0 || fStep < 1.0)
        c.Text(LCliSpectroLayout::kLeft + l.nPlotWidth + 4, y + 7, "s", kInk);
}

void LevelScale(LCliCanvas& c, const LCliSpectroLayout& l, const LSpectroSettings& s)
{
    const LSpectroPalette& pal = LSpectroColours(s.eColours);
    const int x = LCliSpectroLayout::kLeft + l.nPlotWidth + 12;
    const int nH = l.nPlotHeight;
    for (int y = 0; y < nH; ++y) {
        const LSpectroRgb& rgb = pal[static_cast<size_t>((nH - 1 - y) * 255 / std::max(nH - 1, 1))];
        c.Fill(x, LCliSpectroLayout::kTop + y, 14, 1, {rgb.r, rgb.g, rgb.b});
    }
    const int nStep = s.nRangeDb > 60 ? 20 : 10;
    const double fTop = -s.nGainDb, fBottom = -s.nGainDb - s.nRangeDb;
    for (int nDb = static_cast<int>(std::floor(fTop / nStep)) * nStep; nDb >= fBottom; nDb -= nStep) {
        const int y = LCliSpectroLayout::kTop + static_cast<int>((fTop - nDb) / s.nRangeDb * (nH - 1));
        c.Fill(x + 14, y, 3, 1, kInk);
        c.Text(x + 19, y - 3, std::to_string(nDb), kInk);
    }
    c.Text(x + 19, LCliSpectroLayout::kTop + nH + 7, "dB", kInk);
}
} // namespace

LCliCanvas LCliSpectroPicture(const LCliSpectroLayout& l, const std::vector<float>& vDb, const LSpectroRows& rows,
                              const LSpectroSettings& settings, const LCliSpectroSpan& span)
{
    LCliCanvas c(l.GetWidth(), l.GetHeight(), kBack);
    const LSpectroPalette& pal = LSpectroColours(settings.eColours);
    const int nRows = l.LaneRows();
    for (int lane = 0; lane < l.nLanes; ++lane) {
        const int yTop = LCliSpectroLayout::kTop + lane * (nRows + LCliSpectroLayout::kLaneGap);
        for (int x = 0; x < l.nPlotWidth; ++x) {
            const float* pRows = vDb.data() + (static_cast<size_t>(x) * l.nLanes + lane) * nRows;
            for (int r = 0; r < nRows; ++r) {
                const LSpectroRgb& rgb = pal[LSpectroLevelByte(pRows[r], settings)];
                c.Set(LCliSpectroLayout::kLeft + x, yTop + nRows - 1 - r, {rgb.r, rgb.g, rgb.b});
            }
        }
        FrequencyAxis(c, rows, yTop, nRows);
    }
    TimeAxis(c, l, span);
    LevelScale(c, l, settings);
    return c;
}

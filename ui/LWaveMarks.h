// Bookmarks and regions as a waveform display shows them: a bookmark is a flag on a line at its
// position, a region a shaded span with its name at the top. Painting and hit-testing share one
// placement, so a click lands on exactly what is drawn.
#pragma once

#include <QColor>
#include <QString>

#include <cstdint>
#include <vector>

#include "ui/LWaveGeometry.h"

class QPainter;

struct LWaveMark
{
    int32_t sStart = 0;
    int32_t sEnd = 0; // a region's end; a bookmark's equals its start
    QString szName;
    bool bRegion = false;

    bool operator==(const LWaveMark&) const = default;
};

namespace LWaveMarks {

const QColor kFlag(0xFF, 0x9F, 0x1C);
const QColor kRegionShade(0x7E, 0x57, 0xC2, 0x60);
const QColor kRegionEdge(0xB3, 0x9D, 0xDB);
constexpr int kFlagHeight = 14; // the flag's head: the part a click picks
constexpr int kFlagWidth = 9;
constexpr int kPickSlack = 3;   // pixels either side of a flag's line that still pick it

// The pixel x of a bookmark's line (the display's border takes pixel 0); -1 when outside the view.
int FlagX(const LWaveGeometry& geo, int32_t sPosition);
// Draws the marks over a display of nHeight pixels.
void Paint(QPainter& p, const LWaveGeometry& geo, int nHeight, const std::vector<LWaveMark>& vMarks);
// The bookmark whose flag is at the pixel; -1 for none (the nearest wins).
int FlagAt(const LWaveGeometry& geo, const std::vector<LWaveMark>& vMarks, int x, int y);
// The region spanning the pixel column; -1 for none (the shortest wins where several do).
int RegionAt(const LWaveGeometry& geo, const std::vector<LWaveMark>& vMarks, int x);

} // namespace LWaveMarks

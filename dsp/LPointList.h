// A curve drawn by the user as points joined by straight lines, in ascending x order: the
// equalizer's (x frequency in Hz, y gain in dB) and the envelope's (x position, y level).
#pragma once

#include <cstdint>

inline constexpr int32_t POINTLISTMAX = 64;

struct LPoint
{
    int32_t x = 0;
    int32_t y = 0;
};

struct LPointList
{
    int32_t nPoints = 0;
    LPoint aPoints[POINTLISTMAX];

    // Fewer than POINTLISTMAX points, x strictly ascending; a bad list is traced.
    bool Validate() const;
    // Appends a point after the last one; false when the list is full (one place is kept
    // spare, as the curve editor inserts before it checks) or x would not ascend.
    bool Add(int32_t x, int32_t y);
    // y on the straight line between the two points around x; flat beyond the ends, 0 when empty.
    double YAt(double x) const;
};

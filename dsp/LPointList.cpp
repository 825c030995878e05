#include "dsp/LPointList.h"

#include "core/LTrace.h"

bool LPointList::Validate() const
{
    if (nPoints < 0 || nPoints >= POINTLISTMAX) {
        LTRACE("PointList::Validate() nPoints >= POINTLISTMAX");
        return false;
    }
    for (int32_t i = 1; i < nPoints; ++i) {
        if (aPoints[i].x <= aPoints[i - 1].x) {
            LTRACE("PointList::Validate() Points not in ascending x order");
            return false;
        }
    }
    return true;
}

bool LPointList::Add(int32_t x, int32_t y)
{
    if (nPoints < 0 || nPoints >= POINTLISTMAX - 1)
        return false;
    if (nPoints > 0 && x <= aPoints[nPoints - 1].x)
        return false;
    aPoints[nPoints].x = x;
    aPoints[nPoints].y = y;
    ++nPoints;
    return true;
}

double LPointList::YAt(double x) const
{
    if (nPoints <= 0)
        return 0.0;
    if (x <= aPoints[0].x)
        return aPoints[0].y;
    for (int32_t i = 1; i < nPoints && i < POINTLISTMAX; ++i) {
        if (x <= aPoints[i].x) {
            const LPoint& a = aPoints[i - 1];
            const LPoint& b = aPoints[i];
            return a.y + (b.y - a.y) * (x - a.x) / static_cast<double>(b.x - a.x);
        }
    }
    return aPoints[nPoints < POINTLISTMAX ? nPoints - 1 : POINTLISTMAX - 1].y;
}

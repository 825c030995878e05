#include "ui/LWaveGeometry.h"

#include <algorithm>
#include <cmath>

void LWaveGeometry::SetWidth(int nNewWidth)
{
    nWidth = std::clamp(nNewWidth, 1, kMaxColumns);
    Rescale();
}

void LWaveGeometry::SetView(int32_t sStart, int32_t sLength)
{
    sViewStart = sStart;
    sViewLength = sLength;
    Rescale();
}

void LWaveGeometry::SetStart(int32_t sStart)
{
    sViewStart = sStart;
    nPixelOffset = static_cast<int32_t>(std::trunc(static_cast<double>(sViewStart) * fPixelsPerSample));
}

void LWaveGeometry::Rescale()
{
    // A very narrow window still spreads the view over eight columns.
    fPixelsPerSample = sViewLength > 0 ? static_cast<double>(std::max(nWidth, 8)) / sViewLength : 0.0;
    SetStart(sViewStart);
}

int32_t LWaveGeometry::SampleOfColumn(int32_t x) const
{
    if (fPixelsPerSample <= 0.0)
        return sViewStart;
    double f = std::trunc((static_cast<double>(x) + nPixelOffset) / fPixelsPerSample);
    return static_cast<int32_t>(std::clamp(f, -2147483648.0, 2147483647.0));
}

int32_t LWaveGeometry::ColumnOfSample(int32_t s) const
{
    if (sViewLength <= 0)
        return -1;
    double f = std::trunc(static_cast<double>(s) * fPixelsPerSample) - nPixelOffset;
    if (f < 0)
        return -1;
    if (f > nWidth)
        return nWidth;
    return static_cast<int32_t>(f);
}

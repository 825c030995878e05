// The mapping between pixel columns and sample positions of a waveform view.
// Plain arithmetic, shared by the display, its worker and the tests.
#pragma once

#include <cstdint>

class LWaveGeometry
{
public:
    static constexpr int kMaxColumns = 2048;

    // Width in columns, kept within 1..2048.
    void SetWidth(int nNewWidth);
    int GetWidth() const { return nWidth; }

    // A new length recomputes the scale; the same length only moves the start.
    void SetView(int32_t sStart, int32_t sLength);
    void SetStart(int32_t sStart);

    int32_t GetViewStart() const { return sViewStart; }
    int32_t GetViewLength() const { return sViewLength; }
    int32_t GetPixelOffset() const { return nPixelOffset; }
    double GetPixelsPerSample() const { return fPixelsPerSample; }

    int32_t SampleOfColumn(int32_t x) const;
    // -1 before the view (or with no view), the width past its end.
    int32_t ColumnOfSample(int32_t s) const;

private:
    void Rescale();

    int nWidth = 1;
    int32_t sViewStart = 0;
    int32_t sViewLength = 0;
    int32_t nPixelOffset = 0;
    double fPixelsPerSample = 0.0;
};

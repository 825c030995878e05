// The rows of a spectrogram picture on a linear, logarithmic or mel frequency scale, and how a
// row takes its level from the bins of a spectrum: the loudest bin inside its band, or, where the
// band falls between two bins, the power read between them.
#pragma once

#include <cstdint>
#include <vector>

#include "dsp/LSpectroSettings.h"

class LSpectroRows
{
public:
    static constexpr double kLogLowestHz = 20.0;

    // nRows rows (row 0 the lowest) from 0 Hz (the log scale from kLogLowestHz) to half the
    // rate, over bins spaced fBinHz apart, nBins of them.
    LSpectroRows(LSpectroScale eScale, int32_t nRate, int32_t nRows, double fBinHz, int32_t nBins);

    int32_t GetRows() const { return nRows; }
    // The frequency where the scale stands at fRow (row r spans [r, r + 1); its centre is r + 0.5).
    double HzAt(double fRow) const;
    // The row whose band holds the frequency, clamped to the rows.
    int32_t RowOf(double fHz) const;

    // Fills nRows powers from one spectrum of nBins powers.
    void Map(const double* pBins, double* pRows) const;

private:
    double ScaleOf(double fHz) const;
    double HzOfScale(double fScale) const;

    struct Row
    {
        int32_t k0; // a band: bins k0..k1 inclusive; else interpolation at k0 + fFrac
        int32_t k1;
        double fFrac;
        bool bBand;
    };
    LSpectroScale eScale;
    double fLowHz;
    double fHighHz;
    int32_t nRows;
    std::vector<Row> vRows;
};

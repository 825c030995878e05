#include "dsp/LSpectroRows.h"

#include <algorithm>
#include <cmath>

namespace {
double Mel(double fHz)
{
    return 2595.0 * std::log10(1.0 + fHz / 700.0);
}

double HzOfMel(double fMel)
{
    return 700.0 * (std::pow(10.0, fMel / 2595.0) - 1.0);
}
} // namespace

LSpectroRows::LSpectroRows(LSpectroScale eNewScale, int32_t nRate, int32_t nNewRows, double fBinHz, int32_t nBins)
    : eScale(eNewScale), nRows(std::max(nNewRows, 1))
{
    fHighHz = std::max(nRate, 2) / 2.0;
    fLowHz = eScale == SpectroLog ? std::min(kLogLowestHz, fHighHz / 10.0) : 0.0;
    fBinHz = fBinHz > 0 ? fBinHz : 1.0;
    nBins = std::max(nBins, 2);
    vRows.resize(nRows);
    for (int32_t r = 0; r < nRows; ++r) {
        const double fLo = HzAt(r) / fBinHz;
        const double fHi = HzAt(r + 1) / fBinHz;
        Row& row = vRows[r];
        // A row whose band holds bin centres takes the loudest of them.
        row.k0 = static_cast<int32_t>(std::ceil(fLo));
        row.k1 = static_cast<int32_t>(std::ceil(fHi)) - 1;
        row.bBand = row.k0 <= row.k1;
        if (row.bBand) {
            row.k0 = std::clamp(row.k0, 0, nBins - 1);
            row.k1 = std::clamp(row.k1, row.k0, nBins - 1);
            row.fFrac = 0.0;
        } else {
            const double fAt = std::clamp(HzAt(r + 0.5) / fBinHz, 0.0, nBins - 1.0);
            row.k0 = std::min(static_cast<int32_t>(fAt), nBins - 2);
            row.fFrac = fAt - row.k0;
        }
    }
}

double LSpectroRows::ScaleOf(double fHz) const
{
    switch (eScale) {
    case SpectroLog: return std::log(std::max(fHz, fLowHz) / fLowHz) / std::log(fHighHz / fLowHz);
    case SpectroMel: return Mel(fHz) / Mel(fHighHz);
    default: return fHz / fHighHz;
    }
}

double LSpectroRows::HzOfScale(double f) const
{
    switch (eScale) {
    case SpectroLog: return fLowHz * std::pow(fHighHz / fLowHz, f);
    case SpectroMel: return HzOfMel(f * Mel(fHighHz));
    default: return f * fHighHz;
    }
}

double LSpectroRows::HzAt(double fRow) const
{
    return HzOfScale(fRow / nRows);
}

int32_t LSpectroRows::RowOf(double fHz) const
{
    return std::clamp(static_cast<int32_t>(std::floor(ScaleOf(fHz) * nRows)), 0, nRows - 1);
}

void LSpectroRows::Map(const double* pBins, double* pRows) const
{
    for (int32_t r = 0; r < nRows; ++r) {
        const Row& row = vRows[r];
        if (row.bBand) {
            double fMax = pBins[row.k0];
            for (int32_t k = row.k0 + 1; k <= row.k1; ++k)
                fMax = std::max(fMax, pBins[k]);
            pRows[r] = fMax;
        } else {
            pRows[r] = pBins[row.k0] * (1.0 - row.fFrac) + pBins[row.k0 + 1] * row.fFrac;
        }
    }
}

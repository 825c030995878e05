#include "dsp/LSpectroAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {
constexpr double kFullScale = 524272.0;
constexpr double kFloorDb = -320.0;
} // namespace

LSpectroAnalyzer::LSpectroAnalyzer(const LSpectroSettings& settings)
    : nSize(LSpectroSettings::IsValidWindow(settings.nWindow) ? settings.nWindow : 2048), eWindow(settings.eWindow),
      fft(nSize), vWindow(LSpectroWindowTable(settings.eWindow, nSize)), vBuf(nSize)
{
    // A sine of amplitude A on a bin gives |X| = A * sum(w) / 2.
    const double fHalfSum = std::accumulate(vWindow.begin(), vWindow.end(), 0.0) / 2.0;
    fScale = 1.0 / (fHalfSum * kFullScale * fHalfSum * kFullScale);
}

void LSpectroAnalyzer::Deinterleave(const int32_t* pFrames, int32_t nFrames, uint8_t nChans, uint8_t c,
                                    double* pOut) const
{
    const int32_t n = std::clamp(nFrames, 0, nSize);
    for (int32_t i = 0; i < n; ++i)
        pOut[i] = pFrames[static_cast<size_t>(i) * nChans + c];
    std::fill(pOut + n, pOut + nSize, 0.0);
}

void LSpectroAnalyzer::AddPower(const double* pA, const double* pB, double* pSumA, double* pSumB)
{
    for (int32_t i = 0; i < nSize; ++i)
        vBuf[i] = {pA[i] * vWindow[i], pB ? pB[i] * vWindow[i] : 0.0};
    fft.Forward(vBuf.data());
    const int32_t nHalf = nSize / 2;
    if (!pB) {
        for (int32_t k = 0; k <= nHalf; ++k)
            pSumA[k] += std::norm(vBuf[k]) * fScale;
        return;
    }
    // The transform of a + ib splits into a's (Z[k] + conj Z[N-k]) / 2 and b's (Z[k] - conj Z[N-k]) / 2i.
    for (int32_t k = 0; k <= nHalf; ++k) {
        const std::complex<double> z = vBuf[k];
        const std::complex<double> zm = std::conj(vBuf[(nSize - k) & (nSize - 1)]);
        pSumA[k] += std::norm(z + zm) * 0.25 * fScale;
        pSumB[k] += std::norm(z - zm) * 0.25 * fScale;
    }
}

double LSpectroAnalyzer::PowerToDb(double fPower)
{
    return fPower > 0 ? std::max(kFloorDb, 10.0 * std::log10(fPower)) : kFloorDb;
}

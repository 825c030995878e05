#include "dsp/LSpectrum.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "core/LTrace.h"
#include "dsp/LFFT.h"

namespace {
constexpr double kFullScale = 524272.0;
}

bool LSpectrum::IsValidSize(int32_t n)
{
    return n >= kMinSize && n <= kMaxSize && (n & (n - 1)) == 0;
}

bool LSpectrum::Analyze(LSoundSourceBase& source, int32_t sStart, int32_t sEnd, int32_t nNewSize)
{
    if (!IsValidSize(nNewSize) || source.IsError()) {
        LTRACE("LSpectrum::Analyze bad size %d or source", nNewSize);
        return false;
    }
    nSize = nNewSize;
    nRate = source.GetSampleRate();
    const uint8_t nChans = source.GetChannels();
    sStart = std::max(sStart, 0);
    sEnd = std::max(sEnd, sStart);
    const int64_t nSpan = static_cast<int64_t>(sEnd) - sStart;
    const int32_t nHop = nSize / 2;
    int64_t nFrames = nSpan <= nSize ? 1 : (nSpan - nSize) / nHop + 1;
    int64_t nStep = nHop;
    if (nFrames > kMaxFrames) {
        nFrames = kMaxFrames;
        nStep = (nSpan - nSize) / (kMaxFrames - 1);
    }
    std::vector<double> vWindow(nSize);
    for (int32_t n = 0; n < nSize; ++n)
        vWindow[n] = 0.5 - 0.5 * std::cos(2.0 * M_PI * n / nSize);
    LFFT fft(nSize);
    std::vector<int32_t> vRead(static_cast<size_t>(nSize) * nChans);
    std::vector<std::complex<double>> vBuf(nSize);
    std::vector<double> vPower(nSize / 2 + 1, 0.0);
    for (int64_t i = 0; i < nFrames; ++i) {
        const int64_t sFrame = sStart + i * nStep;
        source.SetPosition(static_cast<int32_t>(sFrame));
        source.Read(vRead.data(), nSize);
        // Past the stretch (a short selection) is silence, not what follows it.
        const int64_t nValid = std::clamp<int64_t>(sEnd - sFrame, 0, nSize);
        for (uint8_t c = 0; c < nChans; ++c) {
            for (int32_t n = 0; n < nSize; ++n)
                vBuf[n] = n < nValid ? vRead[static_cast<size_t>(n) * nChans + c] * vWindow[n] : 0.0;
            fft.Forward(vBuf.data());
            for (int32_t k = 0; k <= nSize / 2; ++k)
                vPower[k] += std::norm(vBuf[k]);
        }
    }
    // A sine of amplitude A centred on a bin gives |X| = A N / 4 through the Hann window.
    const double fScale = 4.0 / (static_cast<double>(nSize) * kFullScale);
    const double fFrames = static_cast<double>(nFrames) * nChans;
    vDb.resize(vPower.size());
    for (size_t k = 0; k < vPower.size(); ++k) {
        const double fPower = vPower[k] / fFrames * fScale * fScale;
        vDb[k] = fPower > 0 ? std::max(kFloorDb, 10.0 * std::log10(fPower)) : kFloorDb;
    }
    return true;
}

double LSpectrum::DbAt(double fHz) const
{
    if (vDb.empty())
        return kFloorDb;
    const long k = std::lround(fHz * nSize / nRate);
    return vDb[std::clamp<long>(k, 0, static_cast<long>(vDb.size()) - 1)];
}

std::vector<LSpectrumPeak> LSpectrum::Peaks(int32_t nMax, double fAboveDb) const
{
    std::vector<LSpectrumPeak> v;
    for (size_t k = 1; k + 1 < vDb.size(); ++k) {
        const double a = vDb[k - 1], b = vDb[k], c = vDb[k + 1];
        if (b <= fAboveDb || b < a || b <= c)
            continue;
        const double fDen = a - 2.0 * b + c;
        const double p = fDen < 0 ? std::clamp(0.5 * (a - c) / fDen, -0.5, 0.5) : 0.0;
        v.push_back({(static_cast<double>(k) + p) * nRate / nSize, b - 0.25 * (a - c) * p});
    }
    std::sort(v.begin(), v.end(), [](const LSpectrumPeak& x, const LSpectrumPeak& y) { return x.fDb > y.fDb; });
    if (static_cast<int32_t>(v.size()) > nMax)
        v.resize(std::max(nMax, 0));
    return v;
}

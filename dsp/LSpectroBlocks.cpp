#include "dsp/LSpectroBlocks.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {
constexpr double kCodeFloorDb = -320.0;

const std::array<double, 65536>& DecodeTable()
{
    static const std::array<double, 65536> table = [] {
        std::array<double, 65536> t{};
        t[0] = 0.0; // the floor stands for no power at all
        for (size_t i = 1; i < t.size(); ++i)
            t[i] = std::pow(10.0, (static_cast<double>(i) / 100.0 + kCodeFloorDb) / 10.0);
        return t;
    }();
    return table;
}
} // namespace

LSpectroBlocks::LSpectroBlocks(int32_t nNewWindow, uint8_t nNewChans)
    : nWindow(LSpectroSettings::IsValidWindow(nNewWindow) ? nNewWindow : 2048), nChans(std::max<uint8_t>(nNewChans, 1))
{
    nPool = 1;
    while (nWindow / (2 * nPool) + 1 > kMaxBins)
        nPool *= 2;
    nBins = nWindow / (2 * nPool) + 1;
}

const uint16_t* LSpectroBlocks::Levels(int64_t k, uint8_t c) const
{
    return vLevels.data() + (static_cast<size_t>(k) * nChans + c) * static_cast<size_t>(nBins);
}

uint16_t LSpectroBlocks::Encode(double fPower)
{
    if (!(fPower > 0))
        return 0;
    const double fCode = std::round((10.0 * std::log10(fPower) - kCodeFloorDb) * 100.0);
    return static_cast<uint16_t>(std::clamp(fCode, 1.0, 65535.0));
}

double LSpectroBlocks::Decode(uint16_t nCode)
{
    return DecodeTable()[nCode];
}

bool LSpectroBlocks::Analyze(LSoundSourceBase& src, int64_t sTotal, LSpectroAnalyzer& analyzer,
                             const LSpectroStop& fnStop, int64_t sSourceStart)
{
    DecodeTable();
    int64_t k = sFrames / kBlockFrames;
    const int64_t nBlocks = (sTotal + kBlockFrames - 1) / kBlockFrames;
    if (nBlocks <= k && sTotal <= sFrames)
        return true;
    vValid.resize(static_cast<size_t>(std::max(k, nBlocks)));
    vLevels.resize(vValid.size() * nChans * static_cast<size_t>(nBins));
    std::vector<int32_t> vRead(static_cast<size_t>(kBlockFrames) * nChans);
    src.SetPosition(static_cast<int32_t>(std::min<int64_t>(sSourceStart + k * kBlockFrames, INT32_MAX)));
    for (; k < nBlocks; ++k) {
        const int32_t nValid = static_cast<int32_t>(std::min<int64_t>(sTotal - k * kBlockFrames, kBlockFrames));
        src.Read(vRead.data(), nValid);
        AnalyzeBlock(vRead.data(), nValid, analyzer, vLevels.data() + static_cast<size_t>(k) * nChans * nBins);
        vValid[static_cast<size_t>(k)] = nValid;
        sFrames = k * kBlockFrames + nValid;
        if (fnStop && fnStop()) {
            // Only finished blocks are kept; the next call goes on from the next one.
            vValid.resize(static_cast<size_t>(k + 1));
            vLevels.resize(vValid.size() * nChans * static_cast<size_t>(nBins));
            return false;
        }
    }
    return true;
}

void LSpectroBlocks::AnalyzeBlock(const int32_t* pFrames, int32_t nValid, LSpectroAnalyzer& analyzer, uint16_t* pOut)
{
    const int32_t n = analyzer.GetSize();
    const int32_t nFull = analyzer.GetBins();
    vFrameA.resize(n);
    vFrameB.resize(n);
    vSum.assign(static_cast<size_t>(nFull) * nChans, 0.0);
    const int32_t nWindows = std::max((nValid + n - 1) / n, 1);
    // Every (window, channel) frame, two to a transform.
    const int64_t nFrames = static_cast<int64_t>(nWindows) * nChans;
    for (int64_t i = 0; i < nFrames; i += 2) {
        auto load = [&](int64_t f, double* pOut) {
            const int32_t w = static_cast<int32_t>(f / nChans);
            const uint8_t c = static_cast<uint8_t>(f % nChans);
            analyzer.Deinterleave(pFrames + static_cast<size_t>(w) * n * nChans, nValid - w * n, nChans, c, pOut);
            return vSum.data() + static_cast<size_t>(c) * nFull;
        };
        double* pSumA = load(i, vFrameA.data());
        double* pSumB = i + 1 < nFrames ? load(i + 1, vFrameB.data()) : nullptr;
        analyzer.AddPower(vFrameA.data(), pSumB ? vFrameB.data() : nullptr, pSumA, pSumB);
    }
    for (uint8_t c = 0; c < nChans; ++c) {
        const double* pSum = vSum.data() + static_cast<size_t>(c) * nFull;
        for (int32_t j = 0; j < nBins; ++j) {
            const int32_t k0 = std::max(j * nPool - nPool / 2, 0);
            const int32_t k1 = std::min(j * nPool + (nPool + 1) / 2, nFull);
            double fMax = 0.0;
            for (int32_t k = k0; k < k1; ++k)
                fMax = std::max(fMax, pSum[k]);
            pOut[static_cast<size_t>(c) * nBins + j] = Encode(fMax / nWindows);
        }
    }
}

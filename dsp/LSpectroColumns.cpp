#include "dsp/LSpectroColumns.h"

#include <algorithm>
#include <cmath>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LFile.h"
#include "core/LFixed.h"
#include "dsp/LSpectroCache.h"

LSpectroColumns::LSpectroColumns(const LSpectroSettings& newSettings) : settings(newSettings), analyzer(newSettings)
{
}

bool LSpectroColumns::UsesBlocks(const LSpectroFrame& frame)
{
    const int32_t n = frame.GetColumns();
    if (n <= 0)
        return false;
    const double fWidth = static_cast<double>(frame.vEdges.back() - frame.vEdges.front()) / n;
    return fWidth >= LSpectroBlocks::kBlockFrames;
}

LSpectroRows LSpectroColumns::RowsFor(const LSpectroFrame& frame, bool bBlocks) const
{
    const int32_t nWindow = analyzer.GetSize();
    const LSpectroBlocks shape(nWindow, 1);
    const int32_t nPool = bBlocks ? shape.GetPool() : 1;
    const int32_t nBins = bBlocks ? shape.GetBins() : analyzer.GetBins();
    return LSpectroRows(settings.eScale, frame.nRate, frame.nRows, static_cast<double>(frame.nRate) * nPool / nWindow,
                        nBins);
}

void LSpectroColumns::RowsOut(const LSpectroRows& rows, const double* pBins, int32_t nBins, float* pOut)
{
    vRowPower.resize(rows.GetRows());
    rows.Map(pBins, vRowPower.data());
    for (int32_t r = 0; r < rows.GetRows(); ++r)
        pOut[r] = static_cast<float>(LSpectroAnalyzer::PowerToDb(vRowPower[r]));
}

bool LSpectroColumns::FromSource(LSoundSourceBase& src, const LSpectroFrame& frame, float* pOut,
                                 const LSpectroStop& fnStop)
{
    const int32_t n = analyzer.GetSize();
    const int32_t nBins = analyzer.GetBins();
    const uint8_t nChans = std::max<uint8_t>(src.GetChannels(), 1);
    const int32_t nLanes = frame.GetLanes();
    const LSpectroRows rows = RowsFor(frame, false);
    vRead.resize(static_cast<size_t>(n) * nChans);
    vFrameA.resize(n);
    vFrameB.resize(n);
    vLane.resize(static_cast<size_t>(nBins) * nLanes);
    for (int32_t x = 0; x < frame.GetColumns(); ++x) {
        const int64_t s0 = frame.vEdges[x];
        const int64_t nWidth = std::max<int64_t>(frame.vEdges[x + 1] - s0, 1);
        const int32_t nWindows = static_cast<int32_t>(std::clamp<int64_t>((nWidth + n - 1) / n, 1, kMaxWindowsPerColumn));
        vSum.assign(static_cast<size_t>(nBins) * nChans, 0.0);
        for (int32_t w = 0; w < nWindows; ++w) {
            // Each window is centred on its share of the column.
            const int64_t sCentre = s0 + (2 * w + 1) * nWidth / (2 * nWindows);
            src.SetPosition(static_cast<int32_t>(std::clamp<int64_t>(sCentre - n / 2, INT32_MIN, INT32_MAX)));
            src.Read(vRead.data(), n);
            for (uint8_t c = 0; c < nChans; c += 2) {
                const bool bPair = c + 1 < nChans;
                analyzer.Deinterleave(vRead.data(), n, nChans, c, vFrameA.data());
                if (bPair)
                    analyzer.Deinterleave(vRead.data(), n, nChans, c + 1, vFrameB.data());
                analyzer.AddPower(vFrameA.data(), bPair ? vFrameB.data() : nullptr, vSum.data() + c * nBins,
                                  bPair ? vSum.data() + (c + 1) * nBins : nullptr);
            }
        }
        std::fill(vLane.begin(), vLane.end(), 0.0);
        for (uint8_t c = 0; c < nChans; ++c) {
            double* pLane = vLane.data() + static_cast<size_t>(nLanes > 1 ? c : 0) * nBins;
            const double fShare = 1.0 / nWindows / (nLanes > 1 ? 1 : nChans);
            for (int32_t k = 0; k < nBins; ++k)
                pLane[k] += vSum[static_cast<size_t>(c) * nBins + k] * fShare;
        }
        for (int32_t l = 0; l < nLanes; ++l)
            RowsOut(rows, vLane.data() + static_cast<size_t>(l) * nBins, nBins,
                    pOut + (static_cast<size_t>(x) * nLanes + l) * frame.nRows);
        if (fnStop && fnStop())
            return false;
    }
    return true;
}

namespace {
// Adds what piece p lends to the column [a, b) of the document (the piece starting at c).
void FoldPiece(const LSpectroPiece& p, int64_t c, int64_t a, int64_t b, int32_t nLanes, double* pLane)
{
    const LSpectroBlocks& blocks = *p.pBlocks;
    const int32_t nBins = blocks.GetBins();
    const uint8_t nChans = blocks.GetChannels();
    constexpr int64_t B = LSpectroBlocks::kBlockFrames;
    const int64_t s0 = p.sOffset + (a - c);
    const int64_t s1 = p.sOffset + (b - c);
    for (int64_t k = s0 / B; k * B < s1 && k < blocks.GetBlockCount(); ++k) {
        const double fWeight = static_cast<double>(std::min(s1, (k + 1) * B) - std::max(s0, k * B)) * p.fPowerGain;
        for (uint8_t ch = 0; ch < nChans; ++ch) {
            const uint16_t* pLevels = blocks.Levels(k, ch);
            double* pOut = pLane + static_cast<size_t>(nLanes > 1 ? ch : 0) * nBins;
            for (int32_t j = 0; j < nBins; ++j)
                pOut[j] += LSpectroBlocks::Decode(pLevels[j]) * fWeight;
        }
    }
}
} // namespace

bool LSpectroColumns::FromPieces(const std::vector<LSpectroPiece>& vPieces, const LSpectroFrame& frame, float* pOut,
                                 const LSpectroStop& fnStop)
{
    const LSpectroBlocks shape(analyzer.GetSize(), 1);
    const int32_t nBins = shape.GetBins();
    const int32_t nLanes = frame.GetLanes();
    const uint8_t nChans = std::max<uint8_t>(frame.nChans, 1);
    const LSpectroRows rows = RowsFor(frame, true);
    vLane.resize(static_cast<size_t>(nBins) * nLanes);
    size_t i = 0;
    int64_t c = 0; // where piece i starts in the document
    for (int32_t x = 0; x < frame.GetColumns(); ++x) {
        const int64_t a = frame.vEdges[x];
        const int64_t b = std::max(frame.vEdges[x + 1], a + 1);
        std::fill(vLane.begin(), vLane.end(), 0.0);
        while (i < vPieces.size() && c + vPieces[i].sLength <= a)
            c += vPieces[i++].sLength;
        int64_t cj = c;
        for (size_t j = i; j < vPieces.size() && cj < b; cj += vPieces[j++].sLength) {
            const LSpectroPiece& p = vPieces[j];
            if (p.pBlocks && p.pBlocks->GetBins() == nBins)
                FoldPiece(p, cj, std::max(a, cj), std::min(b, cj + p.sLength), nLanes, vLane.data());
        }
        // Power per frame of the column: a column reaching past the end is that much quieter.
        const double fShare = 1.0 / static_cast<double>(b - a) / (nLanes > 1 ? 1 : nChans);
        for (double& f : vLane)
            f *= fShare;
        for (int32_t l = 0; l < nLanes; ++l)
            RowsOut(rows, vLane.data() + static_cast<size_t>(l) * nBins, nBins,
                    pOut + (static_cast<size_t>(x) * nLanes + l) * frame.nRows);
        if (fnStop && fnStop())
            return false;
    }
    return true;
}

bool LSpectroColumns::PiecesOf(const LCutListAudio& doc, std::vector<LSpectroPiece>& vPieces,
                               const LSpectroStop& fnStop)
{
    vPieces.clear();
    vPieces.reserve(doc.GetCutCount());
    LAudioCutTank& tank = LAudioCutTank::Instance();
    const uint8_t nChans = std::max<uint8_t>(doc.GetChannels(), 1);
    bool bDone = true;
    doc.GetCuts().ForEach([&](const LAudioCut& cut) {
        LSpectroPiece piece;
        piece.sOffset = cut.sOffset;
        piece.sLength = cut.sLength;
        const double fGain = static_cast<double>(cut.nGain) / kGainUnity;
        piece.fPowerGain = fGain * fGain;
        const uint64_t nSerial = tank.GetSerial(cut.nRef);
        if (bDone && !cut.IsSilent() && nSerial != 0) {
            LFile aud;
            const int64_t nBytes = aud.Open(tank.GetAudFilePath(cut.nRef), LFile::ReadExisting) ? aud.Size() : 0;
            const int64_t sFrames = std::max<int64_t>(nBytes / (4 * nChans), 0);
            // The whole segment, at unity gain, as a one-cut document reads it.
            auto fnOpen = [&]() -> LSoundSourcePtr {
                LCutListAudio one(doc.GetSampleRate(), nChans);
                LAudioCut whole = cut;
                whole.sOffset = 0;
                whole.sLength = static_cast<int32_t>(std::min<int64_t>(sFrames, INT32_MAX));
                whole.nGain = kGainUnity;
                one.AppendCut(whole);
                return one.OpenSource();
            };
            const LSpectroCache::Key key{nSerial, analyzer.GetSize(), static_cast<uint8_t>(analyzer.GetWindowFn())};
            piece.pBlocks = LSpectroCache::Instance().Get(key, nChans, sFrames, fnOpen, analyzer, fnStop);
            bDone = piece.pBlocks != nullptr;
        }
        vPieces.push_back(std::move(piece));
    });
    return bDone;
}

bool LSpectroColumns::FromDocument(const LCutListAudio& doc, LSoundSourceBase* pSource, const LSpectroFrame& frame,
                                   float* pOut, const LSpectroStop& fnStop)
{
    if (!UsesBlocks(frame)) {
        if (pSource)
            return FromSource(*pSource, frame, pOut, fnStop);
        LSoundSourcePtr pOwn = doc.OpenSource();
        return FromSource(*pOwn, frame, pOut, fnStop);
    }
    std::vector<LSpectroPiece> vPieces;
    return PiecesOf(doc, vPieces, fnStop) && FromPieces(vPieces, frame, pOut, fnStop);
}

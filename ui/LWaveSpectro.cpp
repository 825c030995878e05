#include "ui/LWaveSpectro.h"

#include <algorithm>
#include <cstring>

#include "core/LCutListAudio.h"
#include "dsp/LSpectroColours.h"
#include "dsp/LSpectroRows.h"
#include "work/LSignalObject.h"

int LWaveSpectro::LaneRows(int nPixelRows, int nLanes)
{
    nLanes = std::max(nLanes, 1);
    return std::max((nPixelRows - (nLanes - 1)) / nLanes, 1);
}

void LWaveSpectro::Reshape(const Shape& s, std::vector<uint8_t>& v) const
{
    v.assign(static_cast<size_t>(LWaveGeometry::kMaxColumns) * s.Cells(), 0);
}

bool LWaveSpectro::Compute(const LWaveContent& content, const LWaveGeometry& geo, int x0, int x1, int nPixelRows,
                           int nLanes, const LSpectroSettings& settings, const LSignalObject* pStop,
                           const LSignalObject* pNewer)
{
    const Shape want{nLanes, LaneRows(nPixelRows, nLanes)};
    if (!(want == scratchShape) || vScratch.empty()) {
        scratchShape = want;
        Reshape(scratchShape, vScratch);
    }
    if (!pColumns || !(pColumns->GetSettings() == settings))
        pColumns = std::make_unique<LSpectroColumns>(settings);
    if (x1 <= x0)
        return true;
    const size_t nCells = static_cast<size_t>(scratchShape.Cells());
    std::fill(vScratch.begin() + x0 * nCells, vScratch.begin() + x1 * nCells, 0);
    if (!content.pDoc || !content.pSource)
        return true; // nothing to draw: the floor
    LSpectroFrame frame;
    frame.vEdges.reserve(static_cast<size_t>(x1 - x0) + 1);
    for (int x = x0; x <= x1; ++x)
        frame.vEdges.push_back(geo.SampleOfColumn(x));
    // A column narrower than a sample still shows the sample it lies in.
    for (size_t i = 1; i < frame.vEdges.size(); ++i)
        frame.vEdges[i] = std::max(frame.vEdges[i], frame.vEdges[i - 1] + 1);
    frame.nRows = scratchShape.nLaneRows;
    frame.nRate = content.pDoc->GetSampleRate();
    frame.nChans = std::max<uint8_t>(content.pDoc->GetChannels(), 1);
    frame.bPerChannel = nLanes > 1;
    vDb.resize(frame.GetCells());
    auto fnStop = [pStop] { return pStop && pStop->IsSet(); };
    if (LSpectroColumns::UsesBlocks(frame)) {
        // Only the analysis of segments not seen before can take long; folding never waits.
        auto fnAnalysisStop = [pStop, pNewer] { return (pStop && pStop->IsSet()) || (pNewer && pNewer->IsSet()); };
        if (!pColumns->PiecesOf(*content.pDoc, vPieces, fnAnalysisStop) ||
            !pColumns->FromPieces(vPieces, frame, vDb.data(), fnStop))
            return false;
    } else if (!pColumns->FromSource(*content.pSource, frame, vDb.data(), fnStop)) {
        return false;
    }
    for (size_t i = 0; i < vDb.size(); ++i)
        vScratch[static_cast<size_t>(x0) * nCells + i] = LSpectroLevelByte(vDb[i], settings);
    return true;
}

void LWaveSpectro::Commit(int x0, int x1)
{
    if (!(shape == scratchShape) || vStore.empty()) {
        shape = scratchShape;
        Reshape(shape, vStore);
    }
    const size_t nCells = static_cast<size_t>(shape.Cells());
    if (x1 > x0)
        std::memcpy(vStore.data() + x0 * nCells, vScratch.data() + x0 * nCells, (x1 - x0) * nCells);
}

void LWaveSpectro::Shift(int d, int nWidth)
{
    const size_t nCells = static_cast<size_t>(shape.Cells());
    const int n = std::abs(d);
    if (vStore.empty() || n >= nWidth)
        return;
    if (d > 0)
        std::memmove(vStore.data() + n * nCells, vStore.data(), (nWidth - n) * nCells);
    else
        std::memmove(vStore.data(), vStore.data() + n * nCells, (nWidth - n) * nCells);
}

QImage LWaveSpectro::Picture(int x0, int x1, int nPixelRows, const LSpectroSettings& settings) const
{
    QImage img(std::max(x1 - x0, 1), std::max(nPixelRows, 1), QImage::Format_RGB32);
    img.fill(Qt::black);
    const LSpectroPalette& pal = LSpectroColours(settings.eColours);
    const size_t nCells = static_cast<size_t>(shape.Cells());
    if (vStore.empty() || nCells == 0)
        return img;
    for (int lane = 0; lane < shape.nLanes; ++lane) {
        const int yTop = lane * (shape.nLaneRows + 1);
        for (int r = 0; r < shape.nLaneRows; ++r) {
            const int y = yTop + shape.nLaneRows - 1 - r;
            if (y >= img.height())
                continue;
            auto* pLine = reinterpret_cast<QRgb*>(img.scanLine(y));
            for (int x = x0; x < x1; ++x) {
                const LSpectroRgb& c = pal[vStore[x * nCells + static_cast<size_t>(lane) * shape.nLaneRows + r]];
                pLine[x - x0] = qRgb(c.r, c.g, c.b);
            }
        }
    }
    return img;
}

QString LWaveSpectro::Describe(int x, int y, int32_t nRate, int nPixelRows, const LSpectroSettings& settings) const
{
    if (vStore.empty() || x < 0 || x >= LWaveGeometry::kMaxColumns || shape.nLaneRows <= 0)
        return {};
    const int lane = std::clamp(y / (shape.nLaneRows + 1), 0, shape.nLanes - 1);
    const int r = std::clamp(shape.nLaneRows - 1 - (y - lane * (shape.nLaneRows + 1)), 0, shape.nLaneRows - 1);
    const LSpectroRows rows(settings.eScale, nRate, shape.nLaneRows, 1.0, 2);
    const uint8_t nByte = vStore[x * static_cast<size_t>(shape.Cells()) + static_cast<size_t>(lane) * shape.nLaneRows + r];
    const double fHz = rows.HzAt(r + 0.5);
    QString szLevel = nByte == 0 ? QString("below %1 dB").arg(-settings.nRangeDb - settings.nGainDb)
                                 : QString("%1 dB").arg(LSpectroByteDb(nByte, settings), 0, 'f', 1);
    QString szLane = shape.nLanes == 2 ? (lane == 0 ? "left, " : "right, ") : QString();
    return QString("%1%2 Hz, %3").arg(szLane).arg(fHz, 0, 'f', 0).arg(szLevel);
}

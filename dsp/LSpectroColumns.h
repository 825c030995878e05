// Spectrogram columns: for each pixel column (a stretch of frames) and each lane (all channels
// together, or one lane per channel), the level of every row in dB against full scale. Close
// views read samples: a few windows spread over each column. Far views fold the reduced spectra
// of the segments (LSpectroBlocks), so hours of audio are read once.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "dsp/LSpectroAnalyzer.h"
#include "dsp/LSpectroBlocks.h"
#include "dsp/LSpectroRows.h"
#include "dsp/LSpectroSettings.h"

class LCutListAudio;

// A stretch of analysed audio in a document: frames [sOffset, sOffset + sLength) of the blocks'
// stretch at a power gain (the square of the cut's gain). Null blocks are silence.
struct LSpectroPiece
{
    std::shared_ptr<const LSpectroBlocks> pBlocks;
    int64_t sOffset = 0;
    int64_t sLength = 0;
    double fPowerGain = 1.0;
};

// What to compute: column x spans frames [vEdges[x], vEdges[x + 1]).
struct LSpectroFrame
{
    std::vector<int64_t> vEdges;
    int32_t nRows = 1;
    int32_t nRate = 44100;
    uint8_t nChans = 1;
    bool bPerChannel = false;

    int32_t GetColumns() const { return vEdges.empty() ? 0 : static_cast<int32_t>(vEdges.size()) - 1; }
    int32_t GetLanes() const { return bPerChannel ? nChans : 1; }
    // Output floats: [column][lane][row].
    size_t GetCells() const { return static_cast<size_t>(GetColumns()) * GetLanes() * nRows; }
};

class LSpectroColumns
{
public:
    static constexpr int32_t kMaxWindowsPerColumn = 4;

    explicit LSpectroColumns(const LSpectroSettings& settings);

    const LSpectroSettings& GetSettings() const { return settings; }
    LSpectroAnalyzer& GetAnalyzer() { return analyzer; }

    // Whether columns this wide are folded from blocks rather than read from samples.
    static bool UsesBlocks(const LSpectroFrame& frame);
    // The rows each path maps onto (the block path's bins may be pooled).
    LSpectroRows RowsFor(const LSpectroFrame& frame, bool bBlocks) const;

    // The columns from the source's samples. False when stopped.
    bool FromSource(LSoundSourceBase& src, const LSpectroFrame& frame, float* pOut, const LSpectroStop& fnStop);
    // The columns from pieces laid end to end from frame 0.
    bool FromPieces(const std::vector<LSpectroPiece>& vPieces, const LSpectroFrame& frame, float* pOut,
                    const LSpectroStop& fnStop);
    // The document's columns by the path that suits their width, its segments through the cache.
    bool FromDocument(const LCutListAudio& doc, LSoundSourceBase* pSource, const LSpectroFrame& frame, float* pOut,
                      const LSpectroStop& fnStop);

    // The pieces of a document, each segment's blocks from the program's cache (analysed now
    // when missing). False when stopped.
    bool PiecesOf(const LCutListAudio& doc, std::vector<LSpectroPiece>& vPieces, const LSpectroStop& fnStop);

private:
    void RowsOut(const LSpectroRows& rows, const double* pBins, int32_t nBins, float* pOut);

    LSpectroSettings settings;
    LSpectroAnalyzer analyzer;
    std::vector<int32_t> vRead;
    std::vector<double> vFrameA, vFrameB, vSum, vLane, vRowPower;
};

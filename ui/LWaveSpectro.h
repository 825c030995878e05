// The spectrogram face of a waveform display: one level byte per row of every pixel column,
// computed on the display's worker thread into scratch and put in place under the display's
// drawing lock, shifted rather than recomputed on a scroll like the waveform's columns. With
// one lane the channels are shown together; in "L / R" a stereo file gets a lane per channel,
// left on top.
#pragma once

#include <QImage>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

#include "dsp/LSpectroColumns.h"
#include "dsp/LSpectroSettings.h"
#include "ui/LWaveColumns.h"
#include "ui/LWaveGeometry.h"

class LSignalObject;

class LWaveSpectro
{
public:
    // The rows of each lane for a display of nPixelRows rows; lanes are one pixel apart.
    static int LaneRows(int nPixelRows, int nLanes);

    // Worker side: columns x0..x1-1 into the scratch. False when stopped, or when pNewer is set
    // (a new request should not wait for a long first analysis; what was analysed is kept).
    bool Compute(const LWaveContent& content, const LWaveGeometry& geo, int x0, int x1, int nPixelRows, int nLanes,
                 const LSpectroSettings& settings, const LSignalObject* pStop, const LSignalObject* pNewer = nullptr);
    // Drawing-lock side: the scratch columns into the picture.
    void Commit(int x0, int x1);
    // The picture moved by d columns (positive: to the right).
    void Shift(int d, int nWidth);

    // The level bytes of the picture, [column][lane][row].
    const std::vector<uint8_t>& GetStore() const { return vStore; }
    // Columns x0..x1-1 as a picture nPixelRows high.
    QImage Picture(int x0, int x1, int nPixelRows, const LSpectroSettings& settings) const;

    // What the column x, pixel row y (0 at the top of the picture) shows: "frequency, level".
    QString Describe(int x, int y, int32_t nRate, int nPixelRows, const LSpectroSettings& settings) const;

private:
    struct Shape
    {
        int nLanes = 1;
        int nLaneRows = 0;
        int Cells() const { return nLanes * nLaneRows; }
        bool operator==(const Shape&) const = default;
    };
    // A fresh store when the shape changes (a resize or a new display mode).
    void Reshape(const Shape& s, std::vector<uint8_t>& v) const;

    Shape shape;       // of the picture (drawing lock)
    Shape scratchShape; // of the scratch (worker)
    std::vector<uint8_t> vStore;   // [column][lane][row], row 0 the lowest
    std::vector<uint8_t> vScratch;
    std::vector<float> vDb;
    std::vector<LSpectroPiece> vPieces;
    std::unique_ptr<LSpectroColumns> pColumns;
};

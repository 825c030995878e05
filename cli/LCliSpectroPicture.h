// The spectrogram as a picture: the columns coloured by the chosen map, one lane per channel
// stacked top to bottom, with a frequency axis on the left, a time axis below and the level
// scale on the right, labelled in the canvas's own font.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "cli/LCliCanvas.h"
#include "dsp/LSpectroRows.h"
#include "dsp/LSpectroSettings.h"

struct LCliSpectroLayout
{
    static constexpr int kLeft = 44;
    static constexpr int kTop = 10;
    static constexpr int kBottom = 26;
    static constexpr int kRight = 70;
    static constexpr int kLaneGap = 4;

    int nPlotWidth;
    int nPlotHeight;
    int nLanes;

    int GetWidth() const { return kLeft + nPlotWidth + kRight; }
    int GetHeight() const { return kTop + nPlotHeight + kBottom; }
    // Rows per lane: the plot's height shared out, the gaps between lanes taken first.
    int LaneRows() const { return std::max((nPlotHeight - kLaneGap * (nLanes - 1)) / std::max(nLanes, 1), 1); }
};

struct LCliSpectroSpan
{
    int64_t sStart; // first frame shown, for the time labels
    int64_t sEnd;
    int32_t nRate;
};

// Levels are [column][lane][row] in dB, row 0 the lowest.
LCliCanvas LCliSpectroPicture(const LCliSpectroLayout& layout, const std::vector<float>& vDb, const LSpectroRows& rows,
                              const LSpectroSettings& settings, const LCliSpectroSpan& span);

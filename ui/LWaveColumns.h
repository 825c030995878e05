// The waveform picture as two byte columns per pixel: how far the wave reaches up (top) and
// down (bottom) on a 0..255 scale. Computed from samples at close zoom and from the segments'
// overview files beyond 256 samples per column. Runs on the display's worker thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "core/LSoundSourceBase.h"

class LSignalObject;
class LWaveGeometry;

// One cut of the drawn document, as the overview path needs it.
struct LWaveCut
{
    uint16_t nRef = 0xFFFF; // 0xFFFF: silence
    int32_t sLength = 0;
    int32_t nGain = 0x1000000;
    int32_t sOffset = 0;
};

// What a display draws: a source for samples and the cuts it was made from for overviews.
struct LWaveContent
{
    LSoundSourcePtr pSource;
    // A copy of the document, for the spectrogram's walk over its segments.
    LCutListAudioPtr pDoc;
    std::vector<LWaveCut> vCuts;
    // The overview file of a segment; empty when there is none.
    std::function<std::string(uint16_t)> fnGrfPath;
    uint8_t nChans = 1;
    int32_t sLength = 0;
};

enum LWaveDisplayMode : uint8_t
{
    WaveModePosNeg = 0, // "+ /-": positive and negative peaks over all channels
    WaveModeLeftRight = 1, // "L / R": left channel up, right channel down
};

class LWaveColumnMaker
{
public:
    static constexpr int32_t kReadFrames = 8192;
    static constexpr int32_t kOverviewFrames = 256;

    // Columns x0..x1-1 of pTop/pBottom from the source's samples. False when stopped early.
    bool FromSamples(LSoundSourceBase& src, const LWaveGeometry& geo, int x0, int x1, uint8_t nMode, bool bVZoom,
                     uint8_t* pTop, uint8_t* pBottom, const LSignalObject* pStop);
    // The same columns from the overview files of the content's cuts.
    bool FromOverview(const LWaveContent& content, const LWaveGeometry& geo, int x0, int x1, uint8_t nMode,
                      bool bVZoom, uint8_t* pTop, uint8_t* pBottom, const LSignalObject* pStop);

    // The overview byte scale for a cut's 8.24 gain: 256 is unity.
    static int32_t OverviewFactor(int32_t nGain, bool bVZoom);

private:
    std::vector<int32_t> vSamples;
    std::vector<uint8_t> vBytes;
};

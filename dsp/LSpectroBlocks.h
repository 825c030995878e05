// The reduced spectra of one stretch of audio (a segment, or a whole file): one spectrum per
// channel for every kBlockFrames frames, the mean power of the windows that tile the block. A far
// view folds these instead of reading the audio again, as the overview files do for peaks.
// Above 1024 bins, neighbouring bins are pooled by their maximum, which keeps a tone's level.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "dsp/LSpectroAnalyzer.h"

using LSpectroStop = std::function<bool()>;

class LSpectroBlocks
{
public:
    static constexpr int32_t kBlockFrames = 65536;
    static constexpr int32_t kMaxBins = 1025;

    LSpectroBlocks(int32_t nWindow, uint8_t nChans);

    int32_t GetWindow() const { return nWindow; }
    int32_t GetBins() const { return nBins; }
    // Original bins per stored bin; stored bin j is centred on original bin j * pool.
    int32_t GetPool() const { return nPool; }
    uint8_t GetChannels() const { return nChans; }
    int64_t GetFrames() const { return sFrames; }
    int64_t GetBlockCount() const { return static_cast<int64_t>(vValid.size()); }
    // Frames of audio in block k (the last block of a stretch may be short).
    int32_t GetValid(int64_t k) const { return vValid[static_cast<size_t>(k)]; }
    // Block k's stored levels of channel c, GetBins() of them.
    const uint16_t* Levels(int64_t k, uint8_t c) const;
    size_t GetBytes() const { return vLevels.size() * sizeof(uint16_t) + vValid.size() * sizeof(int32_t); }

    // Analyses frames [0, sTotal) of the stretch, which starts at frame sSourceStart of the source
    // (seeking it), keeping the blocks before the block that holds frame GetFrames() and redoing
    // the rest: a segment still being written grows without being analysed twice. False when
    // stopped, with the blocks done kept.
    bool Analyze(LSoundSourceBase& src, int64_t sTotal, LSpectroAnalyzer& analyzer, const LSpectroStop& fnStop,
                 int64_t sSourceStart = 0);

    // Stored levels are dB in hundredths above -320 dB; power is full-scale power.
    static uint16_t Encode(double fPower);
    static double Decode(uint16_t nCode);

private:
    void AnalyzeBlock(const int32_t* pFrames, int32_t nValid, LSpectroAnalyzer& analyzer, uint16_t* pOut);

    int32_t nWindow;
    int32_t nPool;
    int32_t nBins;
    uint8_t nChans;
    int64_t sFrames = 0;
    std::vector<uint16_t> vLevels; // [block][channel][bin]
    std::vector<int32_t> vValid;
    // Scratch of the analysis.
    std::vector<double> vFrameA, vFrameB, vSum;
};

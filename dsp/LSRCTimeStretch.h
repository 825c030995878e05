// Changes the speed of its input and keeps the pitch, by waveform-similarity overlap-add: the
// output is built from grains of the input laid down at a fixed hop and cross-faded, each grain
// taken near its nominal input time where it best continues the grain before it. All channels
// share one choice of grain position (made on their sum), so a stereo image stays where it was.
// Speed is nSpeedNum / nSpeedDen of the original: 2/1 plays twice as fast and half as long.
#pragma once

#include <cstdint>
#include <memory>

#include "core/LSoundSourceBase.h"

class LSRCTimeStretch : public LSoundSourceBase
{
public:
    // In milliseconds: the output hop between grains, the cross-fade between neighbours (a grain
    // is a hop plus a cross-fade long) and the search span each side of a grain's nominal time.
    static constexpr int32_t kHopMs = 60;
    static constexpr int32_t kOverlapMs = 12;
    static constexpr int32_t kSearchMs = 15;

    // A speed outside 1/100 .. 100 latches the error (the stage then reads silence).
    LSRCTimeStretch(LSoundSourceBase* pInput, int32_t nSpeedNum, int32_t nSpeedDen);
    ~LSRCTimeStretch() override;

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    // The input's length divided by the speed (rounded to the nearest frame).
    int32_t GetLength() override;
    // Restarts the grains at the input time that matches the new output position.
    void SetPosition(int32_t sPosition) override;

private:
    struct Impl;
    LSoundSourcePtr pInput;
    std::unique_ptr<Impl> pImpl;
};

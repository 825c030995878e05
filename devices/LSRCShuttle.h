// Variable-speed playback of a source, as the shuttle controls use it: grains of the input
// (rate / 90 frames) cross-faded with a raised-cosine window at half-grain steps, the read point
// moving by the speed at each step. Grains keep their pitch; a negative speed reads backwards,
// each grain reversed. The speed moves linearly from the initial to the second speed over the
// ramp time and stays at the second speed afterwards; with a ramp time of 0 the initial speed
// holds throughout.
//
// Positions and the length count output frames from the input position at construction; the
// length ends where the read point leaves the input (its end forwards, its start backwards).
#pragma once

#include <atomic>
#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCShuttle : public LSoundSourceBase
{
public:
    LSRCShuttle(LSoundSourceBase* pInput, double fSpeed, double fSecondSpeed, int32_t nRampMs);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sOutPosition; }
    int32_t GetLength() override { return sOutLength; }
    void SetPosition(int32_t sPosition) override;

    // Where the read point is in the input (for a cursor that follows the shuttle); safe to ask
    // from another thread than the one reading.
    int32_t GetInputPosition() const;
    int32_t GetGrainFrames() const { return nGrain; }
    static int32_t GrainFramesFor(int32_t nRate);

private:
    double SpeedAt(int64_t sOut) const;
    int32_t ComputeLength() const;
    void Prime(double fPos);
    void ReadGrain(double fPos);
    void NextHop();
    void Publish();

    LSoundSourcePtr pInput;
    double fSpeed0;
    double fSpeed1;
    int64_t nRampFrames;
    int32_t nGrain;
    int32_t nHop;
    int32_t sInputStart;
    int32_t sInputLength;

    double fReadPos = 0;   // where the next grain is read
    int64_t sHopStart = 0; // output frame at which the current hop began
    int32_t nHopRead = 0;  // frames of the current hop already delivered
    int32_t sOutPosition = 0;
    int32_t sOutLength = 0;

    std::atomic<int32_t> sPublishedInput{0}; // fReadPos, rounded, for other threads

    std::vector<int32_t> vWindow; // rising half of the window, 8.24
    std::vector<int32_t> vGrain;
    std::vector<int32_t> vTail;
    std::vector<int32_t> vHopOut;
};

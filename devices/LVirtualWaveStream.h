// The clock of one virtual device: a thread that moves frames between the queued buffers and
// nowhere (playing) or a generator (recording) at the format's rate times the speed factor.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "devices/LVirtualWave.h"
#include "devices/LWaveQueue.h"

class LVirtualWaveStream
{
public:
    LVirtualWaveStream(LVirtualWaveDriver& driver, const LWaveDeviceFormat& fmt, LSignalObject* pDone, bool bOutput);
    ~LVirtualWaveStream();
    LVirtualWaveStream(const LVirtualWaveStream&) = delete;
    LVirtualWaveStream& operator=(const LVirtualWaveStream&) = delete;

    void Add(LWaveHeader& hdr);
    void Reset();
    void SetRunning(bool bRun);
    void BreakLoop() { queue.BreakLoop(); }
    void ReturnPartial() { queue.ReturnPartial(); }
    int32_t RealMs(int32_t nDeviceMs) const;

private:
    using Clock = std::chrono::steady_clock;

    void Run();
    // Moves nFrames; returns how many found a buffer.
    int64_t Move(int64_t nFrames);
    bool IsHeld() const { return bOutput && driver.GetHoldBuffers(); }

    LVirtualWaveDriver& driver;
    LWaveDeviceFormat fmt;
    LWaveQueue queue;
    const bool bOutput;
    const double fSpeed;
    const int32_t nBlockFrames;

    std::mutex mtx;
    std::condition_variable cv;
    bool bClosing = false;
    bool bRunning;
    bool bStarved = false;
    bool bAnchored = false;
    Clock::time_point tAnchor;
    int64_t nFramesSinceAnchor = 0;
    int64_t nFramesGenerated = 0;
    std::vector<uint8_t> vScratch;
    std::thread thread;
};

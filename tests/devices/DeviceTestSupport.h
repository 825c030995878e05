// Helpers for the device tests: the virtual driver installed for one test, observers that log
// what they hear, and a sink the test thread may watch while a recorder writes into it.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "core/LSoundSinkBase.h"
#include "devices/LSoundPlayerNotify.h"
#include "devices/LSoundRecorderNotify.h"
#include "devices/LVirtualWave.h"
#include "work/LThreadQueuedNotify.h"

namespace devtest {

class VirtualDriverScope
{
public:
    explicit VirtualDriverScope(double fSpeed)
    {
        driver.SetSpeed(fSpeed);
        LWaveDevices::SetDriver(&driver);
    }
    ~VirtualDriverScope()
    {
        LWaveDevices::SetDriver(nullptr);
        LThreadQueuedNotify::DrainQueue();
    }
    LVirtualWaveDriver driver;
};

// Runs the notification queue (as the user-interface thread would) until pred holds or a
// generous limit passes. Returns pred's final value.
inline bool PumpUntil(const std::function<bool()>& pred, int nLimitMs = 15000)
{
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(nLimitMs);
    while (!pred()) {
        if (std::chrono::steady_clock::now() > tEnd)
            return false;
        LThreadQueuedNotify::WaitAndDrainQueue(5);
    }
    return true;
}

struct PlayerLog : LSoundPlayerNotify
{
    std::vector<std::string> vEvents; // "playing", "paused", "cued", "stopped"
    std::vector<int32_t> vPositions;
    int nLevels = 0;
    LSoundLevels lastLevels;
    int nStopped = 0;

    void PlayerPlaying(uint32_t) override { vEvents.push_back("playing"); }
    void PlayerStopped(uint32_t) override
    {
        vEvents.push_back("stopped");
        ++nStopped;
    }
    void PlayerCued(uint32_t) override { vEvents.push_back("cued"); }
    void PlayerPaused(uint32_t) override { vEvents.push_back("paused"); }
    void PlayerPosition(uint32_t, int32_t nMs) override { vPositions.push_back(nMs); }
    void PlayerLevels(uint32_t, const LSoundLevels& l) override
    {
        ++nLevels;
        lastLevels = l;
    }
};

struct RecorderLog : LSoundRecorderNotify
{
    std::vector<std::string> vEvents; // "recording", "waiting", "stopped"
    int nLevels = 0;
    int32_t nLastTime = -1;

    void RecorderRecording(uint32_t) override { vEvents.push_back("recording"); }
    void RecorderWaiting(uint32_t) override { vEvents.push_back("waiting"); }
    void RecorderStopped(uint32_t) override { vEvents.push_back("stopped"); }
    void RecorderTime(uint32_t, int32_t nMs) override { nLastTime = nMs; }
    void RecorderLevels(uint32_t, const LSoundLevels&) override { ++nLevels; }
    bool Has(const std::string& s) const
    {
        for (const std::string& e : vEvents)
            if (e == s)
                return true;
        return false;
    }
};

// A memory sink whose length another thread may read while it is written.
class WatchedSink : public LSoundSinkBase
{
public:
    WatchedSink(int32_t nRate, uint8_t nChans) : LSoundSinkBase(nRate, nChans) {}
    void Write(const int32_t* p, int32_t nFrames) override
    {
        std::lock_guard<std::mutex> lock(mtx);
        vSamples.insert(vSamples.end(), p, p + static_cast<size_t>(nFrames) * nChans);
        sPosition += nFrames;
        nFrames_ = sPosition;
    }
    void SetPosition(int32_t s) override
    {
        std::lock_guard<std::mutex> lock(mtx);
        if (s < sPosition) {
            sPosition = s;
            vSamples.resize(static_cast<size_t>(s) * nChans);
        }
        nFrames_ = sPosition;
    }
    bool Complete() override { return !IsError(); }
    int32_t Frames() const { return nFrames_.load(); }
    std::vector<int32_t> Samples()
    {
        std::lock_guard<std::mutex> lock(mtx);
        return vSamples;
    }

private:
    std::mutex mtx;
    std::vector<int32_t> vSamples;
    std::atomic<int32_t> nFrames_{0};
};

// A mono ramp whose sample i is (i % 20000) * 16 - 160000: every position is recognisable.
std::vector<int32_t> Ramp(int32_t nFrames, uint8_t nChans = 1);

} // namespace devtest

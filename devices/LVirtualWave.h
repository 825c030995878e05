// A wave device with no hardware behind it: it plays (discards) and records (generates) at the
// format's rate on its own clock, optionally faster than real time. Tests drive the player and
// recorder through it, and a machine without a sound card falls back to it.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "devices/LWaveDevice.h"

// What the devices of one driver did, for tests and benchmarks.
struct LVirtualWaveStats
{
    std::atomic<int32_t> nOpens{0};
    std::atomic<int32_t> nResets{0};
    std::atomic<int32_t> nPauses{0};
    std::atomic<int32_t> nRestarts{0};
    std::atomic<int32_t> nBreakLoops{0};
    std::atomic<int32_t> nWrites{0};
    // A buffer written to a running output whose queue had played out: a gap was heard.
    std::atomic<int32_t> nUnderruns{0};
    std::atomic<int64_t> nFramesPlayed{0};
    std::atomic<int64_t> nFramesRecorded{0};
    std::atomic<bool> bOutPaused{false};
    std::atomic<bool> bOutOpen{false};
};

class LVirtualWaveDriver : public LWaveDriver
{
public:
    // Fills nFrames interleaved 16-bit frames; nFirstFrame counts from the start of recording.
    using InputFn =
        std::function<void(int16_t* pOut, int32_t nFrames, uint8_t nChans, int32_t nRate, int64_t nFirstFrame)>;

    LVirtualWaveDriver();

    const char* GetName() const override { return "virtual"; }
    std::vector<std::string> GetOutputNames() override;
    std::vector<std::string> GetInputNames() override;
    std::unique_ptr<LWaveOut> OpenOut(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                      bool bMapped) override;
    std::unique_ptr<LWaveIn> OpenIn(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                    bool bMapped) override;
    bool SetOutVolume(int32_t nDevice, uint32_t dwVolume) override;

    // Device seconds per real second (1 = real time). Applies to devices opened afterwards.
    void SetSpeed(double fNew) { fSpeed = fNew > 0 ? fNew : 1.0; }
    double GetSpeed() const { return fSpeed; }
    // Frames a device moves per tick, as a sound card's callback does (0: as many as are due,
    // waking only when a buffer runs out). Applies to devices opened afterwards.
    void SetBlockFrames(int32_t n) { nBlockFrames = n > 0 ? n : 0; }
    int32_t GetBlockFrames() const { return nBlockFrames; }
    // A stuck driver: buffers are neither played nor handed back, not even by a reset.
    void SetHoldBuffers(bool b) { bHold = b; }
    bool GetHoldBuffers() const { return bHold; }
    void SetFailOpen(bool b) { bFailOpen = b; }
    // Null: recording yields silence.
    void SetInput(InputFn fn);
    void GetInput(InputFn& fn);
    // Keeps every played sample (16-bit, interleaved) for inspection.
    void SetCapture(bool b);
    std::vector<int16_t> GetCaptured();
    void AppendCaptured(const uint8_t* pBytes, uint32_t nBytes);
    uint32_t GetVolume() const { return dwVolume; }

    LVirtualWaveStats stats;

private:
    std::atomic<double> fSpeed{1.0};
    std::atomic<int32_t> nBlockFrames{0};
    std::atomic<bool> bHold{false};
    std::atomic<bool> bFailOpen{false};
    std::atomic<bool> bCapture{false};
    std::atomic<uint32_t> dwVolume{0xFFFFFFFF};
    std::mutex mtx;
    InputFn fnInput;
    std::vector<int16_t> vCaptured;
};

// Plays a sound source through a wave-out device. A worker thread keeps 64 device buffers of a
// tenth of a second each full; what happens reaches one observer on the user-interface thread.
//
// Calling order: Start, then any of Pause/Play/Cue/Seek, then Stop (or the player stops itself
// at the end of the source). All public calls belong to the user-interface thread, which must
// run the LThreadQueuedNotify queue (the editor's event loop, or DrainQueue in tools and tests).
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "devices/LSoundLevels.h"
#include "devices/LSoundPlayerNotify.h"
#include "devices/LWaveDevice.h"
#include "work/LSignalObject.h"
#include "work/LThread.h"
#include "work/LThreadQueuedNotify.h"

struct LSoundPlayerWaveHeader
{
    uint32_t nFullLength = 0;
    LWaveHeader hdr;
    LSoundLevels levels;
};

class LSoundPlayer : public LThread
{
public:
    // Start flags.
    static constexpr uint32_t kStartPaused = 0x01;
    static constexpr uint32_t kStartPreRoll = 0x02; // paused until 42 buffers are queued

    // State flags.
    static constexpr uint16_t kStateOpen = 0x01;
    static constexpr uint16_t kStatePaused = 0x02;
    static constexpr uint16_t kStateCue = 0x04;
    static constexpr uint16_t kStatePreRoll = 0x08;
    static constexpr uint16_t kStateTakeoff = 0x10;

    static constexpr int kBuffers = 64;
    static constexpr int kPreRollBuffers = 42;
    static constexpr uint32_t kNoPosition = 0x80000000;

    LSoundPlayer();
    ~LSoundPlayer() override;

    // Null restores the do-nothing observer.
    void SetNotify(LSoundPlayerNotify* pNotify, uint32_t nCookie);
    // 0 the default device, n >= 1 device n - 1; read at each Start.
    void SetDevice(int32_t nDevice) { nDeviceNumber = nDevice; }
    int32_t GetDevice() const { return nDeviceNumber; }

    // False when the source is latched or no device could be opened.
    bool Start(LSoundSourceBase* pSource, uint32_t nFlags = 0);
    void Stop();
    void Pause();
    void Play();
    // Loops a quarter buffer at the current position (scrubbing).
    void Cue();
    void Seek(int32_t sSamples);

    uint16_t GetState() const { return nState.load(); }
    bool IsOpen() const { return (nState.load() & kStateOpen) != 0; }
    // Samples per channel at the end of the buffer most recently heard.
    int32_t GetPosition() const { return sPosition.load(); }
    int32_t GetFramesPerBuffer() const { return nFramesPerBuffer; }
    // The source being played (the peak limiter over it where one was needed).
    LSoundSourceBase* GetSource() const { return pSource.Get(); }

    // Frames per device buffer for a rate: a tenth of a second, 20..8192.
    static int32_t FramesPerBufferFor(int32_t nRate);
    // Device volume from a volume in dB (-127..127; -36 and below is silent).
    static uint32_t DeviceVolumeFor(int32_t nDb);
    // Sets the volume of device nDevice (0 the default) on both channels.
    static bool SetDeviceVolume(int32_t nDevice, int32_t nDb);

protected:
    void Body() override { ThreadFunction(); }

private:
    class Notifier : public LThreadQueuedNotify
    {
    public:
        explicit Notifier(LSoundPlayer& player) : player(player) {}

    protected:
        void OnNotify() override { player.EvNotify(); }

    private:
        LSoundPlayer& player;
    };

    void ThreadFunction();
    void EvNotify();
    void CueBuffer();
    // One step of the worker on the current header; false when the worker is to end.
    bool WorkerStep(int& nFailedLooks);
    bool FillHeader(LSoundPlayerWaveHeader& h);
    void WriteSixteen(LSoundPlayerWaveHeader& h, int32_t nFrames);
    void MarkAllNoPosition();
    bool AllDone() const;
    void ApplyWantedPriority();
    void UnprepareAll();
    int32_t ToMs(int32_t sSamples) const;
    bool OpenDevice(const LWaveDeviceFormat& fmt);
    void Allocate(int32_t nRate);

    std::mutex mtxGuard;
    LSignalObject sigBufferDone;
    int32_t nDeviceNumber = 0;
    LSoundPlayerNotify* pNotify;
    uint32_t nCookie = 0;
    std::atomic<int32_t> sPosition{0};
    std::atomic<uint16_t> nState{0};
    std::atomic<bool> bNotifyStop{false};
    std::atomic<bool> bNotifyPosition{false};
    LSoundSourcePtr pSource;
    std::vector<int32_t> vWork;
    std::unique_ptr<LWaveOut> pDevice;
    int32_t nFramesPerBuffer = 0;
    uint8_t nChans = 1;
    LSoundPlayerWaveHeader headers[kBuffers];
    uint8_t nCurrent = 0;
    LSoundLevels lastLevels;
    std::unique_ptr<uint8_t[]> pBlock;

    std::atomic<int> nWantedPriority{PriorityBelowNormal};
    int nAppliedPriority = PriorityNormal;
    Notifier notifier{*this};
};

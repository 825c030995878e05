// Records from a wave-in device into a sound sink. A worker thread keeps 30 device buffers of a
// tenth of a second queued, removes DC offset and meters each block. Voice-activated recording
// waits for a block at or above the start threshold, keeps the onset, and after more than the
// silence time below the stop threshold cuts the sink back to 450 ms after the last loud block
// and waits again.
//
// All public calls belong to the user-interface thread, which must run the
// LThreadQueuedNotify queue. The sink is the worker's alone while it runs.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "core/LSoundSinkBase.h"
#include "devices/LSoundLevels.h"
#include "devices/LSoundRecorderNotify.h"
#include "devices/LWaveDevice.h"
#include "work/LSignalObject.h"
#include "work/LThread.h"
#include "work/LThreadQueuedNotify.h"

class LSoundRecorder : public LThread
{
public:
    enum State : uint8_t
    {
        StateIdle = 0,
        StateWaiting = 1,
        StateRecording = 2,
    };

    static constexpr int kBuffers = 30;
    static constexpr int32_t kCutBackMs = 450; // kept after the last loud block when silence is cut
    static constexpr int32_t kStopTailMs = 50; // kept after the last loud block on Stop

    LSoundRecorder();
    ~LSoundRecorder() override;

    void SetNotify(LSoundRecorderNotify* pNotify, uint32_t nCookie);

    // Records at once. Thresholds are in dB on the recorder's meter (a stop threshold of -127
    // never triggers); nSilenceMs is the quiet stretch after which recording goes back to
    // waiting; nMaxMs > 0 stops the recording once the sink holds more. The sink's rate and
    // channel count are recorded. False (and RecorderStopped) when the sink is latched or the
    // device (0 the default, n >= 1 device n - 1) cannot be opened.
    bool Start(LSoundSinkBase* pSink, int32_t nDevice, int8_t nStartThreshold, int8_t nStopThreshold,
               int32_t nSilenceMs, int32_t nMaxMs);
    // As Start, but begins by waiting for sound at or above the start threshold.
    bool Restart(LSoundSinkBase* pSink, int32_t nDevice, int8_t nStartThreshold, int8_t nStopThreshold,
                 int32_t nSilenceMs, int32_t nMaxMs);
    void Stop();

    State GetState() const { return static_cast<State>(nState.load()); }

protected:
    void Body() override { ThreadFunction(); }

private:
    class Notifier : public LThreadQueuedNotify
    {
    public:
        explicit Notifier(LSoundRecorder& rec) : recorder(rec) {}

    protected:
        void OnNotify() override { recorder.EvNotify(); }

    private:
        LSoundRecorder& recorder;
    };

    bool Begin(LSoundSinkBase* pSink, int32_t nDevice, int8_t nStartThreshold, int8_t nStopThreshold,
               int32_t nSilenceMs, int32_t nMaxMs, State initial);
    void ThreadFunction();
    bool OpenDevice(const LWaveDeviceFormat& fmt);
    void PrepareBuffers();
    void Record();
    void Finish();
    int32_t ToWork(const LWaveHeader& hdr);
    void RemoveDc(int32_t nFrames);
    void ApplyStateRules(int32_t nFrames);
    void RuleRecording(int32_t nFrames, int8_t nLoudness);
    void RuleWaiting(int32_t nFrames, int8_t nLoudness);
    void KeepPreRoll(int32_t nFrames);
    int32_t ElapsedMs() const;
    int32_t MsToSamples(int32_t nMs) const;
    void EvNotify();

    LSoundRecorderNotify* pNotify;
    uint32_t nCookie = 0;
    int32_t nDeviceNumber = 0;
    std::atomic<uint8_t> nState{StateIdle};
    LSoundSinkPtr pSink;
    std::atomic<int32_t> nLastLoudMs{0};
    LSignalObject sigStarted;
    LSignalObject sigGo;
    LSignalObject sigDevice;
    std::unique_ptr<LWaveIn> pDevice;
    std::mutex mtxLevels;
    LSoundLevels levels;
    int32_t nMaxMs = 0;
    int8_t nStartThreshold = 0;
    int8_t nStopThreshold = -127;
    int32_t nSilenceMs = 0;
    std::atomic<bool> bNotifyStop{false};
    std::atomic<bool> bLevelsChanged{false};
    std::atomic<bool> bStateChanged{false};

    // The worker's own.
    uint8_t nChans = 1;
    int32_t nRate = 44100;
    int32_t nFramesPerBlock = 0;
    int32_t nDcCoefficient = 1;
    int32_t nDcAccumulator[256] = {};
    std::vector<int32_t> vWork;
    std::vector<int32_t> vPreRoll;
    int32_t nPreRollFrames = 0;
    std::unique_ptr<uint8_t[]> pBlock;
    LWaveHeader headers[kBuffers];
    LSoundLevels blockLevels;
    Notifier notifier{*this};
};

// The wave-device layer: a device takes buffers in the order they are queued and hands each
// back by setting its done flag and signalling the event given at open. The player and the
// recorder are written against these classes only; the backends behind them are a sound
// server or card (PortAudio) and a virtual device that keeps its own clock.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class LSignalObject;

struct LWaveDeviceFormat
{
    uint16_t nChannels = 1;
    int32_t nSamplesPerSec = 44100;
    uint16_t nBitsPerSample = 16;
    uint16_t nBlockAlign = 2;
    int32_t nAvgBytesPerSec = 88200;

    static LWaveDeviceFormat Pcm16(int32_t nRate, uint16_t nChans);
};

// Header flags.
inline constexpr uint32_t kWaveHdrDone = 0x01;
inline constexpr uint32_t kWaveHdrPrepared = 0x02;
inline constexpr uint32_t kWaveHdrBeginLoop = 0x04;
inline constexpr uint32_t kWaveHdrEndLoop = 0x08;
inline constexpr uint32_t kWaveHdrInQueue = 0x10;

// One buffer. The flags are written by the device from its own thread, hence atomic.
struct LWaveHeader
{
    uint8_t* pData = nullptr;
    uint32_t nBufferLength = 0;  // bytes to play, or room to record into
    uint32_t nBytesRecorded = 0; // bytes a recording device filled
    uint32_t dwUser = 0;
    std::atomic<uint32_t> dwFlags{0};
    uint32_t dwLoops = 0; // times a loop (begin-loop .. end-loop) is played

    bool IsDone() const { return (dwFlags.load() & kWaveHdrDone) != 0; }
    void SetFlags(uint32_t n) { dwFlags.fetch_or(n); }
    void ClearFlags(uint32_t n) { dwFlags.fetch_and(~n); }
};

enum LWaveResult
{
    WaveOk = 0,
    WaveError = 1,
    WaveBadDevice = 2,
    WaveStillPlaying = 33, // the buffer is still queued on the device
};

// Shared by both directions: preparing, and the device's sense of time.
class LWaveDeviceBase
{
public:
    virtual ~LWaveDeviceBase() = default; // closes the device; queued buffers are dropped

    virtual LWaveResult Prepare(LWaveHeader& hdr);
    // WaveStillPlaying while the buffer is queued.
    virtual LWaveResult Unprepare(LWaveHeader& hdr);
    virtual void Reset() = 0; // every queued buffer comes back done

    // Converts a wait meant in device time into real time: a virtual device may run faster
    // than the wall clock, and waits for it shrink with it.
    virtual int32_t RealMs(int32_t nDeviceMs) const { return nDeviceMs; }
};

class LWaveOut : public LWaveDeviceBase
{
public:
    virtual LWaveResult Write(LWaveHeader& hdr) = 0;
    virtual void Pause() = 0;
    virtual void Restart() = 0;
    // The looping buffer finishes its current pass and the queue moves on.
    virtual void BreakLoop() = 0;
    // True while audio already taken from the buffers (done as they are) is still on its way
    // to the speaker: the host's own buffers and the sound server's. A device that hands a
    // buffer back only once it has been heard keeps the default.
    virtual bool IsDraining() { return false; }
};

class LWaveIn : public LWaveDeviceBase
{
public:
    virtual LWaveResult AddBuffer(LWaveHeader& hdr) = 0;
    virtual void Start() = 0;
    // Stops recording; a partly filled buffer comes back with what it holds.
    virtual void Stop() = 0;
};

// A family of devices. Device numbers: 0 the default, n >= 1 device n - 1 of the list.
class LWaveDriver
{
public:
    virtual ~LWaveDriver() = default;

    virtual const char* GetName() const = 0;
    virtual std::vector<std::string> GetOutputNames() = 0;
    virtual std::vector<std::string> GetInputNames() = 0;
    // Null when the device cannot be opened for the format. bMapped lets the system convert
    // the format to one the device takes.
    virtual std::unique_ptr<LWaveOut> OpenOut(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                              bool bMapped) = 0;
    virtual std::unique_ptr<LWaveIn> OpenIn(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                            bool bMapped) = 0;
    // dwVolume: low word left, high word right, 0..0xFFFF each.
    virtual bool SetOutVolume(int32_t nDevice, uint32_t dwVolume) = 0;
};

// The driver in use. By default: the sound server or card when there is one, else the virtual
// device; SONITRA_AUDIO_DEVICE=virtual in the environment forces the virtual device
// (SONITRA_VIRTUAL_SPEED then sets its speed factor, SONITRA_VIRTUAL_TONE the frequency in Hz
// of a tone it records instead of silence).
class LWaveDevices
{
public:
    static LWaveDriver& Get();
    // Not owned; null restores the default choice.
    static void SetDriver(LWaveDriver* pDriver);
    // A backend for sound cards and servers registers how to get its driver (null when it
    // finds no device) before the first Get; without one, the virtual device serves.
    using BackendGet = LWaveDriver* (*)();
    static void RegisterBackend(BackendGet fnGet);
};

#include "devices/LWaveDevice.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string>

#include "core/LTrace.h"
#include "devices/LVirtualWave.h"

LWaveDeviceFormat LWaveDeviceFormat::Pcm16(int32_t nRate, uint16_t nChans)
{
    LWaveDeviceFormat fmt;
    fmt.nChannels = nChans;
    fmt.nSamplesPerSec = nRate;
    fmt.nBitsPerSample = 16;
    fmt.nBlockAlign = static_cast<uint16_t>(2 * nChans);
    fmt.nAvgBytesPerSec = fmt.nBlockAlign * nRate;
    return fmt;
}

LWaveResult LWaveDeviceBase::Prepare(LWaveHeader& hdr)
{
    hdr.SetFlags(kWaveHdrPrepared);
    return WaveOk;
}

LWaveResult LWaveDeviceBase::Unprepare(LWaveHeader& hdr)
{
    if (hdr.dwFlags.load() & kWaveHdrInQueue)
        return WaveStillPlaying;
    hdr.ClearFlags(kWaveHdrPrepared);
    return WaveOk;
}

namespace {
std::atomic<LWaveDriver*> g_pDriver{nullptr};
std::atomic<LWaveDevices::BackendGet> g_fnBackend{nullptr};

// A sine at half of 16-bit full scale, for trying the recorder without a microphone.
LVirtualWaveDriver::InputFn ToneInput(double fHz)
{
    return [fHz](int16_t* p, int32_t nFrames, uint8_t nChans, int32_t nRate, int64_t nFirst) {
        for (int32_t i = 0; i < nFrames; ++i) {
            const double f = std::sin(2 * M_PI * fHz * static_cast<double>(nFirst + i) / nRate);
            for (uint8_t c = 0; c < nChans; ++c)
                *p++ = static_cast<int16_t>(std::lround(16383 * f));
        }
    };
}

LWaveDriver& DefaultDriver()
{
    static LWaveDriver* pDefault = []() -> LWaveDriver* {
        static LVirtualWaveDriver virtualDriver;
        const char* szChoice = std::getenv("SONITRA_AUDIO_DEVICE");
        if (szChoice && std::string(szChoice) == "virtual") {
            if (const char* szSpeed = std::getenv("SONITRA_VIRTUAL_SPEED"))
                virtualDriver.SetSpeed(std::atof(szSpeed));
            if (const char* szTone = std::getenv("SONITRA_VIRTUAL_TONE"))
                virtualDriver.SetInput(ToneInput(std::atof(szTone)));
            return &virtualDriver;
        }
        const LWaveDevices::BackendGet fnBackend = g_fnBackend.load();
        if (LWaveDriver* p = fnBackend ? fnBackend() : nullptr)
            return p;
        LTRACE("LWaveDevices::Get no sound card or server, using the virtual device");
        return &virtualDriver;
    }();
    return *pDefault;
}
} // namespace

LWaveDriver& LWaveDevices::Get()
{
    if (LWaveDriver* p = g_pDriver.load())
        return *p;
    return DefaultDriver();
}

void LWaveDevices::RegisterBackend(BackendGet fnGet)
{
    g_fnBackend = fnGet;
}

void LWaveDevices::SetDriver(LWaveDriver* pDriver)
{
    g_pDriver = pDriver;
}

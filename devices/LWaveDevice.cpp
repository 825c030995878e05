#include "devices/LWaveDevice.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>

#include "core/LTrace.h"
#include "devices/LVirtualWave.h"
#include "platform/audio/LPortAudioWave.h"

LWaveFormat LWaveFormat::Pcm16(int32_t nRate, uint16_t nChans)
{
    LWaveFormat fmt;
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

LWaveDriver& DefaultDriver()
{
    static LWaveDriver* pDefault = []() -> LWaveDriver* {
        static LVirtualWaveDriver virtualDriver;
        const char* szChoice = std::getenv("SONITRA_AUDIO_DEVICE");
        if (szChoice && std::string(szChoice) == "virtual") {
            if (const char* szSpeed = std::getenv("SONITRA_VIRTUAL_SPEED"))
                virtualDriver.SetSpeed(std::atof(szSpeed));
            return &virtualDriver;
        }
        if (LWaveDriver* p = LPortAudioDriverGet())
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

void LWaveDevices::SetDriver(LWaveDriver* pDriver)
{
    g_pDriver = pDriver;
}

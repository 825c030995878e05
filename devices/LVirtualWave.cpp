#include "devices/LVirtualWave.h"

#include "core/LTrace.h"
#include "devices/LVirtualWaveStream.h"

namespace {
// Device 0 (the default) and device 1 are the one virtual device; any other number fails.
bool IsVirtualDevice(int32_t nDevice)
{
    return nDevice == 0 || nDevice == 1;
}

class LVirtualWaveOut : public LWaveOut
{
public:
    LVirtualWaveOut(LVirtualWaveDriver& drv, const LWaveDeviceFormat& fmt, LSignalObject* pDone)
        : driver(drv), stream(drv, fmt, pDone, true)
    {
        driver.stats.bOutOpen = true;
        driver.stats.bOutPaused = false;
    }
    ~LVirtualWaveOut() override { driver.stats.bOutOpen = false; }

    LWaveResult Write(LWaveHeader& hdr) override
    {
        ++driver.stats.nWrites;
        stream.Add(hdr);
        return WaveOk;
    }
    void Reset() override
    {
        ++driver.stats.nResets;
        driver.stats.bOutPaused = false;
        stream.Reset();
    }
    void Pause() override
    {
        ++driver.stats.nPauses;
        driver.stats.bOutPaused = true;
        stream.SetRunning(false);
    }
    void Restart() override
    {
        ++driver.stats.nRestarts;
        driver.stats.bOutPaused = false;
        stream.SetRunning(true);
    }
    void BreakLoop() override
    {
        ++driver.stats.nBreakLoops;
        stream.BreakLoop();
    }
    int32_t RealMs(int32_t nDeviceMs) const override { return stream.RealMs(nDeviceMs); }

private:
    LVirtualWaveDriver& driver;
    LVirtualWaveStream stream;
};

class LVirtualWaveIn : public LWaveIn
{
public:
    LVirtualWaveIn(LVirtualWaveDriver& drv, const LWaveDeviceFormat& fmt, LSignalObject* pDone)
        : stream(drv, fmt, pDone, false)
    {
    }

    LWaveResult AddBuffer(LWaveHeader& hdr) override
    {
        stream.Add(hdr);
        return WaveOk;
    }
    void Start() override { stream.SetRunning(true); }
    void Stop() override
    {
        stream.SetRunning(false);
        stream.ReturnPartial();
    }
    void Reset() override { stream.Reset(); }
    int32_t RealMs(int32_t nDeviceMs) const override { return stream.RealMs(nDeviceMs); }

private:
    LVirtualWaveStream stream;
};
} // namespace

LVirtualWaveDriver::LVirtualWaveDriver() = default;

std::vector<std::string> LVirtualWaveDriver::GetOutputNames()
{
    return {"Virtual Sound Out"};
}

std::vector<std::string> LVirtualWaveDriver::GetInputNames()
{
    return {"Virtual Sound In"};
}

std::unique_ptr<LWaveOut> LVirtualWaveDriver::OpenOut(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                                      bool)
{
    if (bFailOpen || !IsVirtualDevice(nDevice) || fmt.nBlockAlign == 0 || fmt.nSamplesPerSec <= 0) {
        LTRACE("LVirtualWaveDriver::OpenOut device %d refused", nDevice);
        return nullptr;
    }
    ++stats.nOpens;
    return std::make_unique<LVirtualWaveOut>(*this, fmt, pDone);
}

std::unique_ptr<LWaveIn> LVirtualWaveDriver::OpenIn(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                                    bool)
{
    if (bFailOpen || !IsVirtualDevice(nDevice) || fmt.nBlockAlign == 0 || fmt.nSamplesPerSec <= 0) {
        LTRACE("LVirtualWaveDriver::OpenIn device %d refused", nDevice);
        return nullptr;
    }
    ++stats.nOpens;
    return std::make_unique<LVirtualWaveIn>(*this, fmt, pDone);
}

bool LVirtualWaveDriver::SetOutVolume(int32_t nDevice, uint32_t dwNewVolume)
{
    if (!IsVirtualDevice(nDevice))
        return false;
    dwVolume = dwNewVolume;
    return true;
}

void LVirtualWaveDriver::SetInput(InputFn fn)
{
    std::lock_guard<std::mutex> lock(mtx);
    fnInput = std::move(fn);
}

void LVirtualWaveDriver::GetInput(InputFn& fn)
{
    std::lock_guard<std::mutex> lock(mtx);
    fn = fnInput;
}

void LVirtualWaveDriver::SetCapture(bool b)
{
    std::lock_guard<std::mutex> lock(mtx);
    bCapture = b;
    vCaptured.clear();
}

std::vector<int16_t> LVirtualWaveDriver::GetCaptured()
{
    std::lock_guard<std::mutex> lock(mtx);
    return vCaptured;
}

void LVirtualWaveDriver::AppendCaptured(const uint8_t* pBytes, uint32_t nBytes)
{
    if (!bCapture || nBytes == 0)
        return;
    std::lock_guard<std::mutex> lock(mtx);
    const auto* p = reinterpret_cast<const int16_t*>(pBytes);
    vCaptured.insert(vCaptured.end(), p, p + nBytes / 2);
}

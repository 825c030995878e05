#include "platform/audio/LPortAudioWave.h"

#ifndef SONITRA_HAVE_PORTAUDIO

const char* LPortAudioVersionText()
{
    return "no sound library";
}

LWaveDriver* LPortAudioDriverGet()
{
    return nullptr;
}

extern "C" const bool sonitra_portaudio_registered = false;

#else

#include <portaudio.h>

#include <array>
#include <atomic>
#include <cstring>
#include <mutex>

#include "core/LTrace.h"
#include "devices/LWaveQueue.h"
#include "platform/audio/LQuietStderr.h"

namespace {
constexpr int kMaxDevices = 64;

// Software volume per PortAudio device index (low word left, high word right).
std::array<std::atomic<uint32_t>, kMaxDevices>& Volumes()
{
    static std::array<std::atomic<uint32_t>, kMaxDevices> a;
    static const bool bFilled = [] {
        for (auto& x : a)
            x = 0xFFFFFFFF;
        return true;
    }();
    (void)bFilled;
    return a;
}

// One open PortAudio stream in either direction, feeding or filling the buffer queue.
class LPortAudioStream
{
public:
    LPortAudioStream(bool bOut, LSignalObject* pDone) : queue(pDone), bOutput(bOut) {}
    ~LPortAudioStream() { Close(); }

    bool Open(PaDeviceIndex nIndex, const LWaveDeviceFormat& fmt, bool bMapped)
    {
        const PaDeviceInfo* pInfo = Pa_GetDeviceInfo(nIndex);
        if (!pInfo)
            return false;
        nDeviceIndex = nIndex;
        nChans = fmt.nChannels;
        nRate = fmt.nSamplesPerSec;
        fAudibleUntil = 0;
        PaStreamParameters params = {};
        params.device = nIndex;
        params.channelCount = fmt.nChannels;
        params.sampleFormat = paInt16;
        params.suggestedLatency = bOutput ? pInfo->defaultHighOutputLatency : pInfo->defaultHighInputLatency;
        const PaStreamParameters* pIn = bOutput ? nullptr : &params;
        const PaStreamParameters* pOut = bOutput ? &params : nullptr;
        LQuietStderr quiet;
        if (!bMapped && Pa_IsFormatSupported(pIn, pOut, fmt.nSamplesPerSec) != paFormatIsSupported)
            return false;
        PaError err = Pa_OpenStream(&pStream, pIn, pOut, fmt.nSamplesPerSec, paFramesPerBufferUnspecified,
                                    paClipOff, &LPortAudioStream::Callback, this);
        if (err != paNoError) {
            LTRACE("LPortAudioStream::Open Pa_OpenStream %s", Pa_GetErrorText(err));
            pStream = nullptr;
            return false;
        }
        err = Pa_StartStream(pStream);
        if (err != paNoError) {
            LTRACE("LPortAudioStream::Open Pa_StartStream %s", Pa_GetErrorText(err));
            Close();
            return false;
        }
        return true;
    }

    void Close()
    {
        if (pStream) {
            // Output plays out what the host still buffers (a fraction of a second), so the
            // end of a sound is heard; the device's own queue was reset before closing.
            if (bOutput)
                Pa_StopStream(pStream);
            else
                Pa_AbortStream(pStream);
            Pa_CloseStream(pStream);
            pStream = nullptr;
        }
        queue.Drop();
    }

    LWaveQueue queue;
    std::atomic<bool> bRunning{true};

    // True until the stream's clock has passed the moment the last audio handed to the host
    // reaches the speaker.
    bool IsDraining()
    {
        if (!pStream)
            return false;
        const double tEnd = fAudibleUntil.load();
        return tEnd > 0 && Pa_GetStreamTime(pStream) < tEnd;
    }

private:
    static int Callback(const void* pIn, void* pOut, unsigned long nFrames, const PaStreamCallbackTimeInfo* pTime,
                        PaStreamCallbackFlags, void* pUser)
    {
        static_cast<LPortAudioStream*>(pUser)->Process(static_cast<const uint8_t*>(pIn),
                                                       static_cast<uint8_t*>(pOut), nFrames, pTime);
        return paContinue;
    }

    void Process(const uint8_t* pIn, uint8_t* pOut, unsigned long nFrames, const PaStreamCallbackTimeInfo* pTime)
    {
        const uint32_t nBytes = static_cast<uint32_t>(nFrames) * nChans * 2;
        if (!bOutput) {
            if (bRunning && pIn)
                queue.Put(pIn, nBytes);
            return;
        }
        const uint32_t nTaken = bRunning ? queue.Take(pOut, nBytes) : 0;
        std::memset(pOut + nTaken, 0, nBytes - nTaken);
        ApplyVolume(reinterpret_cast<int16_t*>(pOut), static_cast<uint32_t>(nFrames));
        if (nTaken > 0 && pTime && nRate > 0) {
            // When the last real frame of this block will be heard, in the stream's clock.
            const double fDac = pTime->outputBufferDacTime > 0 ? pTime->outputBufferDacTime : pTime->currentTime;
            fAudibleUntil.store(fDac + static_cast<double>(nTaken / (2u * nChans)) / nRate);
        }
    }

    void ApplyVolume(int16_t* p, uint32_t nFrames)
    {
        const uint32_t dwVolume = nDeviceIndex < kMaxDevices ? Volumes()[nDeviceIndex].load() : 0xFFFFFFFF;
        if (dwVolume == 0xFFFFFFFF)
            return;
        const int32_t nLeft = dwVolume & 0xFFFF;
        const int32_t nRight = dwVolume >> 16;
        for (uint32_t f = 0; f < nFrames; ++f)
            for (uint16_t c = 0; c < nChans; ++c, ++p)
                *p = static_cast<int16_t>((*p * ((c & 1) ? nRight : nLeft)) / 0xFFFF);
    }

    const bool bOutput;
    PaStream* pStream = nullptr;
    PaDeviceIndex nDeviceIndex = 0;
    uint16_t nChans = 1;
    int32_t nRate = 44100;
    std::atomic<double> fAudibleUntil{0};
};

class LPortAudioOut : public LWaveOut
{
public:
    explicit LPortAudioOut(LSignalObject* pDone) : stream(true, pDone) {}
    LPortAudioStream stream;

    LWaveResult Write(LWaveHeader& hdr) override
    {
        stream.queue.Add(hdr);
        return WaveOk;
    }
    void Reset() override
    {
        stream.queue.Reset();
        stream.bRunning = true;
    }
    void Pause() override { stream.bRunning = false; }
    void Restart() override { stream.bRunning = true; }
    void BreakLoop() override { stream.queue.BreakLoop(); }
    bool IsDraining() override { return stream.bRunning && stream.IsDraining(); }
};

class LPortAudioIn : public LWaveIn
{
public:
    explicit LPortAudioIn(LSignalObject* pDone) : stream(false, pDone) { stream.bRunning = false; }
    LPortAudioStream stream;

    LWaveResult AddBuffer(LWaveHeader& hdr) override
    {
        stream.queue.Add(hdr);
        return WaveOk;
    }
    void Start() override { stream.bRunning = true; }
    void Stop() override
    {
        stream.bRunning = false;
        stream.queue.ReturnPartial();
    }
    void Reset() override
    {
        stream.bRunning = false;
        stream.queue.Reset();
    }
};

class LPortAudioDriver : public LWaveDriver
{
public:
    const char* GetName() const override { return "portaudio"; }
    std::vector<std::string> GetOutputNames() override { return Names(true); }
    std::vector<std::string> GetInputNames() override { return Names(false); }

    std::unique_ptr<LWaveOut> OpenOut(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                      bool bMapped) override
    {
        const PaDeviceIndex nIndex = Resolve(nDevice, true);
        if (nIndex == paNoDevice)
            return nullptr;
        auto p = std::make_unique<LPortAudioOut>(pDone);
        if (!p->stream.Open(nIndex, fmt, bMapped))
            return nullptr;
        return p;
    }

    std::unique_ptr<LWaveIn> OpenIn(int32_t nDevice, const LWaveDeviceFormat& fmt, LSignalObject* pDone,
                                    bool bMapped) override
    {
        const PaDeviceIndex nIndex = Resolve(nDevice, false);
        if (nIndex == paNoDevice)
            return nullptr;
        auto p = std::make_unique<LPortAudioIn>(pDone);
        if (!p->stream.Open(nIndex, fmt, bMapped))
            return nullptr;
        return p;
    }

    bool SetOutVolume(int32_t nDevice, uint32_t dwVolume) override
    {
        const PaDeviceIndex nIndex = Resolve(nDevice, true);
        if (nIndex == paNoDevice || nIndex >= kMaxDevices)
            return false;
        Volumes()[nIndex] = dwVolume;
        return true;
    }

private:
    static bool HasChannels(const PaDeviceInfo* p, bool bOut)
    {
        return p && (bOut ? p->maxOutputChannels : p->maxInputChannels) > 0;
    }

    static std::vector<std::string> Names(bool bOut)
    {
        std::vector<std::string> v;
        for (PaDeviceIndex i = 0; i < Pa_GetDeviceCount(); ++i) {
            const PaDeviceInfo* p = Pa_GetDeviceInfo(i);
            if (HasChannels(p, bOut))
                v.emplace_back(p->name ? p->name : "");
        }
        return v;
    }

    // 0: the system default; n >= 1: the (n - 1)th device of that direction.
    static PaDeviceIndex Resolve(int32_t nDevice, bool bOut)
    {
        if (nDevice <= 0)
            return bOut ? Pa_GetDefaultOutputDevice() : Pa_GetDefaultInputDevice();
        int32_t nSeen = 0;
        for (PaDeviceIndex i = 0; i < Pa_GetDeviceCount(); ++i)
            if (HasChannels(Pa_GetDeviceInfo(i), bOut) && ++nSeen == nDevice)
                return i;
        return paNoDevice;
    }
};
} // namespace

LWaveDriver* LPortAudioDriverGet()
{
    static LPortAudioDriver* pDriver = []() -> LPortAudioDriver* {
        LQuietStderr quiet;
        if (Pa_Initialize() != paNoError) {
            LTRACE("LPortAudioDriverGet Pa_Initialize FAILED");
            return nullptr;
        }
        if (Pa_GetDeviceCount() <= 0) {
            LTRACE("LPortAudioDriverGet no devices");
            return nullptr;
        }
        static LPortAudioDriver driver;
        return &driver;
    }();
    return pDriver;
}

// The wave-device layer learns of this backend here; the build keeps this object linked in
// wherever the devices are (it names this symbol as undefined).
extern "C" const bool sonitra_portaudio_registered = (LWaveDevices::RegisterBackend(&LPortAudioDriverGet), true);

const char* LPortAudioVersionText()
{
    return Pa_GetVersionText();
}

#endif

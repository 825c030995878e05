#include "devices/LSoundPlayer.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

#include "core/LFixed.h"
#include "core/LSoundLimiter.h"
#include "core/LTrace.h"
#include "work/LThreadPriority.h"

namespace {
LSoundPlayerNotify g_nullNotify;

// How long the worker waits for a buffer to come back before it looks again, and how long
// Stop waits for the driver to let go of its buffers, both in device time.
constexpr int32_t kLookWaitMs = 150;
constexpr int32_t kDrainLookMs = 10;
constexpr int kDrainMaxLooks = 300;
constexpr int32_t kUnprepareRetryMs = 50;
constexpr int32_t kUnprepareBudgetMs = 1000;
constexpr int32_t kStopTimeoutMs = 5000;
constexpr uint32_t kCueLoops = 0x7FFFFFFF;
} // namespace

LSoundPlayer::LSoundPlayer() : pNotify(&g_nullNotify), pSource(new LSRCSilence)
{
}

LSoundPlayer::~LSoundPlayer()
{
    Stop();
}

void LSoundPlayer::SetNotify(LSoundPlayerNotify* pNew, uint32_t nNewCookie)
{
    pNotify = pNew ? pNew : &g_nullNotify;
    nCookie = nNewCookie;
}

int32_t LSoundPlayer::FramesPerBufferFor(int32_t nRate)
{
    return std::clamp(nRate / 10, 20, 8192);
}

uint32_t LSoundPlayer::DeviceVolumeFor(int32_t nDb)
{
    nDb = std::clamp(nDb, -127, 127);
    if (nDb <= -36)
        return 0;
    const uint32_t n = std::min<uint32_t>(static_cast<uint32_t>(nDb + 36) * 1424, 0xFFFF);
    return n | (n << 16);
}

bool LSoundPlayer::SetDeviceVolume(int32_t nDevice, int32_t nDb)
{
    return LWaveDevices::Get().SetOutVolume(nDevice, DeviceVolumeFor(nDb));
}

int32_t LSoundPlayer::ToMs(int32_t s) const
{
    const int32_t r = pSource->GetSampleRate();
    if (r <= 0)
        return 0;
    return (s / r) * 1000 + ((s % r) * 1000) / r;
}

bool LSoundPlayer::OpenDevice(const LWaveDeviceFormat& fmt)
{
    LWaveDriver& driver = LWaveDevices::Get();
    pDevice = driver.OpenOut(nDeviceNumber, fmt, &sigBufferDone, false);
    if (!pDevice)
        pDevice = driver.OpenOut(nDeviceNumber, fmt, &sigBufferDone, true);
    return pDevice != nullptr;
}

void LSoundPlayer::Allocate(int32_t nRate)
{
    nFramesPerBuffer = FramesPerBufferFor(nRate);
    const uint32_t nBytes = static_cast<uint32_t>(nChans) * nFramesPerBuffer * 2;
    vWork.assign(static_cast<size_t>(nChans) * nFramesPerBuffer, 0);
    pBlock = std::make_unique<uint8_t[]>(static_cast<size_t>(nBytes) * kBuffers);
    for (int i = 0; i < kBuffers; ++i) {
        LSoundPlayerWaveHeader& h = headers[i];
        h.nFullLength = nBytes;
        h.hdr.nBufferLength = nBytes;
        h.hdr.pData = pBlock.get() + static_cast<size_t>(nBytes) * i;
        h.hdr.dwFlags = 0;
        h.hdr.dwUser = kNoPosition;
        h.hdr.dwLoops = 0;
        h.levels = LSoundLevels();
        pDevice->Prepare(h.hdr);
        h.hdr.SetFlags(kWaveHdrDone); // free for the worker
    }
}

bool LSoundPlayer::Start(LSoundSourceBase* pNewSource, uint32_t nFlags)
{
    LTRACE("LSoundPlayer::Start");
    Stop();
    LSoundSourcePtr pSrc(pNewSource);
    if (!pSrc || pSrc->IsError()) {
        LTRACE("LSoundPlayer::Start Source Error");
        return false;
    }
    if (pSrc->GetMaxAmplitude() > kFullScale16) {
        pSrc = LSoundLimiter::Wrap(pSrc.Get(), kFullScale16);
        if (pSrc->IsError()) {
            LTRACE("LSoundPlayer::Start Limiter Error");
            return false;
        }
    }
    nChans = std::max<uint8_t>(1, pSrc->GetChannels());
    const LWaveDeviceFormat fmt = LWaveDeviceFormat::Pcm16(pSrc->GetSampleRate(), nChans);
    if (!OpenDevice(fmt)) {
        LTRACE("LSoundPlayer::Start waveOutOpen Error");
        return false;
    }
    pSource = pSrc;
    Allocate(fmt.nSamplesPerSec);

    uint16_t nNewState = kStateOpen | kStateTakeoff;
    if (nFlags & (kStartPaused | kStartPreRoll)) {
        pDevice->Pause();
        nNewState |= (nFlags & kStartPaused) ? kStatePaused : kStatePreRoll;
    }
    nState = nNewState;
    bNotifyStop = false;
    bNotifyPosition = false;
    nCurrent = 0;
    sPosition = pSource->GetPosition();
    nWantedPriority = PriorityBelowNormal;
    LThread::Start(PriorityBelowNormal);

    if (nNewState & kStatePaused)
        pNotify->PlayerPaused(nCookie);
    else
        pNotify->PlayerPlaying(nCookie);
    pNotify->PlayerPosition(nCookie, ToMs(sPosition));
    return true;
}

void LSoundPlayer::UnprepareAll()
{
    int32_t nBudget = kUnprepareBudgetMs;
    for (LSoundPlayerWaveHeader& h : headers) {
        h.hdr.nBufferLength = h.nFullLength;
        while (pDevice->Unprepare(h.hdr) == WaveStillPlaying) {
            if (nBudget <= 0) {
                LTRACE("LSoundPlayer::Stop waveOutUnprepareHeader still playing, buffers abandoned");
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(pDevice->RealMs(kUnprepareRetryMs)));
            nBudget -= kUnprepareRetryMs;
        }
    }
}

void LSoundPlayer::Stop()
{
    if (nState.load() == 0)
        return;
    LTRACE("LSoundPlayer::Stop");
    StopThreadTimed(kStopTimeoutMs);
    pDevice->Reset();
    UnprepareAll();
    // Closed before the memory goes: a driver that kept buffers must not touch freed memory.
    pDevice.reset();
    pBlock.reset();
    for (LSoundPlayerWaveHeader& h : headers)
        h.hdr.pData = nullptr;
    vWork.clear();
    pSource = new LSRCSilence;
    sPosition = 0;
    nState = 0;
    bNotifyStop = false;
    bNotifyPosition = false;
    pNotify->PlayerStopped(nCookie);
}

void LSoundPlayer::Pause()
{
    const uint16_t n = nState.load();
    if (!(n & kStateOpen) || (n & kStatePaused))
        return;
    pDevice->Pause();
    nState.fetch_or(kStatePaused);
    pNotify->PlayerPaused(nCookie);
}

void LSoundPlayer::Play()
{
    const uint16_t n = nState.load();
    if (!(n & kStateOpen))
        return;
    if (n & kStateCue) {
        pDevice->BreakLoop();
        nState.fetch_and(static_cast<uint16_t>(~kStateCue));
    }
    if (n & kStatePaused) {
        pDevice->Restart();
        nState.fetch_and(static_cast<uint16_t>(~kStatePaused));
    }
    pNotify->PlayerPlaying(nCookie);
}

void LSoundPlayer::MarkAllNoPosition()
{
    for (LSoundPlayerWaveHeader& h : headers)
        h.hdr.dwUser = kNoPosition;
}

void LSoundPlayer::WriteSixteen(LSoundPlayerWaveHeader& h, int32_t nFrames)
{
    auto* pOut = reinterpret_cast<int16_t*>(h.hdr.pData);
    const int32_t n = nFrames * nChans;
    for (int32_t i = 0; i < n; ++i)
        pOut[i] = LTo16(vWork[i]);
}

void LSoundPlayer::CueBuffer()
{
    LSoundPlayerWaveHeader& h = headers[0];
    const int32_t nQuarter = (nFramesPerBuffer + 3) / 4;
    pSource->Read(vWork.data(), nQuarter);
    WriteSixteen(h, nQuarter);
    // Doubling copies fill the whole buffer with repeats of the quarter.
    const uint32_t nFull = h.nFullLength;
    uint32_t nFilled = static_cast<uint32_t>(nQuarter) * nChans * 2;
    while (nFilled < nFull) {
        const uint32_t n = std::min(nFilled, nFull - nFilled);
        std::memcpy(h.hdr.pData + nFilled, h.hdr.pData, n);
        nFilled += n;
    }
    h.hdr.nBufferLength = nFull;
    h.hdr.dwUser = static_cast<uint32_t>(pSource->GetPosition());
    h.hdr.ClearFlags(kWaveHdrDone);
    h.hdr.SetFlags(kWaveHdrBeginLoop | kWaveHdrEndLoop);
    h.hdr.dwLoops = kCueLoops;
    pDevice->Write(h.hdr);
    nCurrent = 1;
    LComputePlayLevels(vWork.data(), nQuarter, nChans, h.levels);
}

void LSoundPlayer::Cue()
{
    const uint16_t n = nState.load();
    if (!(n & kStateOpen))
        return;
    if (n & kStateCue) {
        if (n & kStatePaused) {
            pDevice->Restart();
            nState.fetch_and(static_cast<uint16_t>(~kStatePaused));
        }
        return;
    }
    LSoundLevels levels;
    {
        std::lock_guard<std::mutex> lock(mtxGuard);
        pDevice->Reset();
        MarkAllNoPosition();
        pSource->SetPosition(sPosition);
        sPosition = pSource->GetPosition();
        CueBuffer();
        levels = headers[0].levels;
        nState = kStateOpen | kStateCue | kStateTakeoff;
        bNotifyStop = false;
        bNotifyPosition = false;
        nWantedPriority = PriorityLowest;
    }
    pNotify->PlayerLevels(nCookie, levels);
    pNotify->PlayerCued(nCookie);
    pNotify->PlayerPosition(nCookie, ToMs(sPosition));
}

void LSoundPlayer::Seek(int32_t sSamples)
{
    if (!(nState.load() & kStateOpen))
        return;
    bool bCue;
    LSoundLevels levels;
    {
        std::lock_guard<std::mutex> lock(mtxGuard);
        pDevice->Reset();
        MarkAllNoPosition();
        pSource->SetPosition(sSamples);
        sPosition = pSource->GetPosition();
        const uint16_t n = nState.load();
        if (n & kStatePaused)
            pDevice->Pause();
        bCue = (n & kStateCue) != 0;
        if (bCue) {
            CueBuffer();
            levels = headers[0].levels;
        } else {
            nCurrent = 0;
        }
        nWantedPriority = PriorityLowest;
        nState.fetch_or(kStateTakeoff);
        bNotifyStop = false;
        bNotifyPosition = false;
    }
    if (bCue)
        pNotify->PlayerLevels(nCookie, levels);
    pNotify->PlayerPosition(nCookie, ToMs(sPosition));
}

bool LSoundPlayer::AllDone() const
{
    for (const LSoundPlayerWaveHeader& h : headers)
        if (!h.hdr.IsDone())
            return false;
    return true;
}

void LSoundPlayer::ApplyWantedPriority()
{
    const int n = nWantedPriority.load();
    if (n != nAppliedPriority) {
        LSetCurrentThreadPriority(n);
        nAppliedPriority = n;
    }
}

// Step 4 of a look at a free header: the next stretch of the source goes to the device.
bool LSoundPlayer::FillHeader(LSoundPlayerWaveHeader& h)
{
    const int32_t nRemaining = pSource->GetLength() - pSource->GetPosition();
    if (nRemaining <= 0) {
        h.hdr.dwUser = kNoPosition;
        return false;
    }
    const int32_t nFrames = std::min(nRemaining, nFramesPerBuffer);
    const int32_t sBefore = pSource->GetPosition();
    pSource->Read(vWork.data(), nFrames);
    WriteSixteen(h, nFrames);
    h.hdr.nBufferLength = static_cast<uint32_t>(nChans) * nFrames * 2;
    h.hdr.dwUser = static_cast<uint32_t>(sBefore + nFrames);
    h.hdr.ClearFlags(kWaveHdrDone | kWaveHdrBeginLoop | kWaveHdrEndLoop);
    pDevice->Write(h.hdr);
    LComputePlayLevels(vWork.data(), nFrames, nChans, h.levels);
    return true;
}

bool LSoundPlayer::WorkerStep(int& nFailedLooks)
{
    sigBufferDone.Reset();
    ApplyWantedPriority();
    std::unique_lock<std::mutex> lock(mtxGuard);
    LSoundPlayerWaveHeader& h = headers[nCurrent];
    if (!h.hdr.IsDone()) {
        if (nState.load() & kStateTakeoff) {
            // Caught up with the device: from now on nothing may keep the worker waiting.
            nWantedPriority = PriorityTimeCritical;
            nState.fetch_and(static_cast<uint16_t>(~kStateTakeoff));
        }
        if (++nFailedLooks > kBuffers) {
            if (nState.load() & kStateCue) {
                nFailedLooks = 0;
            } else {
                LTRACE("LSoundPlayer::ThreadFunction driver is not returning buffers");
                bNotifyStop = true;
                notifier.Notify();
            }
        }
        lock.unlock();
        return sigStop.WaitSignalDual(sigBufferDone, pDevice->RealMs(kLookWaitMs)) != LSignalObject::WaitThis;
    }
    nFailedLooks = 0;
    if (h.hdr.dwUser != kNoPosition) {
        sPosition = static_cast<int32_t>(h.hdr.dwUser);
        lastLevels = h.levels;
        bNotifyPosition = true;
        notifier.Notify();
    }
    const bool bWrote = FillHeader(h);
    if (!bWrote && AllDone()) {
        lock.unlock();
        // The end is reported once the last sample has been heard, not when the device took
        // it; Stop still ends the wait at once.
        // A host clock that stalls cannot hold the end back for long.
        for (int n = 0; n < kDrainMaxLooks && pDevice->IsDraining(); ++n)
            if (sigStop.Wait(pDevice->RealMs(kDrainLookMs)))
                return false;
        bNotifyStop = true;
        notifier.Notify();
        return false;
    }
    nCurrent = static_cast<uint8_t>((nCurrent + 1) % kBuffers);
    if (bWrote && nCurrent == kPreRollBuffers && (nState.load() & kStatePreRoll)) {
        nState.fetch_and(static_cast<uint16_t>(~kStatePreRoll));
        pDevice->Restart();
    }
    return true;
}

void LSoundPlayer::ThreadFunction()
{
    nAppliedPriority = -1000; // applied on the first step
    int nFailedLooks = 0;
    while (!IsStopRequested())
        if (!WorkerStep(nFailedLooks))
            break;
    pDevice->Reset();
}

void LSoundPlayer::EvNotify()
{
    if (!(nState.load() & kStateOpen))
        return;
    if (!bNotifyStop && bNotifyPosition.exchange(false)) {
        LSoundLevels levels;
        {
            std::lock_guard<std::mutex> lock(mtxGuard);
            levels = lastLevels;
        }
        pNotify->PlayerPosition(nCookie, ToMs(sPosition));
        pNotify->PlayerLevels(nCookie, levels);
    }
    if (bNotifyStop) {
        pNotify->PlayerPosition(nCookie, ToMs(pSource->GetLength()));
        Stop();
    }
}

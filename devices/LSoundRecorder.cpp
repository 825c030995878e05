#include "devices/LSoundRecorder.h"

#include <algorithm>
#include <cstring>

#include "core/LFixed.h"
#include "core/LTrace.h"
#include "work/LThreadPriority.h"

namespace {
LSoundRecorderNotify g_nullNotify;

constexpr int32_t kStartedWaitMs = 700;
constexpr int32_t kStopTimeoutMs = 5000;
constexpr int32_t kLookWaitMs = 200; // device time
} // namespace

LSoundRecorder::LSoundRecorder() : pNotify(&g_nullNotify)
{
}

LSoundRecorder::~LSoundRecorder()
{
    Stop();
}

void LSoundRecorder::SetNotify(LSoundRecorderNotify* pNew, uint32_t nNewCookie)
{
    pNotify = pNew ? pNew : &g_nullNotify;
    nCookie = nNewCookie;
}

bool LSoundRecorder::Start(LSoundSinkBase* pNewSink, int32_t nDevice, int8_t nStart, int8_t nStop, int32_t nSilence,
                           int32_t nMax)
{
    return Begin(pNewSink, nDevice, nStart, nStop, nSilence, nMax, StateRecording);
}

bool LSoundRecorder::Restart(LSoundSinkBase* pNewSink, int32_t nDevice, int8_t nStart, int8_t nStop,
                             int32_t nSilence, int32_t nMax)
{
    return Begin(pNewSink, nDevice, nStart, nStop, nSilence, nMax, StateWaiting);
}

bool LSoundRecorder::Begin(LSoundSinkBase* pNewSink, int32_t nDevice, int8_t nStart, int8_t nStop,
                           int32_t nSilence, int32_t nMax, State initial)
{
    LTRACE("LSoundRecorder::Start");
    Stop();
    LSoundSinkPtr pTaken(pNewSink);
    if (!pTaken || pTaken->IsError()) {
        LTRACE("LSoundRecorder::Start Sink Error");
        return false;
    }
    pSink = pTaken;
    nDeviceNumber = nDevice;
    nStartThreshold = nStart;
    nStopThreshold = nStop;
    nSilenceMs = nSilence;
    nMaxMs = nMax;
    nLastLoudMs = 0;
    bNotifyStop = false;
    bLevelsChanged = false;
    bStateChanged = false;
    nState = initial;
    sigStarted.Reset();
    sigGo.Set();
    LThread::Start(PriorityNormal);
    sigStarted.Wait(kStartedWaitMs);
    if (nState.load() == StateIdle) {
        LTRACE("LSoundRecorder::Start waveInOpen Error");
        StopThreadTimed(kStopTimeoutMs);
        pSink.Reset();
        pNotify->RecorderStopped(nCookie);
        return false;
    }
    if (nState.load() == StateWaiting)
        pNotify->RecorderWaiting(nCookie);
    else
        pNotify->RecorderRecording(nCookie);
    return true;
}

void LSoundRecorder::Stop()
{
    if (nState.load() == StateIdle)
        return;
    LTRACE("LSoundRecorder::Stop");
    StopThreadTimed(kStopTimeoutMs);
    // Whatever followed the last loud block is cut to a short tail.
    const int32_t nTailMs = nLastLoudMs.load() + kStopTailMs;
    if (pSink && ElapsedMs() > nTailMs)
        pSink->SetPosition(MsToSamples(nTailMs));
    pSink.Reset();
    nLastLoudMs = 0;
    nState = StateIdle;
    pNotify->RecorderStopped(nCookie);
}

int32_t LSoundRecorder::ElapsedMs() const
{
    if (!pSink)
        return 0;
    const int32_t p = pSink->GetPosition();
    const int32_t r = pSink->GetSampleRate();
    if (r <= 0)
        return 0;
    return (p / r) * 1000 + ((p % r) * 1000) / r;
}

int32_t LSoundRecorder::MsToSamples(int32_t nMs) const
{
    const int32_t r = pSink ? pSink->GetSampleRate() : nRate;
    return (nMs / 1000) * r + ((nMs % 1000) * r) / 1000;
}

bool LSoundRecorder::OpenDevice(const LWaveDeviceFormat& fmt)
{
    LWaveDriver& driver = LWaveDevices::Get();
    pDevice = driver.OpenIn(nDeviceNumber, fmt, &sigDevice, false);
    if (!pDevice)
        pDevice = driver.OpenIn(nDeviceNumber, fmt, &sigDevice, true);
    return pDevice != nullptr;
}

void LSoundRecorder::PrepareBuffers()
{
    const size_t nSamples = static_cast<size_t>(nChans) * nFramesPerBlock;
    vWork.assign(nSamples, 0);
    vPreRoll.assign(nSamples, 0);
    nPreRollFrames = 0;
    const uint32_t nBytes = static_cast<uint32_t>(nSamples * 2);
    pBlock = std::make_unique<uint8_t[]>(static_cast<size_t>(nBytes) * kBuffers);
    for (int i = 0; i < kBuffers; ++i) {
        LWaveHeader& h = headers[i];
        h.pData = pBlock.get() + static_cast<size_t>(nBytes) * i;
        h.nBufferLength = nBytes;
        h.nBytesRecorded = 0;
        h.dwFlags = 0;
        pDevice->Prepare(h);
        pDevice->AddBuffer(h);
    }
}

void LSoundRecorder::ThreadFunction()
{
    nChans = pSink ? std::max<uint8_t>(1, pSink->GetChannels()) : 1;
    nRate = pSink ? pSink->GetSampleRate() : 44100;
    if (!OpenDevice(LWaveDeviceFormat::Pcm16(nRate, nChans))) {
        nState = StateIdle;
        sigStarted.Set();
        return;
    }
    pDevice->Stop(); // buffers added now must not start it
    nFramesPerBlock = std::clamp(nRate / 10, 20, 8192);
    nDcCoefficient = nRate > 0 ? 192000 / nRate + 1 : 1;
    std::fill(std::begin(nDcAccumulator), std::end(nDcAccumulator), 0);
    PrepareBuffers();
    sigStarted.Set();
    if (sigGo.WaitSignalDual(sigStop, -1) == LSignalObject::WaitThis) {
        LSetCurrentThreadPriority(PriorityHighest);
        pDevice->Start();
        Record();
    }
    Finish();
}

int32_t LSoundRecorder::ToWork(const LWaveHeader& h)
{
    const int32_t nFrames = std::min<int32_t>(static_cast<int32_t>(h.nBytesRecorded / 2 / nChans), nFramesPerBlock);
    const auto* p = reinterpret_cast<const int16_t*>(h.pData);
    const int32_t n = nFrames * nChans;
    for (int32_t i = 0; i < n; ++i)
        vWork[i] = LFrom16(p[i]);
    return nFrames;
}

void LSoundRecorder::RemoveDc(int32_t nFrames)
{
    for (uint8_t c = 0; c < nChans; ++c) {
        int32_t a = nDcAccumulator[c];
        int32_t* p = vWork.data() + c;
        for (int32_t f = 0; f < nFrames; ++f, p += nChans) {
            const int32_t y = LWrapAdd(*p, -(a >> 12));
            *p = y;
            a = LWrapAdd(a, LWrapMul(y, nDcCoefficient));
        }
        nDcAccumulator[c] = a;
    }
}

void LSoundRecorder::Record()
{
    int i = 0;
    while (!IsStopRequested()) {
        sigDevice.Reset();
        LWaveHeader& h = headers[i];
        if (!h.IsDone()) {
            if (sigStop.WaitSignalDual(sigDevice, pDevice->RealMs(kLookWaitMs)) == LSignalObject::WaitThis)
                break;
            continue;
        }
        const int32_t nFrames = ToWork(h);
        pDevice->AddBuffer(h);
        if (nFrames > 0) {
            RemoveDc(nFrames);
            ApplyStateRules(nFrames);
            {
                std::lock_guard<std::mutex> lock(mtxLevels);
                levels = blockLevels;
            }
            bLevelsChanged = true;
            notifier.Notify();
        }
        i = (i + 1) % kBuffers;
    }
    // What the device still holds is written in the order it was recorded.
    pDevice->Reset();
    if (nState.load() == StateRecording) {
        for (int k = 0; k < kBuffers; ++k) {
            LWaveHeader& h = headers[(i + k) % kBuffers];
            if (!h.IsDone())
                continue;
            const int32_t nFrames = ToWork(h);
            if (nFrames >= 1 && nFrames <= nFramesPerBlock)
                pSink->Write(vWork.data(), nFrames);
        }
    }
}

void LSoundRecorder::Finish()
{
    pDevice->Reset();
    for (LWaveHeader& h : headers)
        pDevice->Unprepare(h);
    pDevice.reset();
    pBlock.reset();
    bNotifyStop = false;
    bLevelsChanged = false;
    bStateChanged = false;
}

void LSoundRecorder::KeepPreRoll(int32_t nFrames)
{
    std::memcpy(vPreRoll.data(), vWork.data(), static_cast<size_t>(nFrames) * nChans * sizeof(int32_t));
    nPreRollFrames = nFrames;
}

void LSoundRecorder::ApplyStateRules(int32_t nFrames)
{
    LComputeRecordLevels(vWork.data(), nFrames, nChans, blockLevels);
    const int8_t nLoudness = LLoudness(blockLevels);
    if (nState.load() == StateWaiting)
        RuleWaiting(nFrames, nLoudness);
    else
        RuleRecording(nFrames, nLoudness);
}

void LSoundRecorder::RuleRecording(int32_t nFrames, int8_t nLoudness)
{
    pSink->Write(vWork.data(), nFrames);
    const int32_t nElapsed = ElapsedMs();
    if (nLoudness < nStopThreshold) {
        if (nElapsed - nLastLoudMs.load() > nSilenceMs) {
            const int32_t sCut = MsToSamples(nLastLoudMs.load() + kCutBackMs);
            if (sCut < pSink->GetPosition())
                pSink->SetPosition(sCut);
            nState = StateWaiting;
            KeepPreRoll(nFrames);
            bStateChanged = true;
        }
    } else {
        nLastLoudMs = nElapsed;
    }
    if (nMaxMs > 0 && nElapsed > nMaxMs) {
        bNotifyStop = true;
        notifier.Notify();
    }
}

void LSoundRecorder::RuleWaiting(int32_t nFrames, int8_t nLoudness)
{
    if (nLoudness < nStartThreshold) {
        KeepPreRoll(nFrames);
        return;
    }
    // A loud first half means the sound began before this block: the end of the block before
    // it goes in first so that the onset is kept.
    LSoundLevels half;
    LComputeRecordLevels(vWork.data(), nFrames / 2, nChans, half);
    if (LLoudness(half) >= nStartThreshold && nPreRollFrames > 0) {
        const int32_t nSkip = nPreRollFrames / 2;
        pSink->Write(vPreRoll.data() + static_cast<size_t>(nSkip) * nChans, nPreRollFrames - nSkip);
    }
    pSink->Write(vWork.data(), nFrames);
    // The silence that ends this take is measured from here, not from the previous take.
    nLastLoudMs = ElapsedMs();
    nState = StateRecording;
    bStateChanged = true;
}

void LSoundRecorder::EvNotify()
{
    if (nState.load() == StateIdle)
        return;
    if (bNotifyStop) {
        Stop();
        return;
    }
    if (bLevelsChanged.exchange(false)) {
        LSoundLevels copy;
        {
            std::lock_guard<std::mutex> lock(mtxLevels);
            copy = levels;
        }
        pNotify->RecorderTime(nCookie, nLastLoudMs.load());
        pNotify->RecorderLevels(nCookie, copy);
    }
    if (bStateChanged.exchange(false)) {
        if (nState.load() == StateWaiting)
            pNotify->RecorderWaiting(nCookie);
        else
            pNotify->RecorderRecording(nCookie);
    }
}

#include "devices/LVirtualWaveStream.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int32_t kChunkFrames = 4096;
// How often an idle recording device drops the input nobody queued a buffer for.
constexpr auto kIdleInputTick = std::chrono::milliseconds(10);
} // namespace

LVirtualWaveStream::LVirtualWaveStream(LVirtualWaveDriver& drv, const LWaveDeviceFormat& format, LSignalObject* pDone,
                                       bool bOut)
    : driver(drv), fmt(format), queue(pDone), bOutput(bOut), fSpeed(drv.GetSpeed()),
      nBlockFrames(drv.GetBlockFrames()), bRunning(bOut)
{
    vScratch.resize(static_cast<size_t>(kChunkFrames) * fmt.nBlockAlign);
    thread = std::thread(&LVirtualWaveStream::Run, this);
}

LVirtualWaveStream::~LVirtualWaveStream()
{
    {
        std::lock_guard<std::mutex> lock(mtx);
        bClosing = true;
    }
    cv.notify_all();
    thread.join();
    queue.Drop();
}

void LVirtualWaveStream::Add(LWaveHeader& hdr)
{
    queue.Add(hdr);
    std::lock_guard<std::mutex> lock(mtx);
    if (bOutput && bStarved && bRunning)
        ++driver.stats.nUnderruns;
    bStarved = false;
    cv.notify_all();
}

void LVirtualWaveStream::Reset()
{
    // A stuck driver keeps its buffers even now.
    if (!IsHeld())
        queue.Reset();
    std::lock_guard<std::mutex> lock(mtx);
    bStarved = false;
    bAnchored = false;
    if (bOutput)
        bRunning = true; // a reset also ends a pause
    else
        bRunning = false;
    cv.notify_all();
}

void LVirtualWaveStream::SetRunning(bool bRun)
{
    std::lock_guard<std::mutex> lock(mtx);
    if (bRun != bRunning)
        bAnchored = false;
    bRunning = bRun;
    cv.notify_all();
}

int32_t LVirtualWaveStream::RealMs(int32_t nDeviceMs) const
{
    return std::max<int32_t>(1, static_cast<int32_t>(std::lround(nDeviceMs / fSpeed)));
}

int64_t LVirtualWaveStream::Move(int64_t nFrames)
{
    int64_t nMoved = 0;
    while (nFrames > 0) {
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(nFrames, kChunkFrames));
        const uint32_t nBytes = static_cast<uint32_t>(n) * fmt.nBlockAlign;
        uint32_t nDone;
        if (bOutput) {
            nDone = queue.Take(vScratch.data(), nBytes);
            driver.AppendCaptured(vScratch.data(), nDone);
            driver.stats.nFramesPlayed += nDone / fmt.nBlockAlign;
        } else {
            LVirtualWaveDriver::InputFn fn;
            driver.GetInput(fn);
            auto* p = reinterpret_cast<int16_t*>(vScratch.data());
            if (fn)
                fn(p, n, static_cast<uint8_t>(fmt.nChannels), fmt.nSamplesPerSec, nFramesGenerated);
            else
                std::fill(p, p + static_cast<size_t>(n) * fmt.nChannels, int16_t(0));
            nFramesGenerated += n;
            nDone = queue.Put(vScratch.data(), nBytes);
            driver.stats.nFramesRecorded += nDone / fmt.nBlockAlign;
        }
        nMoved += nDone / fmt.nBlockAlign;
        nFrames -= n;
        if (nDone < nBytes && bOutput)
            break;
    }
    return nMoved;
}

void LVirtualWaveStream::Run()
{
    std::unique_lock<std::mutex> lock(mtx);
    const double fFramesPerSec = fmt.nSamplesPerSec * fSpeed;
    while (!bClosing) {
        const bool bIdleOut = bOutput && (IsHeld() || queue.IsEmpty());
        if (!bRunning || bIdleOut) {
            bAnchored = false;
            if (IsHeld())
                cv.wait_for(lock, std::chrono::milliseconds(20));
            else
                cv.wait(lock);
            continue;
        }
        const Clock::time_point tNow = Clock::now();
        if (!bAnchored) {
            bAnchored = true;
            tAnchor = tNow;
            nFramesSinceAnchor = 0;
        }
        const double fElapsed = std::chrono::duration<double>(tNow - tAnchor).count();
        int64_t nDue = static_cast<int64_t>(fElapsed * fFramesPerSec) - nFramesSinceAnchor;
        if (nBlockFrames > 0)
            nDue -= nDue % nBlockFrames; // whole callbacks only
        if (nDue > 0) {
            const int64_t nMoved = Move(nDue);
            nFramesSinceAnchor += nDue;
            if (bOutput && nMoved < nDue) {
                bStarved = true;
                bAnchored = false;
                continue;
            }
        }
        if (nBlockFrames > 0) {
            // A callback-driven device: wake for the next block whatever the buffers hold.
            const auto tWake = tAnchor + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                                             (nFramesSinceAnchor + nBlockFrames) / fFramesPerSec));
            cv.wait_until(lock, tWake);
            continue;
        }
        // Sleep until the front buffer runs out (or, recording with no buffer, a short tick).
        const uint32_t nLeft = queue.BytesToNextReturn() / fmt.nBlockAlign;
        if (nLeft == 0) {
            cv.wait_for(lock, kIdleInputTick);
            continue;
        }
        const auto tWake = tAnchor + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                                         (nFramesSinceAnchor + nLeft) / fFramesPerSec));
        cv.wait_until(lock, tWake);
    }
}

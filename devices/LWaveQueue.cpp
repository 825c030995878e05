#include "devices/LWaveQueue.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include "core/LTrace.h"
#include "work/LSignalObject.h"

LWaveQueue::ShutOut::ShutOut(LWaveQueue& queue) : q(queue), lock(queue.mtxControl)
{
    // Both flags sequentially consistent: either the callback sees the shut-out before it
    // starts, or this side sees it inside and waits the few microseconds until it leaves.
    q.bShutOut.store(true);
    while (q.bInCallback.load())
        std::this_thread::yield();
}

LWaveQueue::ShutOut::~ShutOut()
{
    q.bShutOut.store(false);
}

bool LWaveQueue::Enter()
{
    bInCallback.store(true);
    if (bShutOut.load()) {
        bInCallback.store(false);
        return false;
    }
    return true;
}

void LWaveQueue::Add(LWaveHeader& hdr)
{
    std::lock_guard<std::mutex> lock(mtxControl);
    const uint32_t nTailNow = nTail.load(std::memory_order_relaxed);
    if (nTailNow - nHead.load(std::memory_order_acquire) >= kCapacity) {
        LTRACE("LWaveQueue::Add the queue is full");
        hdr.SetFlags(kWaveHdrDone);
        return;
    }
    hdr.ClearFlags(kWaveHdrDone);
    hdr.SetFlags(kWaveHdrInQueue);
    hdr.nBytesRecorded = 0;
    ring[nTailNow % kCapacity] = &hdr;
    nTail.store(nTailNow + 1, std::memory_order_release);
}

bool LWaveQueue::IsQueued(const LWaveHeader& hdr)
{
    return (hdr.dwFlags.load() & kWaveHdrInQueue) != 0;
}

bool LWaveQueue::IsEmpty()
{
    return nTail.load(std::memory_order_acquire) == nHead.load(std::memory_order_acquire);
}

void LWaveQueue::ClearState()
{
    nOffset = 0;
    nCurrent = 0;
    bLoopStarted = false;
}

// The callback's, or with the callback shut out.
void LWaveQueue::ReturnFront()
{
    LWaveHeader* p = At(0);
    nHead.store(nHead.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    ClearState();
    p->ClearFlags(kWaveHdrInQueue);
    p->SetFlags(kWaveHdrDone);
    if (pDone)
        pDone->Set();
}

void LWaveQueue::Reset()
{
    ShutOut shut(*this);
    bool bAny = false;
    while (Queued() > 0) {
        LWaveHeader* p = At(0);
        nHead.store(nHead.load(std::memory_order_relaxed) + 1, std::memory_order_release);
        p->ClearFlags(kWaveHdrInQueue);
        p->SetFlags(kWaveHdrDone);
        bAny = true;
    }
    ClearState();
    bBreakLoop = false;
    if (bAny && pDone)
        pDone->Set();
}

void LWaveQueue::Drop()
{
    ShutOut shut(*this);
    while (Queued() > 0) {
        At(0)->ClearFlags(kWaveHdrInQueue);
        nHead.store(nHead.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }
    ClearState();
}

uint32_t LWaveQueue::Take(uint8_t* pOut, uint32_t nBytes)
{
    if (!Enter())
        return 0;
    uint32_t nTaken = 0;
    while (nTaken < nBytes && nCurrent < Queued()) {
        LWaveHeader* p = At(nCurrent);
        if (!bLoopStarted && nCurrent == 0 && (p->dwFlags.load() & kWaveHdrBeginLoop)) {
            bLoopStarted = true;
            bBreakLoop = false;
            nLoopsLeft = p->dwLoops;
            nPassBytes = 0;
        }
        const uint32_t nChunk = std::min(nBytes - nTaken, p->nBufferLength - std::min(nOffset, p->nBufferLength));
        if (pOut && nChunk)
            std::memcpy(pOut + nTaken, p->pData + nOffset, nChunk);
        nTaken += nChunk;
        nOffset += nChunk;
        nPassBytes += nChunk;
        if (nOffset < p->nBufferLength)
            break;
        if (!EndOfBuffer(p))
            break;
    }
    Leave();
    return nTaken;
}

// The current buffer has run out. False when playing must wait for the rest of an unfinished
// loop to be queued.
bool LWaveQueue::EndOfBuffer(LWaveHeader* p)
{
    nOffset = 0;
    if (!bLoopStarted) {
        ReturnFront();
        return true;
    }
    if (!(p->dwFlags.load() & kWaveHdrEndLoop)) {
        ++nCurrent;
        return nCurrent < Queued();
    }
    // A pass without a byte in it would spin forever.
    if (nLoopsLeft > 1 && !bBreakLoop.load() && nPassBytes > 0) {
        --nLoopsLeft;
        nPassBytes = 0;
        nCurrent = 0;
        return true;
    }
    const uint32_t nLoopBuffers = nCurrent + 1;
    for (uint32_t i = 0; i < nLoopBuffers; ++i)
        ReturnFront();
    bBreakLoop = false;
    return true;
}

void LWaveQueue::BreakLoop()
{
    // Read at the end of a pass; a loop that starts later clears it, as one not yet started
    // ignores it.
    bBreakLoop = true;
}

uint32_t LWaveQueue::BytesToNextReturn()
{
    if (!Enter())
        return 0;
    uint32_t nLeft = 0;
    if (nCurrent < Queued()) {
        const uint32_t nLength = At(nCurrent)->nBufferLength;
        nLeft = nLength > nOffset ? nLength - nOffset : 0;
    }
    Leave();
    return nLeft;
}

uint32_t LWaveQueue::Put(const uint8_t* pIn, uint32_t nBytes)
{
    if (!Enter())
        return 0;
    uint32_t nStored = 0;
    while (nStored < nBytes && Queued() > 0) {
        LWaveHeader* p = At(0);
        const uint32_t nChunk = std::min(nBytes - nStored, p->nBufferLength - std::min(nOffset, p->nBufferLength));
        if (nChunk) {
            if (pIn)
                std::memcpy(p->pData + nOffset, pIn + nStored, nChunk);
            else
                std::memset(p->pData + nOffset, 0, nChunk);
        }
        nStored += nChunk;
        nOffset += nChunk;
        p->nBytesRecorded = nOffset;
        if (nOffset < p->nBufferLength)
            break;
        ReturnFront();
    }
    Leave();
    return nStored;
}

void LWaveQueue::ReturnPartial()
{
    ShutOut shut(*this);
    if (Queued() > 0 && nOffset > 0)
        ReturnFront();
}

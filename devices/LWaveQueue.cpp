#include "devices/LWaveQueue.h"

#include <algorithm>
#include <cstring>

#include "work/LSignalObject.h"

void LWaveQueue::Add(LWaveHeader& hdr)
{
    hdr.ClearFlags(kWaveHdrDone);
    hdr.SetFlags(kWaveHdrInQueue);
    hdr.nBytesRecorded = 0;
    std::lock_guard<std::mutex> lock(mtx);
    queue.push_back(&hdr);
}

bool LWaveQueue::IsQueued(const LWaveHeader& hdr)
{
    std::lock_guard<std::mutex> lock(mtx);
    return std::find(queue.begin(), queue.end(), &hdr) != queue.end();
}

bool LWaveQueue::IsEmpty()
{
    std::lock_guard<std::mutex> lock(mtx);
    return queue.empty();
}

// Called with the lock held.
void LWaveQueue::ReturnFront()
{
    LWaveHeader* p = queue.front();
    queue.pop_front();
    nOffset = 0;
    nCurrent = 0;
    bLoopStarted = false;
    p->ClearFlags(kWaveHdrInQueue);
    p->SetFlags(kWaveHdrDone);
    if (pDone)
        pDone->Set();
}

void LWaveQueue::Reset()
{
    std::lock_guard<std::mutex> lock(mtx);
    bool bAny = !queue.empty();
    while (!queue.empty()) {
        LWaveHeader* p = queue.front();
        queue.pop_front();
        p->ClearFlags(kWaveHdrInQueue);
        p->SetFlags(kWaveHdrDone);
    }
    nOffset = 0;
    nCurrent = 0;
    bLoopStarted = false;
    bBreakLoop = false;
    if (bAny && pDone)
        pDone->Set();
}

void LWaveQueue::Drop()
{
    std::lock_guard<std::mutex> lock(mtx);
    for (LWaveHeader* p : queue)
        p->ClearFlags(kWaveHdrInQueue);
    queue.clear();
    nOffset = 0;
    nCurrent = 0;
    bLoopStarted = false;
}

uint32_t LWaveQueue::Take(uint8_t* pOut, uint32_t nBytes)
{
    std::lock_guard<std::mutex> lock(mtx);
    uint32_t nTaken = 0;
    while (nTaken < nBytes && nCurrent < queue.size()) {
        LWaveHeader* p = queue[nCurrent];
        if (!bLoopStarted && nCurrent == 0 && (p->dwFlags.load() & kWaveHdrBeginLoop)) {
            bLoopStarted = true;
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
    return nTaken;
}

// Called with the lock held when the current buffer has run out. False when playing must wait
// for the rest of an unfinished loop to be queued.
bool LWaveQueue::EndOfBuffer(LWaveHeader* p)
{
    nOffset = 0;
    if (!bLoopStarted) {
        ReturnFront();
        return true;
    }
    if (!(p->dwFlags.load() & kWaveHdrEndLoop)) {
        ++nCurrent;
        return nCurrent < queue.size();
    }
    // A pass without a byte in it would spin forever.
    if (nLoopsLeft > 1 && !bBreakLoop && nPassBytes > 0) {
        --nLoopsLeft;
        nPassBytes = 0;
        nCurrent = 0;
        return true;
    }
    const size_t nLoopBuffers = nCurrent + 1;
    for (size_t i = 0; i < nLoopBuffers; ++i)
        ReturnFront();
    bBreakLoop = false;
    return true;
}

void LWaveQueue::BreakLoop()
{
    std::lock_guard<std::mutex> lock(mtx);
    if (bLoopStarted)
        bBreakLoop = true;
}

uint32_t LWaveQueue::BytesToNextReturn()
{
    std::lock_guard<std::mutex> lock(mtx);
    if (nCurrent >= queue.size())
        return 0;
    const uint32_t nLength = queue[nCurrent]->nBufferLength;
    return nLength > nOffset ? nLength - nOffset : 0;
}

uint32_t LWaveQueue::Put(const uint8_t* pIn, uint32_t nBytes)
{
    std::lock_guard<std::mutex> lock(mtx);
    uint32_t nStored = 0;
    while (nStored < nBytes && !queue.empty()) {
        LWaveHeader* p = queue.front();
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
    return nStored;
}

void LWaveQueue::ReturnPartial()
{
    std::lock_guard<std::mutex> lock(mtx);
    if (!queue.empty() && nOffset > 0)
        ReturnFront();
}

// The buffers queued on one device, in order. Both backends keep their queue here and differ
// only in what drives it: a clock thread or a sound-server callback.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>

#include "devices/LWaveDevice.h"

class LSignalObject;

class LWaveQueue
{
public:
    explicit LWaveQueue(LSignalObject* pDone) : pDone(pDone) {}
    LWaveQueue(const LWaveQueue&) = delete;
    LWaveQueue& operator=(const LWaveQueue&) = delete;

    void Add(LWaveHeader& hdr);
    bool IsQueued(const LWaveHeader& hdr);
    bool IsEmpty();
    // Every queued buffer comes back done; a recording keeps what it holds.
    void Reset();
    // Drops the queue without handing anything back (the device is closing).
    void Drop();

    // Playing: copies up to nBytes of queued audio into pOut (null: nowhere) and hands back
    // each buffer that runs out, looping where the flags say. A loop runs from the buffer
    // flagged begin-loop (whose loop count it takes) to the one flagged end-loop, possibly the
    // same; its buffers come back together once its last pass ends. Returns the bytes taken.
    uint32_t Take(uint8_t* pOut, uint32_t nBytes);
    void BreakLoop();
    // Bytes left before the buffer playing now (or its current loop pass) runs out; 0 when empty.
    uint32_t BytesToNextReturn();

    // Recording: stores nBytes (pIn null: silence) into queued buffers, handing back each that
    // fills. Returns the bytes stored; the rest found no buffer.
    uint32_t Put(const uint8_t* pIn, uint32_t nBytes);
    // The partly filled front buffer comes back with what it holds.
    void ReturnPartial();

private:
    void ReturnFront();
    bool EndOfBuffer(LWaveHeader* p);

    std::mutex mtx;
    std::deque<LWaveHeader*> queue;
    uint32_t nOffset = 0; // bytes of the current buffer already played or filled
    size_t nCurrent = 0;  // the buffer playing: beyond the front only inside a loop
    uint32_t nLoopsLeft = 0;
    uint64_t nPassBytes = 0; // bytes played in the loop's current pass
    bool bLoopStarted = false;
    bool bBreakLoop = false;
    LSignalObject* pDone;
};

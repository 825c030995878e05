// The buffers queued on one device, in order. Both backends keep their queue here and differ
// only in what drives it: a clock thread or a sound-server callback.
//
// The side that plays or records (the callback) never takes a lock and never waits: buffers
// come to it through a single-producer single-consumer ring, and it hands them back by setting
// their done flags and a lock-free signal. The other operations (Add, Reset, Drop, BreakLoop,
// ReturnPartial) come from the player's or recorder's threads; those that change what the
// callback works on shut it out for their few steps instead, and a callback arriving then
// moves nothing (a reset throws the audio away anyway).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "devices/LWaveDevice.h"

class LSignalObject;

class LWaveQueue
{
public:
    static constexpr uint32_t kCapacity = 256; // more than any player or recorder queues

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
    // Bytes left before the buffer playing now (or its current loop pass) runs out; 0 when
    // empty. For the playing side.
    uint32_t BytesToNextReturn();

    // Recording: stores nBytes (pIn null: silence) into queued buffers, handing back each that
    // fills. Returns the bytes stored; the rest found no buffer.
    uint32_t Put(const uint8_t* pIn, uint32_t nBytes);
    // The partly filled front buffer comes back with what it holds.
    void ReturnPartial();

private:
    // Keeps the callback out while the other side changes its state; nests with nothing.
    class ShutOut
    {
    public:
        explicit ShutOut(LWaveQueue& q);
        ~ShutOut();

    private:
        LWaveQueue& q;
        std::lock_guard<std::mutex> lock;
    };
    // The callback's way in: false when it is shut out.
    bool Enter();
    void Leave() { bInCallback.store(false); }

    uint32_t Queued() const { return nTail.load(std::memory_order_acquire) - nHead.load(std::memory_order_relaxed); }
    LWaveHeader* At(uint32_t n) const { return ring[(nHead.load(std::memory_order_relaxed) + n) % kCapacity]; }
    void ReturnFront();
    bool EndOfBuffer(LWaveHeader* p);
    void ClearState();

    std::array<LWaveHeader*, kCapacity> ring{};
    std::atomic<uint32_t> nHead{0}; // advanced by the callback (or with it shut out)
    std::atomic<uint32_t> nTail{0}; // advanced by Add
    std::mutex mtxControl;          // between the non-callback operations only
    std::atomic<bool> bShutOut{false};
    std::atomic<bool> bInCallback{false};
    std::atomic<bool> bBreakLoop{false};

    // The callback's own state.
    uint32_t nOffset = 0; // bytes of the current buffer already played or filled
    uint32_t nCurrent = 0; // the buffer playing: beyond the front only inside a loop
    uint32_t nLoopsLeft = 0;
    uint64_t nPassBytes = 0; // bytes played in the loop's current pass
    bool bLoopStarted = false;
    LSignalObject* pDone;
};

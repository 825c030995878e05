// A manual-reset event: stays set until reset. Set takes no lock and never waits, so that an
// audio callback may signal with it.
#pragma once

#include <atomic>
#include <cstdint>

class LSignalObject
{
public:
    LSignalObject() = default;
    LSignalObject(const LSignalObject&) = delete;
    LSignalObject& operator=(const LSignalObject&) = delete;

    void Set();
    void Reset();
    bool IsSet() const; // the zero-time test

    // Waits up to nTimeoutMs (negative: no limit); true when set.
    bool Wait(int32_t nTimeoutMs) const;

    enum WaitResult
    {
        WaitThis = 0,
        WaitOther = 1,
        WaitTimeout = -1,
    };
    // Waits until this or the other is set, or the timeout passes (negative: no limit).
    WaitResult WaitSignalDual(const LSignalObject& other, int32_t nTimeoutMs) const;

private:
    std::atomic<bool> bSet{false};
};

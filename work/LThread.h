// A worker thread object. The body tests the stop signal regularly and returns when it is set.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "work/LSignalObject.h"

class LThread
{
public:
    enum Priority
    {
        PriorityIdle = -15,
        PriorityLowest = -2,
        PriorityBelowNormal = -1,
        PriorityNormal = 0,
        PriorityAboveNormal = 1,
        PriorityHighest = 2,
        PriorityTimeCritical = 15,
    };

    LThread() = default;
    // "LThread - it is forbidden to create copies of thread"
    LThread(const LThread&) = delete;
    LThread& operator=(const LThread&) = delete;
    virtual ~LThread();

    bool IsRunning() const;
    void Start(int nPriority = PriorityNormal);
    // Sets the stop signal and waits up to the timeout; a body that ignores the signal past it
    // is reported and then still waited for: ending a thread from outside would corrupt the
    // state it holds.
    void StopThreadTimed(int32_t nTimeoutMs);

protected:
    virtual void Body() = 0;
    bool IsStopRequested() const { return sigStop.IsSet(); }
    LSignalObject sigStop;

private:
    void Entry();

    std::thread hThread;
    std::atomic<bool> bRunning{false};
    std::atomic<bool> bFinished{false};
    int nPriority = PriorityNormal;
};

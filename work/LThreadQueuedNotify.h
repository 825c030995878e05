// Lets any thread have code run on the user-interface thread. Notify() posts one wake-up;
// wake-ups may merge, so the handler must not count them.
//
// Where the wake-up goes is a seam: the editor installs a poster that hands it to its event
// loop; tests and the command-line tool use the built-in queue that their main thread drains
// with DrainQueue().
#pragma once

#include <atomic>
#include <cstdint>

class LNotifyPoster
{
public:
    virtual ~LNotifyPoster() = default;
    // Called from any thread; must arrange for LThreadQueuedNotify::Deliver(nId) on the UI thread.
    virtual void Post(uint64_t nId) = 0;
};

class LThreadQueuedNotify
{
public:
    LThreadQueuedNotify();
    LThreadQueuedNotify(const LThreadQueuedNotify&) = delete;
    LThreadQueuedNotify& operator=(const LThreadQueuedNotify&) = delete;
    virtual ~LThreadQueuedNotify();

    void Notify();

    // The poster is not owned; null restores the built-in queue.
    static void SetPoster(LNotifyPoster* pPoster);
    // Runs the handler of the object with this id, if it still exists. UI thread only.
    static void Deliver(uint64_t nId);
    // Drains the built-in queue: runs every pending handler. Returns how many ran.
    static int DrainQueue();
    // Waits up to nTimeoutMs for something to arrive in the built-in queue, then drains it.
    static int WaitAndDrainQueue(int32_t nTimeoutMs);

protected:
    virtual void OnNotify() = 0;

private:
    uint64_t nId;
    std::atomic<bool> bPending{false};
};

// Reports a fraction 0..1 to a notification target without flooding it: a change below
// 0.04 from the last posted value posts nothing.
class LProgressNotifier
{
public:
    explicit LProgressNotifier(LThreadQueuedNotify* pTarget = nullptr) : pTarget(pTarget) {}
    void Update(double fValue);
    double GetLastPosted() const { return fLast.load(); }

private:
    LThreadQueuedNotify* pTarget;
    std::atomic<double> fLast{0.0};
};

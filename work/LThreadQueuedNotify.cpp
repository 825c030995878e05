#include "work/LThreadQueuedNotify.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <unordered_map>

#include "core/LTrace.h"

namespace {
struct Registry
{
    std::mutex mtx;
    std::unordered_map<uint64_t, LThreadQueuedNotify*> mapLive;
    uint64_t nNextId = 1;
    std::atomic<LNotifyPoster*> pPoster{nullptr};
    // The built-in queue.
    std::condition_variable cvQueue;
    std::deque<uint64_t> queue;
};

Registry& Reg()
{
    static Registry reg;
    return reg;
}
} // namespace

LThreadQueuedNotify::LThreadQueuedNotify()
{
    Registry& r = Reg();
    std::lock_guard<std::mutex> lock(r.mtx);
    nId = r.nNextId++;
    r.mapLive[nId] = this;
    LTRACE("LThreadQueuedNotify::LThreadQueuedNotify()");
}

LThreadQueuedNotify::~LThreadQueuedNotify()
{
    Registry& r = Reg();
    std::lock_guard<std::mutex> lock(r.mtx);
    r.mapLive.erase(nId);
    LTRACE("LThreadQueuedNotify::~LThreadQueuedNotify()");
}

void LThreadQueuedNotify::Notify()
{
    // One wake-up in flight is enough; the handler reads the current state, not a count.
    if (bPending.exchange(true))
        return;
    Registry& r = Reg();
    if (LNotifyPoster* p = r.pPoster.load()) {
        p->Post(nId);
        return;
    }
    {
        std::lock_guard<std::mutex> lock(r.mtx);
        r.queue.push_back(nId);
    }
    r.cvQueue.notify_all();
}

void LThreadQueuedNotify::SetPoster(LNotifyPoster* pPoster)
{
    Reg().pPoster.store(pPoster);
}

void LThreadQueuedNotify::Deliver(uint64_t nId)
{
    Registry& r = Reg();
    LThreadQueuedNotify* pObj = nullptr;
    {
        std::lock_guard<std::mutex> lock(r.mtx);
        auto it = r.mapLive.find(nId);
        if (it == r.mapLive.end())
            return;
        pObj = it->second;
    }
    // Cleared before the handler runs, so a Notify during the handler posts again.
    pObj->bPending = false;
    pObj->OnNotify();
}

int LThreadQueuedNotify::DrainQueue()
{
    Registry& r = Reg();
    std::deque<uint64_t> pending;
    {
        std::lock_guard<std::mutex> lock(r.mtx);
        pending.swap(r.queue);
    }
    for (uint64_t n : pending)
        Deliver(n);
    return static_cast<int>(pending.size());
}

int LThreadQueuedNotify::WaitAndDrainQueue(int32_t nTimeoutMs)
{
    Registry& r = Reg();
    {
        std::unique_lock<std::mutex> lock(r.mtx);
        r.cvQueue.wait_for(lock, std::chrono::milliseconds(nTimeoutMs), [&r] { return !r.queue.empty(); });
    }
    return DrainQueue();
}

void LProgressNotifier::Update(double fValue)
{
    // The step is meant in hundredths as written, so 0.46 to 0.50 counts as a full 0.04
    // although its binary difference falls a hair short.
    constexpr double kStep = 0.04 - 1e-9;
    double fPrev = fLast.load();
    if (fValue - fPrev < kStep && fPrev - fValue < kStep)
        return;
    fLast = fValue;
    if (pTarget)
        pTarget->Notify();
}

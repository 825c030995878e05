#include "work/LSignalObject.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {
// Every signal shares one lock and one condition: a wait for two signals at once is then a
// plain predicate, and the few signals in the program make the shared wake-ups cheap.
std::mutex& SignalMutex()
{
    static std::mutex mtx;
    return mtx;
}
std::condition_variable& SignalCondition()
{
    static std::condition_variable cv;
    return cv;
}

template <class Pred> bool WaitFor(std::unique_lock<std::mutex>& lock, int32_t nTimeoutMs, Pred pred)
{
    if (nTimeoutMs < 0) {
        SignalCondition().wait(lock, pred);
        return true;
    }
    return SignalCondition().wait_for(lock, std::chrono::milliseconds(nTimeoutMs), pred);
}
} // namespace

void LSignalObject::Set()
{
    {
        std::lock_guard<std::mutex> lock(SignalMutex());
        bSet = true;
    }
    SignalCondition().notify_all();
}

void LSignalObject::Reset()
{
    std::lock_guard<std::mutex> lock(SignalMutex());
    bSet = false;
}

bool LSignalObject::IsSet() const
{
    std::lock_guard<std::mutex> lock(SignalMutex());
    return bSet;
}

bool LSignalObject::Wait(int32_t nTimeoutMs) const
{
    std::unique_lock<std::mutex> lock(SignalMutex());
    return WaitFor(lock, nTimeoutMs, [this] { return bSet; });
}

LSignalObject::WaitResult LSignalObject::WaitSignalDual(const LSignalObject& other, int32_t nTimeoutMs) const
{
    std::unique_lock<std::mutex> lock(SignalMutex());
    if (!WaitFor(lock, nTimeoutMs, [this, &other] { return bSet || other.bSet; }))
        return WaitTimeout;
    return bSet ? WaitThis : WaitOther;
}

#include "work/LSignalObject.h"

#include <chrono>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
// Every signal shares one generation count, which each Set advances after storing its flag. A
// waiter reads the generation, tests its signals, and sleeps until the generation moves on
// (the kernel refuses to sleep when it already has), so a Set between the test and the sleep
// is never missed. Set takes no lock: it wakes the sleepers only when there are any.
std::atomic<uint32_t> g_nGeneration{0};
std::atomic<int> g_nWaiters{0};
static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t) && std::atomic<uint32_t>::is_always_lock_free);

uint32_t* GenerationWord()
{
    return reinterpret_cast<uint32_t*>(&g_nGeneration);
}

void SleepUnlessMoved(uint32_t nSeen, const timespec* pTimeout)
{
    ::syscall(SYS_futex, GenerationWord(), FUTEX_WAIT_PRIVATE, nSeen, pTimeout, nullptr, 0);
}

template <class Pred> bool WaitFor(int32_t nTimeoutMs, Pred pred)
{
    if (pred())
        return true;
    if (nTimeoutMs == 0)
        return false;
    ++g_nWaiters;
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(nTimeoutMs);
    bool bDone = false;
    while (true) {
        const uint32_t nSeen = g_nGeneration.load();
        if ((bDone = pred()))
            break;
        if (nTimeoutMs < 0) {
            SleepUnlessMoved(nSeen, nullptr);
            continue;
        }
        const auto tLeft = tEnd - std::chrono::steady_clock::now();
        if (tLeft <= std::chrono::steady_clock::duration::zero())
            break;
        const auto nNs = std::chrono::duration_cast<std::chrono::nanoseconds>(tLeft).count();
        const timespec ts{static_cast<time_t>(nNs / 1000000000), static_cast<long>(nNs % 1000000000)};
        SleepUnlessMoved(nSeen, &ts);
    }
    --g_nWaiters;
    return bDone;
}
} // namespace

void LSignalObject::Set()
{
    bSet.store(true);
    g_nGeneration.fetch_add(1);
    if (g_nWaiters.load() > 0)
        ::syscall(SYS_futex, GenerationWord(), FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

void LSignalObject::Reset()
{
    bSet.store(false);
}

bool LSignalObject::IsSet() const
{
    return bSet.load();
}

bool LSignalObject::Wait(int32_t nTimeoutMs) const
{
    return WaitFor(nTimeoutMs, [this] { return bSet.load(); });
}

LSignalObject::WaitResult LSignalObject::WaitSignalDual(const LSignalObject& other, int32_t nTimeoutMs) const
{
    if (!WaitFor(nTimeoutMs, [this, &other] { return bSet.load() || other.bSet.load(); }))
        return WaitTimeout;
    return bSet.load() ? WaitThis : WaitOther;
}

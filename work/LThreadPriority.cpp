#include "work/LThreadPriority.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/LTrace.h"
#include "work/LThread.h"

namespace {
int NiceFor(int nPriority)
{
    if (nPriority >= LThread::PriorityTimeCritical)
        return -15;
    if (nPriority >= LThread::PriorityHighest)
        return -10;
    if (nPriority >= LThread::PriorityAboveNormal)
        return -5;
    if (nPriority >= LThread::PriorityNormal)
        return 0;
    if (nPriority >= LThread::PriorityBelowNormal)
        return 3;
    if (nPriority >= LThread::PriorityLowest)
        return 6;
    return 19;
}

// A thread lowered by an unprivileged process can never come back up, which would leave a
// player worker starved for good; such processes keep every thread at its first priority.
bool CanRaise()
{
    static const bool b = [] {
        if (::geteuid() == 0)
            return true;
        struct rlimit rl = {};
        return ::getrlimit(RLIMIT_NICE, &rl) == 0 && (rl.rlim_cur == RLIM_INFINITY || rl.rlim_cur >= 20);
    }();
    return b;
}
} // namespace

void LSetCurrentThreadPriority(int nPriority)
{
    if (!CanRaise())
        return;
    const pid_t tid = static_cast<pid_t>(::syscall(SYS_gettid));
    if (::setpriority(PRIO_PROCESS, static_cast<id_t>(tid), NiceFor(nPriority)) != 0)
        LTRACE("LSetCurrentThreadPriority setpriority FAILED");
}

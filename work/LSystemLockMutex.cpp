#include "work/LSystemLockMutex.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/LTrace.h"

std::string LSystemLockMutex::RuntimeFolder()
{
    const char* szRuntime = std::getenv("XDG_RUNTIME_DIR");
    if (szRuntime && *szRuntime)
        return std::string(szRuntime) + "/";
    std::string szTmp = "/tmp/sonitra-" + std::to_string(static_cast<long>(::getuid())) + "/";
    ::mkdir(szTmp.c_str(), 0700);
    return szTmp;
}

LSystemLockMutex::LSystemLockMutex(const std::string& szName)
{
    szPath = RuntimeFolder() + szName + ".lock";
    hLock = ::open(szPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (hLock < 0)
        LTRACE("LSystemLockMutex::LSystemLockMutex CreateMutex FAILED");
}

LSystemLockMutex::~LSystemLockMutex()
{
    Unlock();
    if (hLock >= 0)
        ::close(hLock);
}

void LSystemLockMutex::Lock()
{
    if (hLock < 0)
        return;
    int r;
    do {
        r = ::flock(hLock, LOCK_EX);
    } while (r != 0 && errno == EINTR);
    bLocked = r == 0;
    if (bLocked)
        LTRACE("LSystemLockMutex::Lock() Locked OK");
}

bool LSystemLockMutex::TryLock()
{
    if (hLock < 0)
        return false;
    bLocked = ::flock(hLock, LOCK_EX | LOCK_NB) == 0;
    return bLocked;
}

void LSystemLockMutex::Unlock()
{
    if (!bLocked)
        return;
    if (::flock(hLock, LOCK_UN) != 0)
        LTRACE("LSystemLockMutex::Unlock() FAILED");
    bLocked = false;
}

// A system-wide named mutex, held as an exclusive lock on a lock file in the runtime folder.
#pragma once

#include <string>

class LSystemLockMutex
{
public:
    explicit LSystemLockMutex(const std::string& szName);
    LSystemLockMutex(const LSystemLockMutex&) = delete;
    LSystemLockMutex& operator=(const LSystemLockMutex&) = delete;
    ~LSystemLockMutex();

    bool IsValid() const { return hLock >= 0; }
    void Lock();   // waits without limit
    bool TryLock();
    void Unlock();
    const std::string& GetPath() const { return szPath; }

    // The folder for per-user runtime files (locks, sockets).
    static std::string RuntimeFolder();

private:
    std::string szPath;
    int hLock = -1;
    bool bLocked = false;
};

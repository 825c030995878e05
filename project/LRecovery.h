// Recovery after a crash. While the editor runs it keeps a recovery project of its open
// documents in its own working folder ("recovery.snp", whose references are the folder's own
// segment numbers) and holds a lock on "recovery.lock" there for as long as it lives. A run
// that ends abnormally leaves both behind; the lock dies with the process.
//
// At the next start the editor looks for such folders: one holding a recovery project whose
// lock can be taken belongs to no running editor. Taking the lock claims it, so two editors
// never recover, or sweep, the same session; a running editor's folder is never touched.
#pragma once

#include <string>
#include <vector>

class LRecoveryLock
{
public:
    LRecoveryLock() = default;
    LRecoveryLock(const LRecoveryLock&) = delete;
    LRecoveryLock& operator=(const LRecoveryLock&) = delete;
    ~LRecoveryLock() { Release(); }

    // Takes the lock of the folder without waiting; false when another process holds it.
    bool Take(const std::string& szFolder);
    void Release();
    bool IsHeld() const { return hLock >= 0; }

private:
    int hLock = -1;
};

class LRecovery
{
public:
    static constexpr const char* kProjectName = "recovery.snp";
    static constexpr const char* kLockName = "recovery.lock";

    // Sessions that ended abnormally: folders (with a separator) under the tank's base whose
    // name has the tank's prefix, holding a recovery project, not szOwnFolder, and not locked.
    static std::vector<std::string> FindAbandoned(const std::string& szOwnFolder);
    // Removes a claimed session's folder and everything in it.
    static void Sweep(const std::string& szFolder);
};

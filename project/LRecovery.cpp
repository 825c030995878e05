#include "project/LRecovery.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "core/LTrace.h"

bool LRecoveryLock::Take(const std::string& szFolder)
{
    Release();
    std::string szPath;
    if (!LFile::FilePathCat(szPath, szFolder, LRecovery::kLockName))
        return false;
    hLock = ::open(szPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (hLock < 0) {
        LTRACE("LRecoveryLock::Take cannot open %s", szPath.c_str());
        return false;
    }
    if (::flock(hLock, LOCK_EX | LOCK_NB) != 0) {
        ::close(hLock);
        hLock = -1;
        return false;
    }
    return true;
}

void LRecoveryLock::Release()
{
    if (hLock >= 0) {
        ::flock(hLock, LOCK_UN);
        ::close(hLock);
        hLock = -1;
    }
}

std::vector<std::string> LRecovery::FindAbandoned(const std::string& szOwnFolder)
{
    std::vector<std::string> v;
    const std::string szBase = LAudioCutTank::DefaultBase();
    const std::string szPrefix = LAudioCutTank::FolderPrefix();
    const std::filesystem::path own = std::filesystem::path(szOwnFolder).lexically_normal();
    std::error_code ec;
    for (std::filesystem::directory_iterator it(szBase, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string szName = it->path().filename().string();
        if (szName.compare(0, szPrefix.size(), szPrefix) != 0 || !it->is_directory())
            continue;
        const std::string szFolder = it->path().string() + "/";
        if (std::filesystem::path(szFolder).lexically_normal() == own)
            continue;
        if (!LFile::Exists(szFolder + kProjectName))
            continue;
        // Only a peek: the caller claims it with a lock of its own.
        LRecoveryLock probe;
        if (!probe.Take(szFolder))
            continue;
        v.push_back(szFolder);
    }
    return v;
}

void LRecovery::Sweep(const std::string& szFolder)
{
    std::error_code ec;
    std::filesystem::remove_all(szFolder, ec);
    if (ec)
        LTRACE("LRecovery::Sweep cannot remove %s", szFolder.c_str());
}

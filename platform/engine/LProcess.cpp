#include "platform/engine/LProcess.h"

#include <cerrno>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

#include "core/LTrace.h"

extern char** environ;

namespace {
bool Spawn(const std::vector<std::string>& vArgs, pid_t& pid, std::string* pError, bool* pbMissing)
{
    if (pbMissing)
        *pbMissing = false;
    if (vArgs.empty()) {
        if (pError)
            *pError = "no program named";
        return false;
    }
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    const int nError = posix_spawnp(&pid, vArgv[0], nullptr, nullptr, vArgv.data(), environ);
    if (nError != 0) {
        LTRACE("LProcess::Spawn posix_spawnp %s: %s", vArgs[0].c_str(), std::strerror(nError));
        if (pError)
            *pError = vArgs[0] + ": " + std::strerror(nError);
        if (pbMissing)
            *pbMissing = nError == ENOENT;
        return false;
    }
    return true;
}
} // namespace

bool LProcess::Run(const std::vector<std::string>& vArgs, int* pnExit, std::string* pError, bool* pbMissing)
{
    pid_t pid = 0;
    if (!Spawn(vArgs, pid, pError, pbMissing))
        return false;
    int nStatus = 0;
    while (waitpid(pid, &nStatus, 0) < 0) {
        if (errno != EINTR) {
            if (pError)
                *pError = vArgs[0] + ": " + std::strerror(errno);
            return false;
        }
    }
    if (pnExit)
        *pnExit = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return true;
}

bool LProcess::StartDetached(const std::vector<std::string>& vArgs, std::string* pError)
{
    pid_t pid = 0;
    if (!Spawn(vArgs, pid, pError, nullptr))
        return false;
    std::thread([pid] {
        int nStatus = 0;
        while (waitpid(pid, &nStatus, 0) < 0 && errno == EINTR) {
        }
    }).detach();
    return true;
}

#include "platform/engine/LProcess.h"

#include <cerrno>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

#include "core/LTrace.h"

extern char** environ;

bool LProcess::StartDetached(const std::vector<std::string>& vArgs, std::string* pError)
{
    if (vArgs.empty()) {
        if (pError)
            *pError = "no program named";
        return false;
    }
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    pid_t pid = 0;
    const int nError = posix_spawnp(&pid, vArgv[0], nullptr, nullptr, vArgv.data(), environ);
    if (nError != 0) {
        LTRACE("LProcess::StartDetached posix_spawnp %s: %s", vArgs[0].c_str(), std::strerror(nError));
        if (pError)
            *pError = vArgs[0] + ": " + std::strerror(nError);
        return false;
    }
    std::thread([pid] {
        int nStatus = 0;
        while (waitpid(pid, &nStatus, 0) < 0 && errno == EINTR) {
        }
    }).detach();
    return true;
}

#include "platform/engine/LChildProcess.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/LTrace.h"

extern char** environ;

LChildProcess::~LChildProcess()
{
    if (hOut >= 0)
        ::close(hOut);
    hOut = -1;
    if (nPid > 0)
        Wait();
}

bool LChildProcess::Start(const std::vector<std::string>& vArgs, std::string* pError)
{
    if (vArgs.empty() || nPid > 0) {
        if (pError)
            *pError = "no program named";
        return false;
    }
    int hPipe[2];
    if (::pipe2(hPipe, O_CLOEXEC) != 0) {
        if (pError)
            *pError = std::string("pipe: ") + std::strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, hPipe[1], STDOUT_FILENO);
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    pid_t pid = 0;
    const int nError = posix_spawnp(&pid, vArgv[0], &actions, nullptr, vArgv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(hPipe[1]);
    if (nError != 0) {
        ::close(hPipe[0]);
        LTRACE("LChildProcess::Start posix_spawnp %s: %s", vArgs[0].c_str(), std::strerror(nError));
        if (pError)
            *pError = vArgs[0] + ": " + std::strerror(nError);
        return false;
    }
    nPid = pid;
    hOut = hPipe[0];
    return true;
}

bool LChildProcess::ReadLines(std::vector<std::string>& vLines)
{
    if (hOut < 0)
        return false;
    char buf[4096];
    ssize_t n;
    do {
        n = ::read(hOut, buf, sizeof buf);
    } while (n < 0 && errno == EINTR);
    if (n <= 0) {
        if (!szPartial.empty())
            vLines.push_back(szPartial);
        szPartial.clear();
        ::close(hOut);
        hOut = -1;
        return false;
    }
    szPartial.append(buf, static_cast<size_t>(n));
    size_t nStart = 0;
    for (size_t nEnd; (nEnd = szPartial.find('\n', nStart)) != std::string::npos; nStart = nEnd + 1)
        vLines.push_back(szPartial.substr(nStart, nEnd - nStart));
    szPartial.erase(0, nStart);
    return true;
}

int LChildProcess::Wait()
{
    if (nPid <= 0)
        return -1;
    int nStatus = 0;
    while (::waitpid(nPid, &nStatus, 0) < 0 && errno == EINTR) {
    }
    nPid = -1;
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

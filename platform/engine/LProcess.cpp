#include "platform/engine/LProcess.h"

#include <cerrno>
#include <cstring>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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

bool LProcess::StartWithInput(const std::vector<std::string>& vArgs, int nBufferBytes, int& fdInput, pid_t& pid,
                              std::string* pError)
{
    fdInput = -1;
    pid = 0;
    if (vArgs.empty()) {
        if (pError)
            *pError = "no program named";
        return false;
    }
    // A socket rather than a pipe: a write after the child died then fails instead of raising SIGPIPE.
    int sv[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sv) != 0) {
        LTRACE("LProcess::StartWithInput socketpair: %s", std::strerror(errno));
        if (pError)
            *pError = std::string("cannot create the connection: ") + std::strerror(errno);
        return false;
    }
    ::setsockopt(sv[0], SOL_SOCKET, SO_SNDBUF, &nBufferBytes, sizeof(nBufferBytes));
    ::shutdown(sv[1], SHUT_WR);
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, sv[1], 0);
    const int nError = posix_spawn(&pid, vArgv[0], &actions, nullptr, vArgv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(sv[1]);
    if (nError != 0) {
        LTRACE("LProcess::StartWithInput posix_spawn %s: %s", vArgs[0].c_str(), std::strerror(nError));
        ::close(sv[0]);
        pid = 0;
        if (pError)
            *pError = vArgs[0] + ": " + std::strerror(nError);
        return false;
    }
    fdInput = sv[0];
    return true;
}

bool LProcess::WriteAll(int fd, const void* pBytes, size_t nBytes)
{
    const char* p = static_cast<const char*>(pBytes);
    while (nBytes > 0) {
        const ssize_t n = ::send(fd, p, nBytes, MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        p += n;
        nBytes -= static_cast<size_t>(n);
    }
    return true;
}

bool LProcess::WaitExit(pid_t pid, int nMillis, int* pExit)
{
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(nMillis);
    for (;;) {
        int nStatus = 0;
        const pid_t r = ::waitpid(pid, &nStatus, WNOHANG);
        if (r == pid || (r < 0 && errno != EINTR)) {
            if (pExit)
                *pExit = r == pid && WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
            return true;
        }
        if (std::chrono::steady_clock::now() >= tEnd)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void LProcess::KillAndReap(pid_t pid)
{
    if (pid <= 0)
        return;
    ::kill(pid, SIGKILL);
    int nStatus = 0;
    while (::waitpid(pid, &nStatus, 0) < 0 && errno == EINTR) {
    }
}

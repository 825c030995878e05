#include "platform/engine/LChildProcess.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "core/LFile.h"
#include "core/LTempFolder.h"
#include "core/LTrace.h"

extern char** environ;

namespace {

void SetReason(std::string* pError, const std::string& sz)
{
    if (pError)
        *pError = sz;
}

// The environment the child gets: ours, with TMPDIR pointing at a folder it can write when ours
// names one that is missing or read-only (a child would fail on it as we would).
class LChildEnvironment
{
public:
    LChildEnvironment()
    {
        const char* szTmp = std::getenv("TMPDIR");
        const std::string szUsable = LTempFolder::Path();
        if (!szTmp || szUsable == szTmp)
            return;
        for (char** p = environ; *p; ++p)
            if (std::strncmp(*p, "TMPDIR=", 7) != 0)
                vVars.push_back(*p);
        vVars.push_back("TMPDIR=" + szUsable);
        for (std::string& sz : vVars)
            vPointers.push_back(sz.data());
        vPointers.push_back(nullptr);
    }
    char** Get() { return vPointers.empty() ? environ : vPointers.data(); }

private:
    std::vector<std::string> vVars;
    std::vector<char*> vPointers;
};

// A write to a child that went away must fail with EPIPE, not end this program.
void IgnoreSigPipe()
{
    static const bool bDone = [] {
        std::signal(SIGPIPE, SIG_IGN);
        return true;
    }();
    (void)bDone;
}

void CloseFds(std::initializer_list<int> fds)
{
    for (int fd : fds)
        if (fd >= 0)
            ::close(fd);
}

// The pipes nPipes asks for, closed on exec; false, with the reason, after closing what was made.
bool MakePipes(int nPipes, int (&inPipe)[2], int (&outPipe)[2], std::string* pError)
{
    if (((nPipes & LChildProcess::PipeIn) && ::pipe2(inPipe, O_CLOEXEC) != 0) ||
        ((nPipes & LChildProcess::PipeOut) && ::pipe2(outPipe, O_CLOEXEC) != 0)) {
        SetReason(pError, std::string("cannot make a pipe: ") + std::strerror(errno));
        CloseFds({inPipe[0], inPipe[1], outPipe[0], outPipe[1]});
        return false;
    }
    return true;
}

// The file for the child's messages, made here, new and ours, before the child can write to it;
// it replaces the last one. -1, with the reason, when it cannot be made.
int CreateErrorFile(std::string& szErrorFile, std::string* pError)
{
    if (!szErrorFile.empty())
        ::unlink(szErrorFile.c_str());
    std::string szWhy;
    const int fdError = LTempFolder::CreateFile("sonitra-child-", ".err", szErrorFile, &szWhy);
    if (fdError < 0)
        SetReason(pError, szWhy);
    return fdError;
}

// Standard input from the pipe's read end or /dev/null, standard output to the pipe's write end
// or /dev/null, standard error to the messages file.
void AddStandardStreams(posix_spawn_file_actions_t& actions, int nPipes, int fdInRead, int fdOutWrite, int fdError)
{
    if (nPipes & LChildProcess::PipeIn)
        posix_spawn_file_actions_adddup2(&actions, fdInRead, 0);
    else
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (nPipes & LChildProcess::PipeOut)
        posix_spawn_file_actions_adddup2(&actions, fdOutWrite, 1);
    else
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fdError, 2);
}

// Spawns vArgs[0], looked up on the path, with its standard streams set up; posix_spawnp's result.
int SpawnChild(pid_t& pid, const std::vector<std::string>& vArgs, int nPipes, int fdInRead, int fdOutWrite,
               int fdError)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    AddStandardStreams(actions, nPipes, fdInRead, fdOutWrite, fdError);
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    LChildEnvironment env;
    const int nError = posix_spawnp(&pid, vArgv[0], &actions, nullptr, vArgv.data(), env.Get());
    posix_spawn_file_actions_destroy(&actions);
    return nError;
}

} // namespace

LChildProcess::~LChildProcess()
{
    if (IsRunning())
        Kill();
    CloseFd(fdIn);
    CloseFd(fdOut);
    if (!szErrorFile.empty())
        ::unlink(szErrorFile.c_str());
}

void LChildProcess::CloseFd(int& fd)
{
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

bool LChildProcess::Start(const std::vector<std::string>& vArgs, int nPipes, std::string* pError)
{
    if (IsRunning()) {
        SetReason(pError, "already running");
        return false;
    }
    if (vArgs.empty() || vArgs[0].empty()) {
        SetReason(pError, "no program named");
        return false;
    }
    IgnoreSigPipe();
    bMissing = false;
    int inPipe[2] = {-1, -1};
    int outPipe[2] = {-1, -1};
    if (!MakePipes(nPipes, inPipe, outPipe, pError))
        return false;
    const int fdError = CreateErrorFile(szErrorFile, pError);
    if (fdError < 0) {
        CloseFds({inPipe[0], inPipe[1], outPipe[0], outPipe[1]});
        return false;
    }
    const int nError = SpawnChild(pid, vArgs, nPipes, inPipe[0], outPipe[1], fdError);
    // The child's ends are its own now.
    CloseFds({inPipe[0], outPipe[1], fdError});
    if (nError != 0) {
        LTRACE("LChildProcess::Start posix_spawnp %s: %s", vArgs[0].c_str(), std::strerror(nError));
        pid = -1;
        bMissing = nError == ENOENT;
        CloseFds({inPipe[1], outPipe[0]});
        SetReason(pError, vArgs[0] + ": " + std::strerror(nError));
        return false;
    }
    fdIn = inPipe[1];
    fdOut = outPipe[0];
    nExitCode = -1;
    return true;
}

bool LChildProcess::StartDetached(const std::vector<std::string>& vArgs, std::string* pError)
{
    auto pChild = std::make_unique<LChildProcess>();
    if (!pChild->Start(vArgs, 0, pError))
        return false;
    std::thread([pOwned = std::move(pChild)] { pOwned->Wait(-1); }).detach();
    return true;
}

bool LChildProcess::Run(const std::vector<std::string>& vArgs, int* pnExit, std::string* pError, bool* pbMissing)
{
    LChildProcess child;
    const bool bStarted = child.Start(vArgs, 0, pError);
    if (pbMissing)
        *pbMissing = child.IsMissing();
    if (!bStarted)
        return false;
    child.Wait(-1);
    if (pnExit)
        *pnExit = child.GetExitCode();
    return true;
}

int64_t LChildProcess::Read(void* pBuffer, size_t nBytes, int nTimeoutMs)
{
    if (fdOut < 0)
        return ReadFailed;
    pollfd pfd{fdOut, POLLIN, 0};
    int nReady;
    while ((nReady = ::poll(&pfd, 1, nTimeoutMs)) < 0 && errno == EINTR) {
    }
    if (nReady == 0)
        return ReadTimeout;
    if (nReady < 0)
        return ReadFailed;
    ssize_t n;
    while ((n = ::read(fdOut, pBuffer, nBytes)) < 0 && errno == EINTR) {
    }
    return n < 0 ? ReadFailed : n;
}

size_t LChildProcess::ReadFull(void* pBuffer, size_t nBytes, int nTimeoutMs)
{
    size_t nDone = 0;
    while (nDone < nBytes) {
        const int64_t n = Read(static_cast<char*>(pBuffer) + nDone, nBytes - nDone, nTimeoutMs);
        if (n <= 0)
            break;
        nDone += static_cast<size_t>(n);
    }
    return nDone;
}

bool LChildProcess::ReadLines(std::vector<std::string>& vLines)
{
    char buf[4096];
    const int64_t n = Read(buf, sizeof(buf), -1);
    if (n <= 0) {
        if (!szPartLine.empty())
            vLines.push_back(szPartLine);
        szPartLine.clear();
        CloseFd(fdOut);
        return false;
    }
    szPartLine.append(buf, static_cast<size_t>(n));
    size_t nStart = 0;
    for (size_t nEnd; (nEnd = szPartLine.find('\n', nStart)) != std::string::npos; nStart = nEnd + 1)
        vLines.push_back(szPartLine.substr(nStart, nEnd - nStart));
    szPartLine.erase(0, nStart);
    return true;
}

bool LChildProcess::Write(const void* pBuffer, size_t nBytes)
{
    if (nBytes == 0)
        return true;
    const char* p = static_cast<const char*>(pBuffer);
    // A test's injected fault cuts what an encoder gets as it would cut a file of ours.
    size_t nLeft = static_cast<size_t>(LFile::FaultAllows(static_cast<int64_t>(nBytes)));
    const bool bCut = nLeft < nBytes;
    while (nLeft > 0 && fdIn >= 0) {
        const ssize_t n = ::write(fdIn, p, nLeft);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            LTRACE("LChildProcess::Write %s", std::strerror(errno));
            return false;
        }
        p += n;
        nLeft -= static_cast<size_t>(n);
    }
    return nLeft == 0 && !bCut;
}

void LChildProcess::CloseInput()
{
    CloseFd(fdIn);
}

bool LChildProcess::Reap(bool bBlock)
{
    if (pid <= 0)
        return true;
    int nStatus = 0;
    pid_t r;
    while ((r = ::waitpid(pid, &nStatus, bBlock ? 0 : WNOHANG)) < 0 && errno == EINTR) {
    }
    if (r == 0)
        return false;
    nExitCode = r > 0 && WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    pid = -1;
    return true;
}

bool LChildProcess::Wait(int nTimeoutMs)
{
    if (nTimeoutMs < 0)
        return Reap(true);
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(nTimeoutMs);
    while (!Reap(false)) {
        if (std::chrono::steady_clock::now() >= tEnd)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

void LChildProcess::Kill()
{
    if (pid <= 0)
        return;
    ::kill(pid, SIGKILL);
    Reap(true);
    nExitCode = -1;
}

std::string LChildProcess::GetLastErrorLine() const
{
    FILE* f = szErrorFile.empty() ? nullptr : std::fopen(szErrorFile.c_str(), "rb");
    if (!f)
        return std::string();
    // The tail is enough: the last line is what tells why a tool gave up.
    std::fseek(f, 0, SEEK_END);
    const long nSize = std::ftell(f);
    const long nTail = nSize > 4096 ? 4096 : nSize;
    std::fseek(f, nSize - nTail, SEEK_SET);
    std::string sz(static_cast<size_t>(nTail < 0 ? 0 : nTail), '\0');
    sz.resize(std::fread(sz.data(), 1, sz.size(), f));
    std::fclose(f);
    for (char& c : sz)
        if (c == '\r')
            c = '\n';
    while (!sz.empty() && (sz.back() == '\n' || sz.back() == ' '))
        sz.pop_back();
    const size_t nLine = sz.find_last_of('\n');
    return nLine == std::string::npos ? sz : sz.substr(nLine + 1);
}

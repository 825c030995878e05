// Starting other programs: always an argument vector, never a shell, so that no file name or
// setting is ever read as shell syntax.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

class LProcess
{
public:
    // Starts vArgs[0] (looked up on PATH) with the rest as its arguments and returns at once;
    // the child is reaped in the background. False, with a reason, when it cannot be started.
    static bool StartDetached(const std::vector<std::string>& vArgs, std::string* pError = nullptr);

    // Starts vArgs[0] (a full path) with its standard input connected to the returned descriptor,
    // which the child does not inherit; nBufferBytes sizes the connection. The caller owns the
    // descriptor and the child (WaitExit or KillAndReap).
    static bool StartWithInput(const std::vector<std::string>& vArgs, int nBufferBytes, int& fdInput, pid_t& pid,
                               std::string* pError = nullptr);
    // Writes all bytes, blocking while the child is behind; false once the child stopped reading
    // (no signal is raised).
    static bool WriteAll(int fd, const void* pBytes, size_t nBytes);
    // True when the child ended within nMillis (it is then reaped); *pExit gets its exit status,
    // or -1 when it did not exit normally.
    static bool WaitExit(pid_t pid, int nMillis, int* pExit = nullptr);
    static void KillAndReap(pid_t pid);
    // Starts vArgs[0] the same way and waits for it to end. False, with a reason, when it cannot
    // be started (*pbMissing tells a program that is not installed); otherwise true with its exit
    // status in *pnExit (-1 when a signal ended it).
    static bool Run(const std::vector<std::string>& vArgs, int* pnExit, std::string* pError = nullptr,
                    bool* pbMissing = nullptr);
};

// Another program run as a child with pipes to its standard input and output: an external
// decoder or encoder, a speech synthesiser. Always an argument vector, never a shell. Its
// standard error goes to a file, so a chatty child can never block on a full pipe, and its last
// line is kept for the message the user sees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

class LChildProcess
{
public:
    enum
    {
        PipeIn = 1,  // we write its standard input
        PipeOut = 2, // we read its standard output
    };
    enum ReadResult : int64_t
    {
        ReadEnd = 0,      // the child closed its output
        ReadTimeout = -1, // nothing came within the time given
        ReadFailed = -2,
    };

    LChildProcess() = default;
    LChildProcess(const LChildProcess&) = delete;
    LChildProcess& operator=(const LChildProcess&) = delete;
    // A child still running is killed and reaped: none is ever left behind.
    ~LChildProcess();

    // Starts vArgs[0] (an absolute path, or looked up on PATH) with the rest as its arguments.
    // Pipes not asked for are connected to /dev/null. False, with a reason, when it cannot start.
    bool Start(const std::vector<std::string>& vArgs, int nPipes, std::string* pError = nullptr);
    // After a failed Start: whether the program is not installed.
    bool IsMissing() const { return bMissing; }

    // Starts a program that goes on on its own (a mail program, a mixer); it is reaped in the
    // background. False, with a reason, when it cannot start.
    static bool StartDetached(const std::vector<std::string>& vArgs, std::string* pError = nullptr);
    // Starts a program and waits for it to end: false, with a reason, when it cannot start
    // (*pbMissing tells one that is not installed); else true with its exit code in *pnExit
    // (-1 when a signal ended it).
    static bool Run(const std::vector<std::string>& vArgs, int* pnExit, std::string* pError = nullptr,
                    bool* pbMissing = nullptr);

    // Up to nBytes of its output, waiting at most nTimeoutMs (-1: as long as it takes).
    int64_t Read(void* pBuffer, size_t nBytes, int nTimeoutMs);
    // Reads until nBytes came, the output ended, or nothing came for nTimeoutMs; the count read.
    size_t ReadFull(void* pBuffer, size_t nBytes, int nTimeoutMs = -1);
    // Reads what is available (waiting until some output comes) and moves the complete lines into
    // vLines; the last part line comes when the output ends. False once it has ended.
    bool ReadLines(std::vector<std::string>& vLines);
    // The read end of its output, for poll(); -1 when there is none.
    int GetOutputFd() const { return fdOut; }
    // All of nBytes to its input; false when the child stopped taking it.
    bool Write(const void* pBuffer, size_t nBytes);
    void CloseInput();

    // Waits at most nTimeoutMs for the child to end (-1: no limit). True when it has ended.
    bool Wait(int nTimeoutMs);
    // Ends the child at once (SIGKILL) and reaps it.
    void Kill();
    bool IsRunning() const { return pid > 0; }
    // 0..255 once ended normally; -1 while running or when killed by a signal.
    int GetExitCode() const { return nExitCode; }
    // The last non-empty line the child wrote to its standard error.
    std::string GetLastErrorLine() const;

private:
    bool Reap(bool bBlock);
    void CloseFd(int& fd);

    pid_t pid = -1;
    int fdIn = -1;
    int fdOut = -1;
    int nExitCode = -1;
    bool bMissing = false;
    std::string szErrorFile;
    std::string szPartLine;
};

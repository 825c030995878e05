// A program started with an argument vector (never a shell) whose standard output comes back
// through a pipe, read line by line, and whose exit status is collected.
#pragma once

#include <string>
#include <vector>

class LChildProcess
{
public:
    LChildProcess() = default;
    LChildProcess(const LChildProcess&) = delete;
    LChildProcess& operator=(const LChildProcess&) = delete;
    // Waits for a child still running.
    ~LChildProcess();

    // Starts vArgs[0] (a path, or looked up on PATH). False, with a reason, when it cannot.
    bool Start(const std::vector<std::string>& vArgs, std::string* pError = nullptr);
    // The read end of the output pipe, for poll(); -1 once the output has ended.
    int GetOutputFd() const { return hOut; }
    // Reads what is available (blocks at most until some output comes) and moves complete lines
    // into vLines. False once the output has ended.
    bool ReadLines(std::vector<std::string>& vLines);
    // Waits for the child to end; its exit status, or -1 when it died by a signal.
    int Wait();

private:
    int nPid = -1;
    int hOut = -1;
    std::string szPartial;
};

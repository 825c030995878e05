// Starting other programs: always an argument vector, never a shell, so that no file name or
// setting is ever read as shell syntax.
#pragma once

#include <string>
#include <vector>

class LProcess
{
public:
    // Starts vArgs[0] (looked up on PATH) with the rest as its arguments and returns at once;
    // the child is reaped in the background. False, with a reason, when it cannot be started.
    static bool StartDetached(const std::vector<std::string>& vArgs, std::string* pError = nullptr);

    // Starts vArgs[0] the same way and waits for it to end. False, with a reason, when it cannot
    // be started (*pbMissing tells a program that is not installed); otherwise true with its exit
    // status in *pnExit (-1 when a signal ended it).
    static bool Run(const std::vector<std::string>& vArgs, int* pnExit, std::string* pError = nullptr,
                    bool* pbMissing = nullptr);
};

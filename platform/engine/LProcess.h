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
};

// The command-line tool's verbs. Each verb lives in its own file and registers itself with a
// static LCliVerb object, so adding a verb never touches the others.
#pragma once

#include <string>
#include <vector>

struct LCliVerb
{
    using RunFn = int (*)(const std::vector<std::string>& vArgs);
    LCliVerb(const char* szName, const char* szSummary, const char* szUsage, RunFn pfnRun);

    const char* szName;
    const char* szSummary; // one line for the tool's --help
    const char* szUsage;   // the verb's --help text
    RunFn pfnRun;

    static const std::vector<const LCliVerb*>& All();
};

// Exit codes shared by every verb: those of the processes, and 64 for wrong usage.
enum LCliExit
{
    CliDone = 0,
    CliCancelled = 1,
    CliError = 2,
    CliUsage = 64,
};

// "sonitra-cli: <message>" on stderr.
void LCliError(const std::string& szMessage);

// A test with a folder of its own that runs sonitra-cli with its settings and working files kept
// in that folder.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/TestSupport.h"

namespace testsupport {

class CliTest : public ::testing::Test
{
protected:
    // The exit status; output and errors together in szLog and, if asked, in *pOut.
    int Cli(const std::string& szArgs, std::string* pOut = nullptr)
    {
        const int n = RunCli(szArgs, &szLog, szEnv);
        if (pOut)
            *pOut = szLog;
        return n;
    }
    // The exit status, with standard output and errors kept apart for Out() and Err().
    int CliApart(const std::string& szArgs)
    {
        return RunCommand(szEnv + Quote(SONITRA_CLI_PATH) + " " + szArgs + " >" + Quote(dir.File("out.txt")) +
                          " 2>" + Quote(dir.File("err.txt")) + " </dev/null");
    }
    std::string Out() const { return ReadText(dir.File("out.txt")); }
    std::string Err() const { return ReadText(dir.File("err.txt")); }

    TempDir dir;
    std::string szEnv = PrivateHomes(dir);
    std::string szLog;
};

} // namespace testsupport

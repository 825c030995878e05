// Starting other programs from an argument vector.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/engine/LProcess.h"
#include "support/TestSupport.h"

using namespace testsupport;

TEST(Process, ArgumentsReachTheProgramUnreadByAShell)
{
    TempDir dir;
    const std::string szOut = dir.File("out; rm -rf x $(true)");
    ASSERT_TRUE(LProcess::StartDetached({"sh", "-c", "printf '%s' \"$1\" > \"$2\"", "sh", "a b * $HOME", szOut}));
    std::string szGot;
    for (int i = 0; i < 200 && szGot.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::ifstream f(szOut);
        std::getline(f, szGot);
    }
    EXPECT_EQ(szGot, "a b * $HOME");
}

TEST(Process, MissingProgramsAreReported)
{
    std::string szError;
    EXPECT_FALSE(LProcess::StartDetached({"sonitra-no-such-program"}, &szError));
    EXPECT_NE(szError.find("sonitra-no-such-program"), std::string::npos);
    EXPECT_FALSE(LProcess::StartDetached({}, &szError));
}

// End to end: the built editor under a virtual X server takes the files of twenty further
// starts in a row, some of them slow to load, and keeps running.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

#include "support/TestSupport.h"

using testsupport::HaveTool;
using testsupport::RunCommand;
using testsupport::TempDir;

namespace {

std::string Quote(const std::string& s)
{
    return "'" + s + "'";
}

std::string ReadText(const std::string& szPath)
{
    std::ifstream f(szPath);
    std::stringstream ss;
    ss << f.rdbuf();
    return ss.str();
}

// Polls until the condition holds or the time is up; the machine may be loaded, so the limits
// are generous and only bound a hang.
template <class F> bool WaitFor(F&& fnDone, int nSeconds)
{
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::seconds(nSeconds);
    while (std::chrono::steady_clock::now() < tEnd) {
        if (fnDone())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return fnDone();
}

bool IsRunning(pid_t pid)
{
    if (pid <= 0 || ::kill(pid, 0) != 0)
        return false;
    const std::string szStat = ReadText("/proc/" + std::to_string(pid) + "/stat");
    const size_t nParen = szStat.rfind(')');
    return nParen == std::string::npos || nParen + 2 >= szStat.size() || szStat[nParen + 2] != 'Z';
}

void Stop(pid_t pid)
{
    if (pid <= 0)
        return;
    ::kill(pid, SIGTERM);
    if (!WaitFor([&] { return !IsRunning(pid); }, 10))
        ::kill(pid, SIGKILL);
}

// The editor's recent-file list as its settings file holds it, newest first.
std::vector<std::string> RecentFiles(const std::string& szConf)
{
    std::vector<std::string> v;
    std::istringstream in(ReadText(szConf));
    std::string szLine;
    while (std::getline(in, szLine)) {
        const std::string szKey = "RecentFile%20";
        if (szLine.compare(0, szKey.size(), szKey) != 0)
            continue;
        const size_t nEq = szLine.find('=');
        const size_t nIndex = std::stoul(szLine.substr(szKey.size(), nEq - szKey.size()));
        if (v.size() <= nIndex)
            v.resize(nIndex + 1);
        v[nIndex] = szLine.substr(nEq + 1);
    }
    return v;
}

class EditorUnderX : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!HaveTool("Xvfb") || !HaveTool("timeout"))
            GTEST_SKIP() << "Xvfb is not installed";
        const std::string szDisplayFile = dir.File("display");
        pidX = StartInBackground("Xvfb -displayfd 1 -nolisten tcp -screen 0 1024x768x24 > " + Quote(szDisplayFile));
        if (!WaitFor([&] { return ReadText(szDisplayFile).find('\n') != std::string::npos; }, 30))
            GTEST_SKIP() << "the virtual X server did not start";
        szDisplay = ":" + ReadText(szDisplayFile).substr(0, ReadText(szDisplayFile).find('\n'));
        for (const char* szSub : {"config", "cache", "runtime"})
            RunCommand("mkdir -m 700 -p " + Quote(dir.File(szSub)));
    }
    void TearDown() override
    {
        Stop(pidEditor);
        Stop(pidX);
    }

    std::string Env() const
    {
        return "env DISPLAY=" + szDisplay + " XDG_CONFIG_HOME=" + Quote(dir.File("config")) +
               " XDG_CACHE_HOME=" + Quote(dir.File("cache")) + " XDG_RUNTIME_DIR=" + Quote(dir.File("runtime")) +
               " QT_QPA_PLATFORM=xcb ";
    }
    pid_t StartInBackground(const std::string& szCommand)
    {
        std::string szPid;
        RunCommand("(" + szCommand + " </dev/null 2>>" + Quote(dir.File("stderr")) + " & echo $!)", &szPid);
        return static_cast<pid_t>(std::atol(szPid.c_str()));
    }
    std::string MakeWav(int i, int nSeconds)
    {
        const std::string szPath = dir.File("f" + std::to_string(i) + ".wav");
        testsupport::WriteSimpleWav(szPath, 44100, 2, 16, testsupport::Sine16(44100, 2, 44100 * nSeconds, 300 + i));
        return szPath;
    }

    TempDir dir;
    std::string szDisplay;
    pid_t pidX = 0;
    pid_t pidEditor = 0;
};

} // namespace

TEST_F(EditorUnderX, TwentySecondStartsHandOverTheirFilesAndTheFirstKeepsRunning)
{
    std::vector<std::string> vFiles;
    for (int i = 0; i <= 20; ++i)
        vFiles.push_back(MakeWav(i, i % 4 == 1 ? 20 : 1)); // every fourth one slow to load
    const std::string szConf = dir.File("config/Korvane/Sonitra.conf");
    pidEditor = StartInBackground(Env() + Quote(SONITRA_EDITOR_PATH) + " " + Quote(vFiles[0]) + " >/dev/null");
    ASSERT_TRUE(WaitFor([&] { return ::access(dir.File("runtime/SonitraInstance").c_str(), F_OK) == 0; }, 60))
        << ReadText(dir.File("stderr"));
    ASSERT_TRUE(WaitFor([&] { auto v = RecentFiles(szConf); return !v.empty() && v[0] == vFiles[0]; }, 60));

    for (int i = 1; i <= 20; ++i) {
        // Bounded: with no editor left to take the file, a start would become the editor itself.
        const int nExit = RunCommand("timeout 30 " + Env() + Quote(SONITRA_EDITOR_PATH) + " " + Quote(vFiles[i]) +
                                     " >/dev/null 2>>" + Quote(dir.File("stderr")));
        EXPECT_EQ(nExit, 0) << "start " << i << " found no editor to hand its file to";
        ASSERT_TRUE(IsRunning(pidEditor)) << "the first editor died at hand-over " << i << "\n"
                                          << ReadText(dir.File("stderr"));
    }
    // Loaded in the order handed over: the newest eleven head the recent list.
    ASSERT_TRUE(WaitFor([&] { auto v = RecentFiles(szConf); return !v.empty() && v[0] == vFiles[20]; }, 120))
        << ReadText(dir.File("stderr"));
    const std::vector<std::string> vRecent = RecentFiles(szConf);
    ASSERT_EQ(vRecent.size(), 11u);
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(vRecent[i], vFiles[20 - i]);
    EXPECT_TRUE(IsRunning(pidEditor));
}

// Programs run as children, with pipes or on their own: what goes in and out, how they end, and
// that none is left behind.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "core/LTempFolder.h"
#include "platform/engine/LChildProcess.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

// Whether a process of that id exists at all, a zombie included.
bool ProcessExists(pid_t pid)
{
    return ::kill(pid, 0) == 0 || errno != ESRCH;
}

pid_t ReadPid(const std::string& szPath)
{
    pid_t pid = 0;
    for (int i = 0; i < 500 && pid == 0; ++i) {
        std::ifstream f(szPath);
        f >> pid;
        if (pid == 0)
            ::usleep(10000);
    }
    return pid;
}

} // namespace

TEST(ChildProcess, BytesGoThroughBothPipesAndTheExitCodeAndLastErrorLineAreKept)
{
    LChildProcess child;
    ASSERT_TRUE(child.Start({"sh", "-c", "cat; echo first >&2; echo 'why it failed' >&2; exit 3"},
                            LChildProcess::PipeIn | LChildProcess::PipeOut));
    const std::string szIn = "a b * $HOME\n";
    ASSERT_TRUE(child.Write(szIn.data(), szIn.size()));
    child.CloseInput();
    std::string szOut(64, '\0');
    szOut.resize(child.ReadFull(szOut.data(), szOut.size()));
    EXPECT_EQ(szOut, szIn);
    EXPECT_EQ(child.Read(szOut.data(), 1, 1000), LChildProcess::ReadEnd);
    ASSERT_TRUE(child.Wait(10000));
    EXPECT_EQ(child.GetExitCode(), 3);
    EXPECT_EQ(child.GetLastErrorLine(), "why it failed");
    EXPECT_FALSE(child.IsRunning());
}

TEST(ChildProcess, AQuietChildTimesOutAndAKilledOneIsReaped)
{
    TempDir dir;
    const std::string szPid = dir.File("pid");
    pid_t pid = 0;
    {
        LChildProcess child;
        ASSERT_TRUE(child.Start({"sh", "-c", "echo $$ > \"$1\"; exec sleep 60", "sh", szPid}, LChildProcess::PipeOut));
        pid = ReadPid(szPid);
        ASSERT_GT(pid, 0);
        char c;
        EXPECT_EQ(child.Read(&c, 1, 50), LChildProcess::ReadTimeout);
        EXPECT_FALSE(child.Wait(50));
        EXPECT_TRUE(child.IsRunning());
    } // the destructor kills and reaps it
    EXPECT_FALSE(ProcessExists(pid));
}

TEST(ChildProcess, OutputComesBackLineByLineWithTheLastPartLineAtTheEnd)
{
    LChildProcess child;
    ASSERT_TRUE(child.Start({"printf", "one\\ntwo\\nthree"}, LChildProcess::PipeOut));
    std::vector<std::string> vLines;
    while (child.ReadLines(vLines)) {
    }
    EXPECT_EQ(vLines, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(child.GetOutputFd(), -1);
    ASSERT_TRUE(child.Wait(10000));
    EXPECT_EQ(child.GetExitCode(), 0);
}

TEST(ChildProcess, AChildThatStopsReadingFailsTheWriteWithoutEndingUs)
{
    LChildProcess child;
    ASSERT_TRUE(child.Start({"sh", "-c", "exit 0"}, LChildProcess::PipeIn));
    ASSERT_TRUE(child.Wait(10000));
    std::vector<char> v(1 << 20, 'x');
    EXPECT_FALSE(child.Write(v.data(), v.size()));
}

TEST(ChildProcess, MissingProgramsAreFoundMissing)
{
    LChildProcess child;
    std::string szError;
    EXPECT_FALSE(child.Start({"sonitra-no-such-program"}, 0, &szError));
    EXPECT_TRUE(child.IsMissing());
    EXPECT_NE(szError.find("sonitra-no-such-program"), std::string::npos);
    EXPECT_FALSE(child.Start({}, 0, &szError));
}

TEST(ChildProcess, ArgumentsReachTheProgramUnreadByAShell)
{
    TempDir dir;
    const std::string szOut = dir.File("out; rm -rf x $(true)");
    ASSERT_TRUE(LChildProcess::StartDetached({"sh", "-c", "printf '%s' \"$1\" > \"$2\"", "sh", "a b * $HOME", szOut}));
    std::string szGot;
    for (int i = 0; i < 200 && szGot.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::ifstream f(szOut);
        std::getline(f, szGot);
    }
    EXPECT_EQ(szGot, "a b * $HOME");
}

TEST(ChildProcess, MissingProgramsAreReportedWhenStartedOnTheirOwn)
{
    std::string szError;
    EXPECT_FALSE(LChildProcess::StartDetached({"sonitra-no-such-program"}, &szError));
    EXPECT_NE(szError.find("sonitra-no-such-program"), std::string::npos);
    EXPECT_FALSE(LChildProcess::StartDetached({}, &szError));
}

TEST(ChildProcess, WaitsAndReportsTheExitStatusOrAMissingProgram)
{
    int nExit = -5;
    ASSERT_TRUE(LChildProcess::Run({"sh", "-c", "exit 3"}, &nExit));
    EXPECT_EQ(nExit, 3);
    std::string szError;
    bool bMissing = false;
    EXPECT_FALSE(LChildProcess::Run({"sonitra-no-such-program"}, &nExit, &szError, &bMissing));
    EXPECT_TRUE(bMissing);
    EXPECT_NE(szError.find("sonitra-no-such-program"), std::string::npos);
}

namespace {
// Sets $TMPDIR for the life of the object.
class TmpDirAs
{
public:
    explicit TmpDirAs(const std::string& sz)
    {
        const char* szOld = std::getenv("TMPDIR");
        bHad = szOld != nullptr;
        szSaved = szOld ? szOld : "";
        ::setenv("TMPDIR", sz.c_str(), 1);
    }
    ~TmpDirAs()
    {
        if (bHad)
            ::setenv("TMPDIR", szSaved.c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }

private:
    bool bHad = false;
    std::string szSaved;
};
} // namespace

// With $TMPDIR naming a folder that is missing or cannot be written, children still start, their
// messages are still kept, and they are handed a temporary folder they can use.
TEST(ChildProcess, AnUnusableTemporaryFolderFallsBackToTheSystemsOwn)
{
    TempDir dir;
    std::filesystem::create_directories(dir.File("ro"));
    ::chmod(dir.File("ro").c_str(), 0500);
    for (const std::string& szTmp : {dir.File("missing"), dir.File("ro")}) {
        SCOPED_TRACE(szTmp);
        if (szTmp == dir.File("ro") && ::access(szTmp.c_str(), W_OK) == 0)
            continue; // root writes anyway
        TmpDirAs tmp(szTmp);
        EXPECT_NE(LTempFolder::Path(), szTmp);
        LChildProcess child;
        std::string szError;
        ASSERT_TRUE(child.Start({"sh", "-c", "echo \"$TMPDIR\"; echo 'the last word' >&2"}, LChildProcess::PipeOut, &szError))
            << szError;
        std::string szOut(256, '\0');
        szOut.resize(child.ReadFull(szOut.data(), szOut.size()));
        ASSERT_TRUE(child.Wait(10000));
        EXPECT_EQ(szOut, LTempFolder::Path() + "\n");
        EXPECT_EQ(child.GetLastErrorLine(), "the last word");
    }
    ::chmod(dir.File("ro").c_str(), 0700);
    // A usable one is used as it is, for us and for the child.
    TmpDirAs tmp(dir.Path());
    EXPECT_EQ(LTempFolder::Path(), dir.Path());
    LChildProcess child;
    ASSERT_TRUE(child.Start({"sh", "-c", "echo \"$TMPDIR\""}, LChildProcess::PipeOut));
    std::string szOut(256, '\0');
    szOut.resize(child.ReadFull(szOut.data(), szOut.size()));
    EXPECT_EQ(szOut, dir.Path() + "\n");
}

// Helper files are always new files of our own: two never share a name, only we may read them,
// and the messages file of a child is gone with the child's object.
TEST(ChildProcess, HelperFilesAreNewAndPrivate)
{
    TempDir dir;
    TmpDirAs tmp(dir.Path());
    std::string szA, szB;
    const int fdA = LTempFolder::CreateFile("t-", ".txt", szA);
    const int fdB = LTempFolder::CreateFile("t-", ".txt", szB);
    ASSERT_GE(fdA, 0);
    ASSERT_GE(fdB, 0);
    EXPECT_NE(szA, szB);
    struct stat st;
    ASSERT_EQ(::fstat(fdA, &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_NE(::fcntl(fdA, F_GETFD) & FD_CLOEXEC, 0);
    ::close(fdA);
    ::close(fdB);
    {
        LChildProcess child;
        ASSERT_TRUE(child.Start({"sh", "-c", "echo x >&2"}, 0));
        ASSERT_TRUE(child.Wait(10000));
        size_t nErrFiles = 0;
        for (const auto& e : std::filesystem::directory_iterator(dir.Path()))
            nErrFiles += e.path().extension() == ".err";
        EXPECT_EQ(nErrFiles, 1u);
    }
    for (const auto& e : std::filesystem::directory_iterator(dir.Path()))
        EXPECT_NE(e.path().extension(), ".err") << e.path();
}

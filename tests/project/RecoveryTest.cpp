// Finding the sessions of editors that ended abnormally, without touching a running one's.
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "project/LRecovery.h"
#include "support/DocSupport.h"

using testsupport::WriteFileBytes;

namespace {
std::string MakeSession(const std::string& szSuffix)
{
    const std::string szFolder = LAudioCutTank::DefaultBase() + LAudioCutTank::FolderPrefix() + szSuffix + "/";
    std::filesystem::create_directories(szFolder);
    WriteFileBytes(szFolder + LRecovery::kProjectName, {1, 0, 255, 0, 0});
    return szFolder;
}
} // namespace

TEST(Recovery, ALockedSessionIsNeverOfferedAndAClaimedOneOnlyOnce)
{
    testsupport::UsePrivateTankFolder();
    const std::string szOwn = LAudioCutTank::Instance().GetWorkingFolder();
    const std::string szRunning = MakeSession("999991");
    const std::string szCrashed = MakeSession("999992");
    const std::string szNoProject = LAudioCutTank::DefaultBase() + LAudioCutTank::FolderPrefix() + "999993/";
    std::filesystem::create_directories(szNoProject);
    WriteFileBytes(szOwn + LRecovery::kProjectName, {1, 0, 255, 0, 0});

    LRecoveryLock running;
    ASSERT_TRUE(running.Take(szRunning));
    std::vector<std::string> v = LRecovery::FindAbandoned(szOwn);
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(v[0], szCrashed);

    LRecoveryLock claim, second;
    ASSERT_TRUE(claim.Take(szCrashed));
    EXPECT_FALSE(second.Take(szCrashed)) << "a second editor cannot claim it too";
    EXPECT_TRUE(LRecovery::FindAbandoned(szOwn).empty());
    LRecovery::Sweep(szCrashed);
    claim.Release();
    EXPECT_FALSE(std::filesystem::exists(szCrashed));

    running.Release();
    v = LRecovery::FindAbandoned(szOwn);
    ASSERT_EQ(v.size(), 1u) << "once its editor is gone";
    EXPECT_EQ(v[0], szRunning);
    LRecovery::Sweep(szRunning);
    LRecovery::Sweep(szNoProject);
    LFile::Delete(szOwn + LRecovery::kProjectName);
}

// The list files the program writes (batch scripts, key macros, bookmark lists, curves, projects)
// replace the old file only once the new one is whole: a failure at any write, flush or rename
// leaves the old file byte for byte and nothing else behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sys/stat.h>

#include "core/LAtomicFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "dsp/effects/LCurveFile.h"
#include "lists/LBatchScript.h"
#include "lists/LKeyMacroFile.h"
#include "project/LBookmarkFile.h"
#include "support/TestSupport.h"

using testsupport::ReadFileBytes;
using testsupport::TempDir;
using Bytes = std::vector<uint8_t>;

namespace {

struct FaultOff
{
    ~FaultOff() { LFile::ClearFault(); }
};

size_t FilesIn(const std::string& szFolder)
{
    size_t n = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(szFolder))
        ++n;
    return n;
}

// A writer under test: saves version nVersion (0 the old file, 1 the new) to szPath.
struct LListWriter
{
    const char* szName;
    std::string szPath;
    std::function<bool(int nVersion, std::string* pszError)> fnSave;
};

std::vector<LListWriter> Writers(const TempDir& dir)
{
    std::vector<LListWriter> v;
    for (const char* sz : {"script", "keys", "bookmarks", "curve", "project"})
        std::filesystem::create_directories(dir.File(sz));
    v.push_back({"script", dir.File("script/s.snb"), [p = dir.File("script/s.snb")](int n, std::string* pszError) {
                     CommandDataItem item;
                     MakeCommandDataItem(n ? 4006 : 4007, item);
                     return LBatchScript::Save(p, {item, item}, pszError);
                 }});
    v.push_back({"keys", dir.File("keys/keys.dat"), [p = dir.File("keys/keys.dat")](int n, std::string* pszError) {
                     return LKeyMacroFile::Save(p, {LKeyMacro{65u + static_cast<uint32_t>(n), {4001, 4006}}}, pszError);
                 }});
    const std::string szAudio = dir.File("bookmarks/song.wav");
    v.push_back({"bookmarks", dir.File("bookmarks/song.snm"), [szAudio](int n, std::string* pszError) {
                     return LBookmarkFile::Save(szAudio, {LEdBookMark("b", szAudio, 100 + n)}, pszError);
                 }});
    v.push_back({"curve", dir.File("curve/equalizer.dat"), [p = dir.File("curve/equalizer.dat")](int n, std::string* pszError) {
                     LPointList list;
                     list.Add(20, n);
                     list.Add(20000, 0);
                     return LCurveFile::Save(p, list, pszError);
                 }});
    v.push_back({"project", dir.File("project/p.snp"), [p = dir.File("project/p.snp")](int n, std::string* pszError) {
                     return LAtomicFile::Write(p, Bytes(3000, static_cast<uint8_t>('a' + n)), pszError);
                 }});
    return v;
}

} // namespace

TEST(ListWrite, AFaultAtAnyStepKeepsTheOldFile)
{
    TempDir dir;
    FaultOff off;
    for (const LListWriter& w : Writers(dir)) {
        SCOPED_TRACE(w.szName);
        std::string szError;
        ASSERT_TRUE(w.fnSave(0, &szError)) << szError;
        const Bytes vOld = ReadFileBytes(w.szPath);
        LFile::InjectFault(0);
        ASSERT_TRUE(w.fnSave(1, &szError)) << szError;
        const Bytes vNew = ReadFileBytes(w.szPath);
        const int64_t nCalls = LFile::GetFaultCalls();
        ASSERT_GE(nCalls, 4); // write, flush, rename, flush of the folder
        ASSERT_NE(vOld, vNew);
        for (int nFault = LFile::FaultFail; nFault <= LFile::FaultShortWrite; ++nFault) {
            for (int64_t nCall = 1; nCall <= nCalls; ++nCall) {
                SCOPED_TRACE("fault " + std::to_string(nFault) + " at call " + std::to_string(nCall));
                LFile::ClearFault();
                ASSERT_TRUE(w.fnSave(0, nullptr));
                LFile::InjectFault(nCall, static_cast<LFile::Fault>(nFault));
                szError.clear();
                EXPECT_FALSE(w.fnSave(1, &szError));
                EXPECT_FALSE(szError.empty());
                // Only the folder's flush comes after the new file took the name.
                EXPECT_EQ(ReadFileBytes(w.szPath), nCall < nCalls ? vOld : vNew);
                EXPECT_EQ(FilesIn(LFile::FolderOf(w.szPath)), 1u);
            }
        }
        LFile::ClearFault();
    }
}

TEST(ListWrite, TheNewFileKeepsTheOldOnesPermissionsAndALinkIsNeverWrittenThrough)
{
    TempDir dir;
    const std::string szPath = dir.File("s.snb");
    ASSERT_TRUE(LBatchScript::Save(szPath, {}));
    ASSERT_EQ(::chmod(szPath.c_str(), 0600), 0);
    CommandDataItem item;
    ASSERT_TRUE(MakeCommandDataItem(4006, item));
    ASSERT_TRUE(LBatchScript::Save(szPath, {item}));
    struct stat st;
    ASSERT_EQ(::stat(szPath.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    // A list saved over a link replaces the link; the file it pointed to is untouched.
    testsupport::WriteFileBytes(dir.File("elsewhere"), {'x'});
    std::filesystem::create_symlink(dir.File("elsewhere"), dir.File("linked.snb"));
    ASSERT_TRUE(LBatchScript::Save(dir.File("linked.snb"), {item}));
    EXPECT_EQ(ReadFileBytes(dir.File("elsewhere")), Bytes{'x'});
    EXPECT_EQ(ReadFileBytes(dir.File("linked.snb")), ReadFileBytes(szPath));
}

TEST(ListWrite, AFolderThatCannotBeWrittenFailsWithTheReason)
{
    TempDir dir;
    std::string szError;
    EXPECT_FALSE(LBatchScript::Save(dir.File("no/such/folder/s.snb"), {}, &szError));
    EXPECT_NE(szError.find("No such file or directory"), std::string::npos) << szError;
    std::filesystem::create_directories(dir.File("ro"));
    ::chmod(dir.File("ro").c_str(), 0500);
    if (::access(dir.File("ro").c_str(), W_OK) != 0) { // root writes anyway
        EXPECT_FALSE(LBookmarkFile::Save(dir.File("ro/a.wav"), {LEdBookMark("b", dir.File("ro/a.wav"), 1)}, &szError));
        EXPECT_NE(szError.find("Permission denied"), std::string::npos) << szError;
    }
    ::chmod(dir.File("ro").c_str(), 0700);
}

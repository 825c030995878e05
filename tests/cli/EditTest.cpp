// End to end: `sonitra-cli edit IN OUT OP...` loads, edits with undo, and saves.
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>
#include <string>
#include <vector>

#include "core/LFile.h"
#include "formats/LAudioFile.h"
#include "support/CliTest.h"

namespace {

class Edit : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        // Frames 1..10 at 1000 frames per second: a millisecond is a frame.
        testsupport::WriteSimpleWav(dir.File("in.wav"), 1000, 1, 16, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    }
    void TearDown() override
    {
        int nLeft = 0;
        std::error_code ec;
        for (auto it = std::filesystem::recursive_directory_iterator(dir.File("cache"), ec);
             !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
            const std::string szExt = it->path().extension().string();
            nLeft += szExt == ".aud" || szExt == ".grf";
        }
        EXPECT_EQ(nLeft, 0) << "segment files were left in the working folder";
    }

    // Runs the verb in a private cache and settings home; returns its exit status.
    int Run(const std::string& szArgs, std::string* pOut = nullptr) { return Cli("edit " + szArgs, pOut); }

    std::vector<int32_t> Output()
    {
        LSoundSourcePtr pSrc = LAudioFile::OpenSource(dir.File("out.wav"));
        EXPECT_FALSE(pSrc->IsError());
        std::vector<int32_t> v(static_cast<size_t>(pSrc->GetLength()) * pSrc->GetChannels());
        pSrc->Read(v.data(), pSrc->GetLength());
        for (int32_t& s : v)
            s /= 16;
        return v;
    }

    std::string Files() { return dir.File("in.wav") + " " + dir.File("out.wav") + " "; }
};

} // namespace

TEST_F(Edit, OperationsFollowTheDocumentRulesAndUndoTakesBackTheLast)
{
    // cut 3,4 | paste at the end | silence from -2 keeps 1 frame | a delete past the end does
    // nothing | amplify, then undone | trim to [1, 5 ms) | repeat the first two frames once.
    ASSERT_EQ(Run(Files() + "cut=2,4 paste=8 insert-silence=-2,3 delete=20,30 amplify=1,3,200 undo "
                            "crop=1,0:00.005 repeat=0,2,1"),
              0);
    EXPECT_EQ(Output(), (std::vector<int32_t>{1, 2, 1, 2, 5, 6}));

    ASSERT_EQ(Run(Files() + "amplify=1,3,200 amplify=-2,0,50"), 0);
    EXPECT_EQ(Output(), (std::vector<int32_t>{0, 0, 0, 0, 1, 4, 6, 4, 5, 6, 7, 8, 9, 10}))
        << "2 and 3 doubled; the range before 0 comes back padded, ahead of a gap as long";
}

TEST_F(Edit, EveryOperationButCopyIsOneUndoableStep)
{
    ASSERT_EQ(Run(Files() + "cut=0,2 delete=50,60 undo"), 0);
    EXPECT_EQ(Output(), (std::vector<int32_t>{3, 4, 5, 6, 7, 8, 9, 10})) << "the delete that changed nothing";
    ASSERT_EQ(Run(Files() + "cut=0,2 copy=0,1 undo"), 0);
    EXPECT_EQ(Output(), (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));

    std::string szOps;
    for (int i = 0; i < 9; ++i)
        szOps += "delete=0,1 ";
    for (int i = 0; i < 9; ++i)
        szOps += "undo ";
    ASSERT_EQ(Run(Files() + szOps), 0);
    EXPECT_EQ(Output(), (std::vector<int32_t>{2, 3, 4, 5, 6, 7, 8, 9, 10})) << "eight levels, no more";
}

TEST_F(Edit, RefusesBadOperationsBeforeWritingAnything)
{
    for (const char* szOp : {"frobnicate=1,2", "delete=1", "amplify=0,1,-5", "repeat=0,1,x", "delete=1,2s3", "undo=1",
                             "crop-end=9999999999", "--loud"}) {
        std::string szOut;
        EXPECT_EQ(Run(Files() + "delete=0,1 " + szOp, &szOut), 64) << szOp;
        EXPECT_NE(szOut.find(szOp), std::string::npos) << "the message names the operation: " << szOut;
        EXPECT_FALSE(LFile::Exists(dir.File("out.wav"))) << szOp;
    }
    EXPECT_EQ(Run(dir.File("missing.wav") + " " + dir.File("out.wav") + " delete=0,1"), 2);
}

TEST_F(Edit, SweepsTheSegmentsOfEarlierRunsThatNoLongerExist)
{
    char szHost[256] = {};
    ::gethostname(szHost, sizeof(szHost) - 1);
    const std::string szBase = dir.File("cache") + "/sonitra/";
    const std::string szDead = szBase + "segments-" + szHost + "-999999999";
    const std::string szOtherHost = szBase + "segments-elsewhere.example-999999999";
    for (const std::string& sz : {szDead, szOtherHost}) {
        std::filesystem::create_directories(sz);
        testsupport::WriteFileBytes(sz + "/3.aud", {1, 2, 3, 4});
    }
    ASSERT_EQ(Run(Files() + "delete=0,1"), 0);
    EXPECT_FALSE(LFile::Exists(szDead));
    EXPECT_TRUE(LFile::Exists(szOtherHost + "/3.aud")) << "another machine's run may still be going";
    std::filesystem::remove_all(szOtherHost);
}

TEST_F(Edit, TraceCutsPrintsTheListAfterEachOperation)
{
    std::string szOut;
    ASSERT_EQ(Run("--trace-cuts " + Files() + "delete=2,4 insert-silence=12,1", &szOut), 0);
    EXPECT_NE(szOut.find("ref=0 offset=0 length=10 gain=16777216\n== delete=2,4\n"
                         "ref=0 offset=0 length=2 gain=16777216\nref=0 offset=4 length=6 gain=16777216\n"
                         "== insert-silence=12,1\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("ref=65535 offset=0 length=5 gain=16777216\n"), std::string::npos) << szOut;
}

// A time becomes frames by the editing commands' one rule: 5 ms at 44100 Hz is 220 frames, in
// the editor's Insert Silence as here; the silence verb turns a range into silence.
TEST_F(Edit, TimesAndSilenceFollowTheEditorsCommands)
{
    testsupport::WriteSimpleWav(dir.File("in.wav"), 44100, 1, 16, std::vector<int32_t>(1000, 3));
    ASSERT_EQ(Run(Files() + "insert-silence=0,5ms silence=300,310"), 0);
    const std::vector<int32_t> v = Output();
    ASSERT_EQ(v.size(), 1220u);
    EXPECT_EQ(v[219], 0);
    EXPECT_EQ(v[220], 3);
    EXPECT_EQ(v[305], 0);
    EXPECT_EQ(v[310], 3);
}

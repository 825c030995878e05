// The project and bookmarks verbs: a project made of audio files lists and renders its documents
// after the files it was made from are gone, and after it was renamed or moved with its audio;
// projects sharing a name keep their own audio; missing audio fails; bookmark lists beside audio
// files are listed.
#include <gtest/gtest.h>

#include <filesystem>

#include "formats/LAudioFile.h"
#include "project/LBookmarkFile.h"
#include "support/TestSupport.h"

using testsupport::RunCli;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;
using testsupport::WriteSimpleWav;

namespace {
std::vector<int32_t> FileSamples(const std::string& szPath)
{
    LSoundSourcePtr p = LAudioFile::OpenSource(szPath);
    std::vector<int32_t> v(static_cast<size_t>(p->GetLength()) * p->GetChannels());
    if (!v.empty())
        p->Read(v.data(), p->GetLength());
    return v;
}

std::vector<int32_t> Ramp(int nSamples, int nStep)
{
    std::vector<int32_t> v(nSamples);
    for (int i = 0; i < nSamples; ++i)
        v[i] = ((i * nStep) % 60000) - 30000;
    return v;
}
} // namespace

TEST(ProjectCli, AProjectListsAndRendersItsDocumentsWithoutItsSourceFiles)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Ramp(16000, 3));
    WriteSimpleWav(dir.File("b.wav"), 11025, 2, 16, Ramp(2 * 11025, 7));
    const std::vector<int32_t> vA = FileSamples(dir.File("a.wav"));
    const std::vector<int32_t> vB = FileSamples(dir.File("b.wav"));
    std::string szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("p.snp") + " " + dir.File("a.wav") + " " + dir.File("b.wav") +
                      " --bookmark 1@0.5=Start --bookmark 2@1=Mid --region 1@0.25-1.5=Hook",
                  &szOut),
              0)
        << szOut;
    ASSERT_EQ(std::remove(dir.File("a.wav").c_str()), 0);
    ASSERT_EQ(std::remove(dir.File("b.wav").c_str()), 0);
    ASSERT_EQ(RunCli("project info " + dir.File("p.snp"), &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("file 1: " + dir.File("a.wav") + ", 8000 Hz, 1 channel, 16000 frames, 0:00:02.000"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("file 2: " + dir.File("b.wav") + ", 11025 Hz, 2 channels, 11025 frames"), std::string::npos);
    EXPECT_NE(szOut.find("bookmark: Start, 0:00:00.500, visited 1"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("bookmark: Mid, 0:00:01.000, visited 1"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("region: Hook@0:00:00.250-0:00:01.500"), std::string::npos) << szOut;

    ASSERT_EQ(RunCli("project render " + dir.File("p.snp") + " 1 " + dir.File("a2.wav"), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project render " + dir.File("p.snp") + " 2 " + dir.File("b2.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(FileSamples(dir.File("a2.wav")), vA);
    EXPECT_EQ(FileSamples(dir.File("b2.wav")), vB);
    EXPECT_EQ(RunCli("project render " + dir.File("p.snp") + " 3 " + dir.File("c.wav"), &szOut), 2);
}

TEST(ProjectCli, AWrongVersionAndBadUsageAreRefused)
{
    TempDir dir;
    WriteFileBytes(dir.File("old.snp"), {7, 0, 255, 0, 0});
    std::string szOut;
    EXPECT_EQ(RunCli("project info " + dir.File("old.snp"), &szOut), 2);
    EXPECT_NE(szOut.find("does not have the same version"), std::string::npos) << szOut;
    EXPECT_EQ(RunCli("project new " + dir.File("x.snp"), &szOut), 64);
    EXPECT_EQ(RunCli("project new " + dir.File("x.snp") + " a.wav --bookmark 2@1=X", &szOut), 64);
    EXPECT_EQ(RunCli("project frobnicate", &szOut), 64);
}

TEST(ProjectCli, ARenamedOrMovedProjectRendersWhatWasSaved)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Ramp(4000, 3));
    const std::vector<int32_t> vA = FileSamples(dir.File("a.wav"));
    std::string szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("song.snp") + " " + dir.File("a.wav"), &szOut), 0) << szOut;
    std::filesystem::rename(dir.File("song.snp"), dir.File("final.snp"));
    ASSERT_EQ(RunCli("project render " + dir.File("final.snp") + " 1 " + dir.File("r1.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(FileSamples(dir.File("r1.wav")), vA);
    std::filesystem::create_directory(dir.File("moved"));
    std::filesystem::rename(dir.File("final.snp"), dir.File("moved/final.snp"));
    std::filesystem::rename(dir.File("song_audio"), dir.File("moved/song_audio"));
    ASSERT_EQ(RunCli("project render " + dir.File("moved/final.snp") + " 1 " + dir.File("r2.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(FileSamples(dir.File("r2.wav")), vA);
}

TEST(ProjectCli, ProjectsSharingANameEachKeepTheirAudio)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Ramp(3000, 3));
    WriteSimpleWav(dir.File("b.wav"), 8000, 1, 16, Ramp(2000, 11));
    const std::vector<int32_t> vA = FileSamples(dir.File("a.wav"));
    const std::vector<int32_t> vB = FileSamples(dir.File("b.wav"));
    std::string szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("song.snp") + " " + dir.File("a.wav"), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("song.bak") + " " + dir.File("b.wav"), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project render " + dir.File("song.snp") + " 1 " + dir.File("ra.wav"), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project render " + dir.File("song.bak") + " 1 " + dir.File("rb.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(FileSamples(dir.File("ra.wav")), vA);
    EXPECT_EQ(FileSamples(dir.File("rb.wav")), vB);
}

TEST(ProjectCli, MissingAudioFailsNamingTheProjectAndWhatIsMissing)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Ramp(3000, 3));
    std::string szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("song.snp") + " " + dir.File("a.wav"), &szOut), 0) << szOut;
    // Moved without its folder.
    std::filesystem::create_directory(dir.File("moved"));
    std::filesystem::rename(dir.File("song.snp"), dir.File("moved/song.snp"));
    EXPECT_EQ(RunCli("project render " + dir.File("moved/song.snp") + " 1 " + dir.File("r.wav"), &szOut), 2);
    EXPECT_EQ(szOut, "sonitra-cli: " + dir.File("moved/song.snp") + ": its audio folder " +
                         dir.File("moved/song_audio/") + " is missing\n");
    EXPECT_FALSE(std::filesystem::exists(dir.File("r.wav")));
    EXPECT_EQ(RunCli("project info " + dir.File("moved/song.snp"), &szOut), 2);
}

TEST(ProjectCli, AFourChannelProjectRoundTrips)
{
    TempDir dir;
    WriteSimpleWav(dir.File("quad.wav"), 8000, 4, 16, Ramp(4 * 2000, 5));
    const std::vector<int32_t> vQuad = FileSamples(dir.File("quad.wav"));
    ASSERT_EQ(vQuad.size(), 8000u);
    std::string szOut;
    ASSERT_EQ(RunCli("project new " + dir.File("q.snp") + " " + dir.File("quad.wav"), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project info " + dir.File("q.snp"), &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("8000 Hz, 4 channels, 2000 frames"), std::string::npos) << szOut;
    ASSERT_EQ(RunCli("project render " + dir.File("q.snp") + " 1 " + dir.File("r.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(FileSamples(dir.File("r.wav")), vQuad);
}

TEST(ProjectCli, The256thBookmarkOrRegionIsRefused)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Ramp(8000, 3));
    auto marks = [](const std::string& szOption, const std::string& szWhere, int n) {
        std::string sz;
        for (int i = 0; i < n; ++i)
            sz += " " + szOption + " " + szWhere + "=m" + std::to_string(i);
        return sz;
    };
    std::string szOut;
    const std::string szNew = "project new " + dir.File("p.snp") + " " + dir.File("a.wav");
    for (const std::string& szMarks : {marks("--bookmark", "1@0.5", 256), marks("--region", "1@0-0.5", 256)}) {
        EXPECT_EQ(RunCli(szNew + szMarks, &szOut), 64);
        EXPECT_NE(szOut.find("at most 255 bookmarks and 255 regions"), std::string::npos) << szOut;
        EXPECT_FALSE(std::filesystem::exists(dir.File("p.snp")));
    }
    ASSERT_EQ(RunCli(szNew + marks("--bookmark", "1@0.5", 255) + marks("--region", "1@0-0.5", 255), &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("project info " + dir.File("p.snp"), &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("bookmark: m254,"), std::string::npos);
    EXPECT_NE(szOut.find("region: m254@"), std::string::npos);
}

TEST(BookmarksCli, ListsTheBookmarksBesideAnAudioFile)
{
    TempDir dir;
    WriteSimpleWav(dir.File("song.wav"), 8000, 1, 16, Ramp(8000, 1));
    std::vector<LEdBookMark> v = {LEdBookMark("Intro", dir.File("song.wav"), 4000)};
    v[0].Visit(0);
    v[0].nLastVisited = 86400;
    ASSERT_TRUE(LBookmarkFile::Save(dir.File("song.wav"), v));
    std::string szOut;
    ASSERT_EQ(RunCli("bookmarks " + dir.File("song.wav"), &szOut), 0) << szOut;
    EXPECT_EQ(szOut, "Intro, 0:00:00.500, visited 2, last 1970-01-02 00:00:00\n");
    WriteFileBytes(dir.File("song.snm"), {3, 0});
    EXPECT_EQ(RunCli("bookmarks " + dir.File("song.wav"), &szOut), 2);
    EXPECT_NE(szOut.find("does not have the same version"), std::string::npos);
}

#include <gtest/gtest.h>

#include <cstdio>
#include <sys/stat.h>

#include "support/TestSupport.h"

using testsupport::HaveTool;
using testsupport::RunCommand;

namespace {

class Mp3Cli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        szEnv = "XDG_CONFIG_HOME=" + dir.File("config") + " XDG_CACHE_HOME=" + dir.File("cache") + " ";
        testsupport::WriteSimpleWav(dir.File("in.wav"), 44100, 2, 16, testsupport::Sine16(44100, 2, 44100, 440.0, 8000.0));
        testsupport::WriteSimpleWav(dir.File("mono22.wav"), 22050, 1, 16, testsupport::Sine16(22050, 1, 33075, 300.0, 8000.0));
    }
    // Registers the encoder component the way the editor does, in the tool's settings file.
    void RegisterEncoder(const std::string& szPath)
    {
        ::mkdir(dir.File("config").c_str(), 0755);
        ::mkdir(dir.File("config/Korvane").c_str(), 0755);
        FILE* f = std::fopen(dir.File("config/Korvane/Sonitra.conf").c_str(), "w");
        ASSERT_TRUE(f);
        std::fprintf(f, "[Components]\nmp3el\\Path=%s\n", szPath.c_str());
        std::fclose(f);
    }
    int Cli(const std::string& szArgs, std::string* pOut = nullptr)
    {
        std::string sz;
        const int n = RunCommand(szEnv + "'" SONITRA_CLI_PATH "' " + szArgs + " 2>&1 </dev/null", &sz);
        if (pOut)
            *pOut = sz;
        return n;
    }
    testsupport::TempDir dir;
    std::string szEnv;
};

} // namespace

TEST_F(Mp3Cli, WithoutTheEncoderTheConversionFailsAndWritesNothing)
{
    std::string szOut;
    EXPECT_EQ(Cli("convert '" + dir.File("in.wav") + "' '" + dir.File("out.mp3") + "'", &szOut), 2);
    EXPECT_NE(szOut.find("\"mp3el\" is not installed"), std::string::npos) << szOut;
    std::string szList;
    RunCommand("ls -A '" + dir.Path() + "'", &szList);
    EXPECT_EQ(szList.find("out.mp3"), std::string::npos) << szList; // nor a part file
}

TEST_F(Mp3Cli, ConvertsThroughLameAndReadsTheResultBack)
{
    if (!HaveTool("lame") || !HaveTool("mpg123"))
        GTEST_SKIP() << "lame and mpg123 are needed";
    std::string szLame;
    RunCommand("command -v lame", &szLame);
    szLame.erase(szLame.find_last_not_of("\n") + 1);
    RegisterEncoder(szLame);
    std::string szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("in.wav") + "' '" + dir.File("out.mp3") + "'", &szOut), 0) << szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("mono22.wav") + "' '" + dir.File("mono.mp3") + "'", &szOut), 0) << szOut;
    // mpg123 takes the encoder's padding off with its tag: the lengths come out exact.
    auto Mpg123 = [](const std::string& szArgs) {
        std::string sz;
        RunCommand("mpg123 " + szArgs + " 2>&1", &sz);
        return sz;
    };
    EXPECT_NEAR(static_cast<double>(Mpg123("-q -s '" + dir.File("out.mp3") + "'").size()), 44100 * 4, 1152 * 4);
    EXPECT_NEAR(static_cast<double>(Mpg123("-q -s '" + dir.File("mono.mp3") + "'").size()), 33075 * 2, 576 * 2);
    EXPECT_NE(Mpg123("-t '" + dir.File("mono.mp3") + "'").find("22050 mono"), std::string::npos);
    const std::string szStereo = Mpg123("-t '" + dir.File("out.mp3") + "'");
    EXPECT_NE(szStereo.find("vbr 44100 "), std::string::npos) << szStereo;
    EXPECT_EQ(szStereo.find(" mono"), std::string::npos) << szStereo;

    // Our own reading of it, and an edit that goes MP3 to MP3.
    ASSERT_EQ(Cli("info '" + dir.File("mono.mp3") + "'", &szOut), 0);
    EXPECT_NE(szOut.find("MP3 MPEG-2 Layer III, VBR (about "), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("22050 Hz, 1 channel,"), std::string::npos) << szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("out.mp3") + "' '" + dir.File("back.wav") + "'", &szOut), 0) << szOut;
    ASSERT_EQ(Cli("info '" + dir.File("back.wav") + "'", &szOut), 0);
    EXPECT_NE(szOut.find("44100 Hz, 2 channels"), std::string::npos) << szOut;
}

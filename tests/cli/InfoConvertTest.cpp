#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestSupport.h"

using testsupport::HaveTool;
using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;
using testsupport::WriteSimpleWav;

namespace {

std::string Quote(const std::string& s)
{
    return "'" + s + "'";
}

// Runs sonitra-cli with its output and errors collected together.
int Cli(const std::string& szArgs, std::string* pOutput = nullptr)
{
    std::string szOut;
    const int nExit = RunCommand(Quote(SONITRA_CLI_PATH) + " " + szArgs + " 2>&1", &szOut);
    if (pOutput)
        *pOutput = szOut;
    return nExit;
}

// The samples as sox decodes them, as 32-bit raw bytes; empty when sox fails.
std::string SoxDecode(const std::string& szPath, const std::string& szEffects = "")
{
    std::string szOut;
    if (RunCommand("sox " + Quote(szPath) + " -t s32 - " + szEffects + " 2>/dev/null", &szOut) != 0)
        return std::string();
    return szOut;
}

#define REQUIRE_SOX()                                                                                                  \
    if (!HaveTool("sox"))                                                                                              \
    GTEST_SKIP() << "sox is not installed; the sample-exact checks need it to decode"

} // namespace

TEST(CliInfo, ReportsEveryFileAndFailsForTheUnreadable)
{
    TempDir dir;
    WriteSimpleWav(dir.File("st.wav"), 44100, 2, 16, testsupport::Sine16(44100, 2, 66150, 440));
    WriteSimpleWav(dir.File("mono8.wav"), 8000, 1, 8, std::vector<int32_t>(8001, 128));
    WriteFileBytes(dir.File("junk.wav"), std::vector<uint8_t>(64, 'j'));
    std::string szOut;
    EXPECT_EQ(Cli("info " + dir.File("st.wav") + " " + dir.File("junk.wav") + " " + dir.File("mono8.wav"), &szOut), 2);
    EXPECT_NE(szOut.find("st.wav: WAV PCM 16-bit, 44100 Hz, 2 channels, 66150 frames, 0:00:01.500\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("mono8.wav: WAV PCM 8-bit, 8000 Hz, 1 channel, 8001 frames, 0:00:01.000\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("sonitra-cli: " + dir.File("junk.wav") + ": not a WAV file: no RIFF WAVE chunk found\n"),
              std::string::npos)
        << szOut;
    EXPECT_EQ(Cli("info " + dir.File("st.wav")), 0);
    EXPECT_EQ(Cli("info", &szOut), 64);
    EXPECT_NE(szOut.find("no file given"), std::string::npos);
    EXPECT_EQ(Cli("info --help", &szOut), 0);
    EXPECT_EQ(szOut.rfind("usage: sonitra-cli info FILE...", 0), 0u);
}

TEST(CliInfo, SaysWhenTheHeaderClaimsMoreThanTheFileHolds)
{
    TempDir dir;
    WriteSimpleWav(dir.File("short.wav"), 8000, 1, 16, std::vector<int32_t>(400, 5));
    std::vector<uint8_t> v = ReadFileBytes(dir.File("short.wav"));
    const uint32_t nClaim = 8000 * 2 * 3600; // an hour
    for (int i = 0; i < 4; ++i)
        v[40 + i] = static_cast<uint8_t>(nClaim >> (8 * i));
    WriteFileBytes(dir.File("short.wav"), v);
    std::string szOut;
    EXPECT_EQ(Cli("info " + dir.File("short.wav") + " " + dir.File("short.wav"), &szOut), 0);
    EXPECT_NE(szOut.find("short.wav: WAV PCM 16-bit, 8000 Hz, 1 channel, 28800000 frames, 1:00:00.000\n" +
                         dir.File("short.wav") +
                         ": the header claims 28800000 frames but the file holds only 400 (0:00:00.050); the "
                         "rest reads as silence\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("claims", szOut.find("claims") + 1), std::string::npos); // for each file
    WriteSimpleWav(dir.File("ok.wav"), 8000, 1, 16, std::vector<int32_t>(400, 5));
    EXPECT_EQ(Cli("info " + dir.File("ok.wav"), &szOut), 0);
    EXPECT_EQ(szOut.find("claims"), std::string::npos);
}

TEST(CliConvert, WithoutOptionsKeepsEverySample)
{
    REQUIRE_SOX();
    TempDir dir;
    std::vector<int32_t> v8(3 * 10000);
    for (size_t i = 0; i < v8.size(); ++i)
        v8[i] = static_cast<int32_t>((i * 37) & 0xFF);
    std::vector<int32_t> v16 = testsupport::Sine16(48000, 2, 30000, 997, 32767);
    v16[1] = -32768;
    WriteSimpleWav(dir.File("in16.wav"), 48000, 2, 16, v16);
    WriteSimpleWav(dir.File("in8.wav"), 11025, 3, 8, v8);
    for (const char* szName : {"in16", "in8"}) {
        const std::string szIn = dir.File(std::string(szName) + ".wav");
        const std::string szOut = dir.File(std::string(szName) + "-out.wav");
        std::string szLog;
        ASSERT_EQ(Cli("convert " + szIn + " " + szOut, &szLog), 0) << szLog;
        EXPECT_EQ(szLog, ""); // no progress bar when stderr is not a terminal
        const std::string szExpected = SoxDecode(szIn);
        ASSERT_FALSE(szExpected.empty());
        EXPECT_TRUE(SoxDecode(szOut) == szExpected) << szName;
        std::string szInfoIn, szInfoOut;
        RunCommand("sox --i " + szIn + " | grep -v -e File -e Size", &szInfoIn);
        RunCommand("sox --i " + szOut + " | grep -v -e File -e Size", &szInfoOut);
        EXPECT_EQ(szInfoIn, szInfoOut);
    }
}

TEST(CliConvert, ChannelsOneMakesMonoAndBitsEightNarrows)
{
    REQUIRE_SOX();
    TempDir dir;
    WriteSimpleWav(dir.File("st.wav"), 22050, 2, 16, testsupport::Sine16(22050, 2, 20000, 300));
    ASSERT_EQ(Cli("convert " + dir.File("st.wav") + " " + dir.File("mono.wav") + " --channels 1"), 0);
    std::string szInfo;
    RunCommand("sox --i -c " + dir.File("mono.wav"), &szInfo);
    EXPECT_EQ(szInfo, "1\n"); // the mix that goes into it is checked where the channels differ
    ASSERT_EQ(Cli("convert " + dir.File("mono.wav") + " " + dir.File("l8.wav") + " --bits=8"), 0);
    szInfo.clear();
    RunCommand("sox --i -b " + dir.File("l8.wav"), &szInfo);
    EXPECT_EQ(szInfo, "8\n");
}

TEST(CliConvert, FailuresExplainAndLeaveNoFileBehind)
{
    TempDir dir;
    const std::string szIn = dir.File("in.wav");
    const std::string szOut = dir.File("out.wav");
    WriteSimpleWav(szIn, 8000, 1, 16, std::vector<int32_t>(100, 5));
    WriteSimpleWav(dir.File("three.wav"), 8000, 3, 16, std::vector<int32_t>(300, 5));
    WriteFileBytes(dir.File("bad.wav"), std::vector<uint8_t>{'R', 'I', 'F', 'F', 4, 0, 0, 0, 'W', 'A', 'V', 'E'});
    WriteFileBytes(szOut, std::vector<uint8_t>(7, 'k'));

    std::string szLog;
    EXPECT_EQ(Cli("convert " + dir.File("bad.wav") + " " + szOut, &szLog), 2);
    EXPECT_EQ(szLog, "sonitra-cli: " + dir.File("bad.wav") + ": damaged WAV file: no 'fmt ' chunk\n");
    EXPECT_EQ(Cli("convert " + dir.File("three.wav") + " " + szOut + " --channels 1", &szLog), 2);
    EXPECT_EQ(szLog, "sonitra-cli: " + szOut + ": cannot convert 3 channels to 1\n");
    EXPECT_EQ(ReadFileBytes(szOut), std::vector<uint8_t>(7, 'k'));

    for (const std::string& szBad : {dir.File("none/out.wav"), szIn + "/out.wav"}) {
        EXPECT_EQ(Cli("convert " + szIn + " " + szBad, &szLog), 2);
        EXPECT_EQ(szLog.rfind("sonitra-cli: " + szBad + ": cannot write the file: ", 0), 0u) << szLog;
        EXPECT_EQ(std::count(szLog.begin(), szLog.end(), '\n'), 1);
    }
    std::string szFiles;
    RunCommand("ls -A " + dir.Path(), &szFiles);
    EXPECT_EQ(szFiles, "bad.wav\nin.wav\nout.wav\nthree.wav\n");
}

TEST(CliConvert, UsageErrorsExitWith64)
{
    std::string szLog;
    for (const char* szArgs : {"convert a.wav", "convert a.wav b.wav c.wav", "convert a.wav b.wav --bits 12",
                               "convert a.wav b.wav --rate x", "convert a.wav b.wav --channels 3",
                               "convert a.wav b.wav --loud", "convert a.wav b.wav --rate"}) {
        EXPECT_EQ(Cli(szArgs, &szLog), 64) << szArgs;
        EXPECT_EQ(szLog.rfind("sonitra-cli: convert: ", 0), 0u) << szLog;
    }
    EXPECT_EQ(Cli("convert --help", &szLog), 0);
    EXPECT_NE(szLog.find("--channels 1|2"), std::string::npos);
}

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestSupport.h"

using testsupport::Quote;
using testsupport::RunCli;
using testsupport::HaveTool;
using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;
using testsupport::WriteSimpleWav;

namespace {

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
    EXPECT_EQ(RunCli("info " + dir.File("st.wav") + " " + dir.File("junk.wav") + " " + dir.File("mono8.wav"), &szOut), 2);
    EXPECT_NE(szOut.find("st.wav: WAV PCM 16-bit, 44100 Hz, 2 channels, 66150 frames, 0:00:01.500\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("mono8.wav: WAV PCM 8-bit, 8000 Hz, 1 channel, 8001 frames, 0:00:01.000\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("sonitra-cli: " + dir.File("junk.wav") + ": not a WAV file: no RIFF WAVE chunk found\n"),
              std::string::npos)
        << szOut;
    EXPECT_EQ(RunCli("info " + dir.File("st.wav")), 0);
    EXPECT_EQ(RunCli("info", &szOut), 64);
    EXPECT_NE(szOut.find("no file given"), std::string::npos);
    EXPECT_EQ(RunCli("info --help", &szOut), 0);
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
    EXPECT_EQ(RunCli("info " + dir.File("short.wav") + " " + dir.File("short.wav"), &szOut), 0);
    EXPECT_NE(szOut.find("short.wav: WAV PCM 16-bit, 8000 Hz, 1 channel, 28800000 frames, 1:00:00.000\n" +
                         dir.File("short.wav") +
                         ": the header claims 28800000 frames but the file holds only 400 (0:00:00.050); the "
                         "rest reads as silence\n"),
              std::string::npos)
        << szOut;
    EXPECT_NE(szOut.find("claims", szOut.find("claims") + 1), std::string::npos); // for each file
    WriteSimpleWav(dir.File("ok.wav"), 8000, 1, 16, std::vector<int32_t>(400, 5));
    EXPECT_EQ(RunCli("info " + dir.File("ok.wav"), &szOut), 0);
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
        ASSERT_EQ(RunCli("convert " + szIn + " " + szOut, &szLog), 0) << szLog;
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
    ASSERT_EQ(RunCli("convert " + dir.File("st.wav") + " " + dir.File("mono.wav") + " --channels 1"), 0);
    std::string szInfo;
    RunCommand("sox --i -c " + dir.File("mono.wav"), &szInfo);
    EXPECT_EQ(szInfo, "1\n"); // the mix that goes into it is checked where the channels differ
    ASSERT_EQ(RunCli("convert " + dir.File("mono.wav") + " " + dir.File("l8.wav") + " --bits=8"), 0);
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
    EXPECT_EQ(RunCli("convert " + dir.File("bad.wav") + " " + szOut, &szLog), 2);
    EXPECT_EQ(szLog, "sonitra-cli: " + dir.File("bad.wav") + ": damaged WAV file: no 'fmt ' chunk\n");
    EXPECT_EQ(RunCli("convert " + dir.File("three.wav") + " " + szOut + " --channels 1", &szLog), 2);
    EXPECT_EQ(szLog, "sonitra-cli: " + szOut + ": cannot convert 3 channels to 1\n");
    EXPECT_EQ(ReadFileBytes(szOut), std::vector<uint8_t>(7, 'k'));

    for (const std::string& szBad : {dir.File("none/out.wav"), szIn + "/out.wav"}) {
        EXPECT_EQ(RunCli("convert " + szIn + " " + szBad, &szLog), 2);
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
        EXPECT_EQ(RunCli(szArgs, &szLog), 64) << szArgs;
        EXPECT_EQ(szLog.rfind("sonitra-cli: convert: ", 0), 0u) << szLog;
    }
    EXPECT_EQ(RunCli("convert --help", &szLog), 0);
    EXPECT_NE(szLog.find("--channels 1|2"), std::string::npos);
}

namespace {
void PutBytes(std::vector<uint8_t>& v, uint64_t x, int nBytes, bool bBig)
{
    for (int i = 0; i < nBytes; ++i)
        v.push_back(static_cast<uint8_t>(x >> (8 * (bBig ? nBytes - 1 - i : i))));
}
} // namespace

// About 1 KB of samples under a header that claims 2^31 frames (or the most its size field can
// say): the output holds what the file holds, and the user is told the header claimed more.
TEST(CliConvert, AHeaderClaimingBillionsOfFramesConvertsOnlyWhatIsThere)
{
    TempDir dir;
    std::vector<uint8_t> vSamples;
    for (int i = 0; i < 500; ++i)
        PutBytes(vSamples, static_cast<uint16_t>(i * 50), 2, false);
    std::vector<uint8_t> vWav = {'R', 'I', 'F', 'F'};
    PutBytes(vWav, 0xFFFFFFF0u, 4, false);
    for (const char* sz : {"WAVEfmt "})
        vWav.insert(vWav.end(), sz, sz + 8);
    for (auto [x, n] : {std::pair<uint32_t, int>{16, 4}, {1, 2}, {1, 2}, {8000, 4}, {16000, 4}, {2, 2}, {16, 2}})
        PutBytes(vWav, x, n, false);
    vWav.insert(vWav.end(), {'d', 'a', 't', 'a'});
    PutBytes(vWav, 0x80000000u * 2u - 2u, 4, false); // 2^31 - 1 frames
    vWav.insert(vWav.end(), vSamples.begin(), vSamples.end());

    std::vector<uint8_t> vAu = {'.', 's', 'n', 'd'};
    for (uint32_t x : {24u, 0x7FFFFF00u, 3u, 8000u, 1u})
        PutBytes(vAu, x, 4, true);
    std::vector<uint8_t> vAif = {'F', 'O', 'R', 'M'};
    PutBytes(vAif, 0x7FFFFF40u, 4, true);
    vAif.insert(vAif.end(), {'A', 'I', 'F', 'F', 'C', 'O', 'M', 'M'});
    PutBytes(vAif, 18, 4, true);
    PutBytes(vAif, 1, 2, true);
    PutBytes(vAif, 0x3FFFFF80u, 4, true);
    PutBytes(vAif, 16, 2, true);
    vAif.insert(vAif.end(), {0x40, 0x0B, 0xFA, 0, 0, 0, 0, 0, 0, 0}); // 8000 Hz
    vAif.insert(vAif.end(), {'S', 'S', 'N', 'D'});
    PutBytes(vAif, 0x7FFFFF00u, 4, true);
    PutBytes(vAif, 0, 8, true);
    for (size_t i = 0; i < vSamples.size(); i += 2) {
        for (std::vector<uint8_t>* p : {&vAu, &vAif})
            p->insert(p->end(), {vSamples[i + 1], vSamples[i]});
    }
    const std::pair<const char*, std::vector<uint8_t>> aFiles[] = {
        {"liar.wav", vWav}, {"liar.au", vAu}, {"liar.aif", vAif}};
    for (const auto& [szName, vBytes] : aFiles) {
        SCOPED_TRACE(szName);
        WriteFileBytes(dir.File(szName), vBytes);
        const std::string szOut = dir.File(std::string(szName) + ".wav");
        std::string szLog;
        ASSERT_EQ(RunCli("convert " + Quote(dir.File(szName)) + " " + Quote(szOut), &szLog), 0) << szLog;
        EXPECT_NE(szLog.find("frames but the file holds only 500; converting those"), std::string::npos) << szLog;
        const std::vector<uint8_t> vOut = ReadFileBytes(szOut);
        ASSERT_EQ(vOut.size(), 46u + 1000);
        EXPECT_TRUE(std::equal(vSamples.begin(), vSamples.end(), vOut.begin() + 46));
        // info shows the claim and what is there.
        RunCli("info " + Quote(dir.File(szName)), &szLog);
        EXPECT_NE(szLog.find("the file holds only 500"), std::string::npos) << szLog;
    }
}

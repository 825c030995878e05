// Files that installed programs decode and encode: what comes out equals the programs' own
// decoding, a missing or failing program gives one clear message, and no child outlives its use.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <cstring>
#include <random>
#include <sys/stat.h>

#include "core/LMemorySound.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "formats/LSRCPipeDecoder.h"
#include "support/TestSupport.h"
#include "tests/formats/SaveProcess.h"
#include "work/LProgressDialog.h"

using namespace testsupport;

namespace {

// Every frame of a source as 16-bit values, read the way the loader reads: until the position
// passes the length, which a decoder only knows at its end.
std::vector<int16_t> Decode(LSoundSourceBase& src)
{
    std::vector<int16_t> v;
    std::vector<int32_t> block(4096 * src.GetChannels());
    while (true) {
        src.Read(block.data(), 4096);
        const int64_t sOver = int64_t(src.GetPosition()) - src.GetLength();
        const int64_t nValid = sOver >= 0 ? 4096 - sOver : 4096;
        for (int64_t i = 0; i < nValid * src.GetChannels(); ++i)
            v.push_back(static_cast<int16_t>(block[i] >> 4));
        if (sOver >= 0)
            return v;
    }
}

// What ffmpeg itself makes of a file, as 16-bit samples.
std::vector<int16_t> ToolDecode(const std::string& szCommand)
{
    std::string szOut;
    EXPECT_EQ(RunCommand(szCommand, &szOut), 0) << szCommand;
    std::vector<int16_t> v(szOut.size() / 2);
    std::memcpy(v.data(), szOut.data(), v.size() * 2);
    return v;
}

std::string MakeScript(const TempDir& dir, const std::string& szName, const std::string& szBody)
{
    const std::string szPath = dir.File(szName);
    std::ofstream(szPath) << "#!/bin/sh\n" << szBody << "\n";
    ::chmod(szPath.c_str(), 0755);
    return szPath;
}

// The settings a test changes are put back, so that tests never see each other's components.
struct ComponentPath
{
    ComponentPath(const std::string& szProgram, const std::string& szPath) : szKey(szProgram + "/Path")
    {
        LSettings::SetString("Components", szKey, szPath);
    }
    ~ComponentPath() { LSettings::SetString("Components", szKey, ""); }
    std::string szKey;
};

class ExternalFormat : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!HaveTool("ffmpeg") || !HaveTool("sox"))
            GTEST_SKIP() << "needs ffmpeg and sox";
        szWav = dir.File("src.wav");
        ASSERT_EQ(RunCommand("sox -D -n -r 22050 -c 2 -b 16 '" + szWav + "' synth 1.3 sine 440 pinknoise gain -3"), 0);
    }
    TempDir dir;
    std::string szWav;
};

} // namespace

TEST_F(ExternalFormat, EachFormatOpensToTheToolsOwnDecoding)
{
    const std::pair<std::string, std::string> cases[] = {
        {"a.flac", "ffmpeg -loglevel error -i '%s' '%o'"},
        {"a.ogg", "ffmpeg -loglevel error -i '%s' -c:a libvorbis '%o'"},
        {"a.opus", "ffmpeg -loglevel error -i '%s' -c:a libopus '%o'"},
        {"a.m4a", "ffmpeg -loglevel error -i '%s' -c:a aac '%o'"},
        {"a.wma", "ffmpeg -loglevel error -i '%s' -c:a wmav2 '%o'"},
    };
    for (const auto& [szName, szMake] : cases) {
        const std::string szFile = dir.File(szName);
        std::string szCommand = szMake;
        szCommand.replace(szCommand.find("%s"), 2, szWav);
        szCommand.replace(szCommand.find("%o"), 2, szFile);
        ASSERT_EQ(RunCommand(szCommand), 0) << szCommand;
        std::string szError;
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(szFile, &szError, &details);
        ASSERT_FALSE(p->IsError()) << szName << ": " << szError;
        const int nRate = szName == "a.opus" ? 48000 : 22050;
        EXPECT_EQ(p->GetSampleRate(), nRate) << szName;
        EXPECT_EQ(p->GetChannels(), 2) << szName;
        const std::vector<int16_t> vOurs = Decode(*p);
        // The decoder the module chose, run by hand on the same file.
        std::string szTool = details.szEncoding.substr(details.szEncoding.rfind(' ') + 1);
        const std::string szRef =
            szTool == "flac"     ? "flac -d -c -s --force-raw-format --endian=little --sign=signed '" + szFile + "'"
            : szTool == "oggdec" ? "oggdec -Q -R -o - '" + szFile + "'"
                                 : "ffmpeg -loglevel error -i '" + szFile + "' -vn -f s16le -acodec pcm_s16le -";
        const std::vector<int16_t> vTool = ToolDecode(szRef);
        EXPECT_EQ(vOurs.size(), vTool.size()) << szName;
        EXPECT_TRUE(vOurs == vTool) << szName << " decoded by " << szTool;
        EXPECT_EQ(int64_t(p->GetLength()) * 2, int64_t(vOurs.size())) << szName;
    }
}

TEST_F(ExternalFormat, FlacIsLosslessBothWays)
{
    if (!HaveTool("flac"))
        GTEST_SKIP() << "needs flac";
    const std::string szFlac = dir.File("b.flac");
    LSoundSourcePtr pIn = LAudioFile::OpenSource(szWav);
    SaveProcess save(pIn.Get(), szFlac);
    ASSERT_EQ(save.Run(), 0) << save.szError;
    const std::vector<int16_t> vWav = ToolDecode("sox '" + szWav + "' -t s16 -");
    EXPECT_TRUE(ToolDecode("flac -d -c -s --force-raw-format --endian=little --sign=signed '" + szFlac + "'") == vWav);
    LSoundSourcePtr pBack = LAudioFile::OpenSource(szFlac);
    EXPECT_TRUE(Decode(*pBack) == vWav);
}

TEST_F(ExternalFormat, MissingOrFailingProgramsGiveOneMessageNamingFileProgramAndReason)
{
    const std::string szFile = dir.File("c.wma");
    WriteFileBytes(szFile, std::vector<uint8_t>(100, 0x5A));
    {
        ComponentPath path("ffmpeg", dir.File("none/ffmpeg"));
        const char* szOldPath = std::getenv("PATH");
        const std::string szKeep = szOldPath ? szOldPath : "";
        ::setenv("PATH", dir.Path().c_str(), 1);
        std::string szError;
        LSoundSourcePtr p = LAudioFile::OpenSource(szFile, &szError);
        ::setenv("PATH", szKeep.c_str(), 1);
        EXPECT_TRUE(p->IsError());
        EXPECT_NE(szError.find("'ffmpeg' is not installed"), std::string::npos) << szError;
        EXPECT_NE(szError.find("apt-get install ffmpeg"), std::string::npos) << szError;
    }
    {
        ComponentPath path("ffmpeg", MakeScript(dir, "fails", "echo noise >&2; echo 'c.wma: Invalid data found' >&2; exit 1"));
        std::string szError;
        LSoundSourcePtr p = LAudioFile::OpenSource(szFile, &szError);
        EXPECT_TRUE(p->IsError());
        EXPECT_EQ(szError, "ffmpeg failed: c.wma: Invalid data found");
    }
}

TEST(PipeDecoder, GarbageTruncatedAndEarlyEndingStreamsEndCleanly)
{
    TempDir dir;
    std::mt19937 rng(7);
    // A valid header for 2 channels of 16-bit sound, then whatever follows.
    const std::vector<uint8_t> vHeader = {'R', 'I', 'F', 'F', 0xFF, 0xFF, 0xFF, 0xFF, 'W', 'A', 'V', 'E', 'f', 'm',
                                          't', ' ', 16,  0,   0,   0,   1,    0,    2,    0,    0x44, 0xAC, 0,    0,
                                          0x10, 0xB1, 2, 0,   4,   0,   16,  0,   'd',  'a',  't',  'a',  0xFF, 0xFF,
                                          0xFF, 0xFF};
    for (int i = 0; i < 60; ++i) {
        std::vector<uint8_t> v;
        if (i % 3)
            v.assign(vHeader.begin(), vHeader.begin() + (rng() % (vHeader.size() + 1)));
        const size_t nTail = rng() % 3000;
        for (size_t k = 0; k < nTail; ++k)
            v.push_back(static_cast<uint8_t>(rng()));
        if (i % 7 == 0 && v.size() > 12)
            v[16] = static_cast<uint8_t>(rng()); // a lying format size
        const std::string szPath = dir.File("s" + std::to_string(i));
        WriteFileBytes(szPath, v);
        LSRCPipeDecoder src({"cat", szPath}, "cat", 2000);
        if (src.IsError()) {
            EXPECT_FALSE(src.GetErrorText().empty());
            continue;
        }
        const std::vector<int16_t> vOut = Decode(src);
        EXPECT_LE(vOut.size(), v.size() / 2);
    }
    // A decoder that sends part of its sound and then fails keeps what came, and says why.
    const std::string szPart = dir.File("part");
    std::vector<uint8_t> v = vHeader;
    v.resize(v.size() + 4000, 0x11);
    WriteFileBytes(szPart, v);
    const std::string szFail = MakeScript(dir, "failing", "cat \"$1\"; echo 'disk read error' >&2; exit 2");
    LSRCPipeDecoder failing({szFail, szPart}, "dec", 2000);
    ASSERT_FALSE(failing.IsError());
    EXPECT_EQ(Decode(failing).size(), 2000u);
    EXPECT_TRUE(failing.IsError());
    EXPECT_EQ(failing.GetErrorText(), "dec failed: disk read error");
    // One that hangs without a word is given up on after the idle limit.
    LSRCPipeDecoder hanging({"sleep", "30"}, "sleeper", 200);
    EXPECT_TRUE(hanging.IsError());
}

TEST(PipeDecoder, ALoadCancelledMidStreamLeavesNoChildBehind)
{
    TempDir dir;
    const std::string szPid = dir.File("pid");
    // An endless stream of silence after a valid header.
    const std::string szScript = MakeScript(
        dir, "endless",
        "echo $$ > \"$1\"; printf 'RIFF\\377\\377\\377\\377WAVEfmt \\020\\000\\000\\000\\001\\000\\001\\000"
        "\\100\\037\\000\\000\\200\\076\\000\\000\\002\\000\\020\\000data\\377\\377\\377\\377'; exec cat /dev/zero");
    pid_t pid = 0;
    {
        LSRCPipeDecoder src({szScript, szPid}, "endless", 5000);
        ASSERT_FALSE(src.IsError()) << src.GetErrorText();
        EXPECT_EQ(src.GetSampleRate(), 8000);
        std::vector<int32_t> block(8192);
        for (int i = 0; i < 10; ++i)
            src.Read(block.data(), 8192);
        EXPECT_GT(src.GetLength(), src.GetPosition()); // no end met yet
        std::ifstream(szPid) >> pid;
        ASSERT_GT(pid, 0);
    }
    EXPECT_TRUE(::kill(pid, 0) != 0 && errno == ESRCH);
}

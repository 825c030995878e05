#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "core/LComponents.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "formats/mp3/LMP3EncodePipe.h"
#include "formats/mp3/LMP3EncoderSettings.h"
#include "support/TestSupport.h"

using testsupport::ReadFileBytes;
using testsupport::TempDir;

namespace {

std::string Joined(const std::vector<std::string>& v)
{
    std::string sz;
    for (size_t i = 1; i < v.size(); ++i)
        sz += " " + v[i];
    return sz;
}

// A fresh memory store for each test, restored afterwards.
class Mp3EncoderTest : public ::testing::Test
{
protected:
    void SetUp() override { LSettings::SetStore(&store); }
    void TearDown() override { LSettings::SetStore(nullptr); }
    LMemorySettings store;
};

void WriteScript(const std::string& szPath, const std::string& szBody)
{
    std::ofstream(szPath) << "#!/bin/sh\n" << szBody << "\n";
    ::chmod(szPath.c_str(), 0755);
}

} // namespace

TEST_F(Mp3EncoderTest, ChannelModeFollowsTheChannelsAndTheBitRate)
{
    LMP3EncoderSettings s;
    s.nChannelMode = 3;
    EXPECT_EQ(s.ModeLetter(2), 's'); // mono asked, but two channels arrive
    s.nChannelMode = 1;
    EXPECT_EQ(s.ModeLetter(1), 'm');
    EXPECT_EQ(s.ModeLetter(2), 'j');
    s.nChannelMode = 2;
    EXPECT_EQ(s.ModeLetter(2), 'f');
    s.nChannelMode = 9; // out of range: joint stereo
    EXPECT_EQ(s.ModeLetter(2), 'j');
    s.nChannelMode = 1;
    s.bConstantBitRate = true;
    s.nCBRBitRate = 16; // below 24 kbit/s: mono, which two channels turn back into stereo
    EXPECT_EQ(s.ModeLetter(1), 'm');
    EXPECT_EQ(s.ModeLetter(2), 's');
    s.bConstantBitRate = false;
    s.nVBRMaxBitRate = 16;
    EXPECT_EQ(s.ModeLetter(2), 's');
}

TEST_F(Mp3EncoderTest, CommandLineIsBuiltPieceByPiece)
{
    LMP3EncoderSettings s;
    s.bConstantBitRate = true;
    s.nCBRBitRate = 192;
    s.bHighQuality = true;
    s.bErrorProtection = true;
    std::vector<std::string> v = s.CommandLine("/opt/enc/lame", 2, 44100, "/tmp/out file.mp3");
    EXPECT_EQ(v.front(), "/opt/enc/lame");
    EXPECT_EQ(v.back(), "/tmp/out file.mp3"); // one argument, spaces and all
    EXPECT_EQ(Joined(v), " -m j -p -b 192 -h -r -x -s 44.100 -S - /tmp/out file.mp3");
    s.bConstantBitRate = false;
    s.bErrorProtection = false;
    s.nVBRMinBitRate = 40;
    s.nVBRMaxBitRate = 256;
    s.nVBRQuality = 2;
    EXPECT_EQ(Joined(s.CommandLine("lame", 1, 8000, "o.mp3")), " -m m -v -b 40 -B 256 -V 2 -r -x -s 8.000 -S - o.mp3");
    EXPECT_NE(Joined(s.CommandLine("lame", 2, 22050, "o.mp3")).find(" -s 22.050 "), std::string::npos);
}

TEST_F(Mp3EncoderTest, SettingsLoadWithTheirDefaultsAndTheMinimumRule)
{
    LMP3EncoderSettings s = LMP3EncoderSettings::Load();
    EXPECT_FALSE(s.bConstantBitRate);
    EXPECT_EQ(s.nCBRBitRate, 128);
    EXPECT_TRUE(s.bHighQuality);
    EXPECT_EQ(s.nVBRMinBitRate, 32);
    EXPECT_EQ(s.nVBRMaxBitRate, 128);
    EXPECT_EQ(s.nVBRQuality, 4);
    EXPECT_FALSE(s.bErrorProtection);
    EXPECT_EQ(s.nChannelMode, 1);
    LSettings::SetInt("MP3Encoder", "VBRMinBitRate", 8);
    LSettings::SetInt("MP3Encoder", "VBRMaxBitRate", 160);
    EXPECT_EQ(LMP3EncoderSettings::Load().nVBRMinBitRate, 8);
    LSettings::SetInt("MP3Encoder", "VBRMaxBitRate", 161);
    EXPECT_EQ(LMP3EncoderSettings::Load().nVBRMinBitRate, 32);
    // A save's record carries the settings; an empty one means the stored settings.
    s.bConstantBitRate = true;
    s.nCBRBitRate = 96;
    s.nChannelMode = 2;
    const LMP3EncoderSettings t = LMP3EncoderSettings::FromRecord(s.ToRecord());
    EXPECT_TRUE(t.bConstantBitRate);
    EXPECT_EQ(t.nCBRBitRate, 96);
    EXPECT_EQ(t.nChannelMode, 2);
    EXPECT_EQ(LMP3EncoderSettings::FromRecord({}).nVBRMaxBitRate, 161);
}

TEST_F(Mp3EncoderTest, AnEncoderOnThePathIsRegisteredAndUsedAndNoneIsNamedByItsPackage)
{
    TempDir dir;
    const std::string szOldPath = std::getenv("PATH") ? std::getenv("PATH") : "";
    ::mkdir(dir.File("bin").c_str(), 0755);
    ::setenv("PATH", dir.File("bin").c_str(), 1);
    // Nothing registered and nothing on the PATH: no sink, and the reason names the package.
    std::string szError;
    LSoundSinkPtr p = LAudioFile::OpenSink(dir.File("a.mp3"), 44100, 2, LAudioEncoding(), &szError);
    EXPECT_FALSE(p);
    EXPECT_NE(szError.find("the MP3 encoder (lame) is not installed"), std::string::npos) << szError;
    EXPECT_NE(szError.find("apt-get install lame"), std::string::npos) << szError;
    EXPECT_FALSE(LFile::Exists(dir.File("a.mp3")));
    EXPECT_TRUE(LMP3EncodePipe(dir.File("b.mp3"), LMP3EncoderSettings(), 2, 44100).IsError());
    // A "lame" on the PATH becomes the component and writes the file.
    WriteScript(dir.File("bin/lame"), "for a in \"$@\"; do last=\"$a\"; done\ncat > \"$last\"");
    p = LAudioFile::OpenSink(dir.File("c.mp3"), 44100, 2, LAudioEncoding(), &szError);
    EXPECT_TRUE(p);
    p.Reset();
    EXPECT_EQ(LComponents::GetPath(LComponents::kMp3Encoder), dir.File("bin/lame"));
    EXPECT_TRUE(LFile::Exists(dir.File("c.mp3")));
    // A registered program that has gone away gives way to the one on the PATH.
    LComponents::SetPath(LComponents::kMp3Encoder, dir.File("gone/lame"));
    EXPECT_EQ(LComponents::Resolve(LComponents::kMp3Encoder), dir.File("bin/lame"));
    ::setenv("PATH", szOldPath.c_str(), 1);
}

TEST_F(Mp3EncoderTest, EncoderGetsTheArgumentsAndBigEndianSamples)
{
    TempDir dir;
    const std::string szFake = dir.File("fake-lame");
    WriteScript(szFake, "for a in \"$@\"; do echo \"$a\"; done > '" + dir.File("args") + "'\ncat > '" + dir.File("pcm") + "'");
    LComponents::SetPath(LComponents::kMp3Encoder, szFake);
    {
        LMP3EncodePipe pipe(dir.File("out.mp3"), LMP3EncoderSettings(), 2, 22050);
        ASSERT_FALSE(pipe.IsError());
        const int32_t a[] = {0x100 * 16, -16, 0x7FFF0, -0x80000};
        pipe.Write(a, 2);
        EXPECT_EQ(pipe.GetPosition(), 2);
    } // closing waits for the encoder
    EXPECT_EQ(ReadFileBytes(dir.File("pcm")), (std::vector<uint8_t>{0x01, 0x00, 0xFF, 0xFF, 0x7F, 0xFF, 0x80, 0x00}));
    std::string szArgs;
    testsupport::RunCommand("tr '\\n' ' ' < '" + dir.File("args") + "'", &szArgs);
    EXPECT_EQ(szArgs, "-m j -v -b 32 -B 128 -V 4 -r -x -s 22.050 -S - " + dir.File("out.mp3") + " ");
}

TEST_F(Mp3EncoderTest, ClosingEndsAHangingEncoder)
{
    TempDir dir;
    const std::string szFake = dir.File("hang");
    WriteScript(szFake, "echo $$ > '" + dir.File("pid") + "'\nexec sleep 60");
    LComponents::SetPath(LComponents::kMp3Encoder, szFake);
    {
        LMP3EncodePipe pipe(dir.File("out.mp3"), LMP3EncoderSettings(), 1, 8000);
        ASSERT_FALSE(pipe.IsError());
        std::vector<int32_t> v(100, 1000);
        pipe.Write(v.data(), 100); // fits in the connection although nobody reads
        for (int i = 0; i < 500 && !LFile::Exists(dir.File("pid")); ++i)
            ::usleep(10000);
    } // returns after the wait, having ended the encoder
    std::string szPid;
    testsupport::RunCommand("cat '" + dir.File("pid") + "'", &szPid);
    const pid_t pid = static_cast<pid_t>(std::atoi(szPid.c_str()));
    ASSERT_GT(pid, 0);
    EXPECT_EQ(::kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH); // gone and reaped
}

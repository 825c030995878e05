#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>
#include <sys/stat.h>

#include "support/CliTest.h"

using testsupport::HaveTool;
using testsupport::RunCommand;

namespace {

class Mp3Cli : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
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
};

} // namespace

TEST_F(Mp3Cli, WithoutAnEncoderTheConversionFailsNamingThePackageAndWritesNothing)
{
    std::string szOut;
    ::mkdir(dir.File("no-programs").c_str(), 0755);
    szEnv += "PATH=" + dir.File("no-programs") + " ";
    EXPECT_EQ(Cli("convert '" + dir.File("in.wav") + "' '" + dir.File("out.mp3") + "'", &szOut), 2);
    EXPECT_NE(szOut.find("the MP3 encoder (lame) is not installed"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("apt-get install lame"), std::string::npos) << szOut;
    std::string szList;
    RunCommand("ls -A '" + dir.Path() + "'", &szList);
    EXPECT_EQ(szList.find("out.mp3"), std::string::npos) << szList; // nor a part file
}

TEST_F(Mp3Cli, ConvertsThroughTheLameOnThePathAndReadsTheResultBackWithItsLength)
{
    if (!HaveTool("lame") || !HaveTool("mpg123"))
        GTEST_SKIP() << "lame and mpg123 are needed";
    // Nothing registered: the lame on the PATH is found, used and registered.
    std::string szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("in.wav") + "' '" + dir.File("out.mp3") + "'", &szOut), 0) << szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("mono22.wav") + "' '" + dir.File("mono.mp3") + "'", &szOut), 0) << szOut;
    std::string szConfig;
    RunCommand("cat '" + dir.File("config/Korvane/Sonitra.conf") + "'", &szConfig);
    EXPECT_NE(szConfig.find("mp3el\\Path=/"), std::string::npos) << szConfig;
    // mpg123 takes the encoder's delay and padding off with its tag: the lengths come out exact.
    auto Mpg123 = [](const std::string& szArgs) {
        std::string sz;
        RunCommand("mpg123 " + szArgs + " 2>&1", &sz);
        return sz;
    };
    EXPECT_EQ(Mpg123("-q -s '" + dir.File("out.mp3") + "'").size(), 44100u * 4);
    EXPECT_EQ(Mpg123("-q -s '" + dir.File("mono.mp3") + "'").size(), 33075u * 2);
    EXPECT_NE(Mpg123("-t '" + dir.File("mono.mp3") + "'").find("22050 mono"), std::string::npos);
    const std::string szStereo = Mpg123("-t '" + dir.File("out.mp3") + "'");
    EXPECT_NE(szStereo.find("vbr 44100 "), std::string::npos) << szStereo;
    EXPECT_EQ(szStereo.find(" mono"), std::string::npos) << szStereo;

    // Our own reading of them: the same lengths, and an edit that goes MP3 to WAV.
    ASSERT_EQ(Cli("info '" + dir.File("mono.mp3") + "'", &szOut), 0);
    EXPECT_NE(szOut.find("MP3 MPEG-2 Layer III, VBR (about "), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("22050 Hz, 1 channel, 33075 frames"), std::string::npos) << szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("out.mp3") + "' '" + dir.File("back.wav") + "'", &szOut), 0) << szOut;
    ASSERT_EQ(Cli("info '" + dir.File("back.wav") + "'", &szOut), 0);
    EXPECT_NE(szOut.find("44100 Hz, 2 channels, 44100 frames"), std::string::npos) << szOut;
}

TEST_F(Mp3Cli, InfoGivesTheLengthOfTheAudioNotOfTheTags)
{
    if (!HaveTool("lame"))
        GTEST_SKIP() << "lame is needed";
    ASSERT_EQ(RunCommand("lame --quiet -b 128 '" + dir.File("in.wav") + "' '" + dir.File("a.mp3") + "'"), 0);
    // 100 KB of cover art in an ID3v2 tag, and an ID3v1 tag at the end.
    std::vector<uint8_t> v = {'I', 'D', '3', 3, 0, 0, 0, 6, 0x0D, 0x20}; // 100,000 bytes of tag body
    uint32_t nSeed = 3;
    for (int i = 0; i < 100000; ++i)
        v.push_back(static_cast<uint8_t>((nSeed = nSeed * 1103515245u + 12345u) >> 24));
    const std::vector<uint8_t> vAudio = testsupport::ReadFileBytes(dir.File("a.mp3"));
    v.insert(v.end(), vAudio.begin(), vAudio.end());
    v.insert(v.end(), {'T', 'A', 'G'});
    v.resize(v.size() + 125, ' ');
    testsupport::WriteFileBytes(dir.File("tagged.mp3"), v);
    std::string szOut;
    ASSERT_EQ(Cli("info '" + dir.File("tagged.mp3") + "'", &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("44100 Hz, 2 channels, 44100 frames, 0:00:01.000"), std::string::npos) << szOut;
    // Noise named .mp3 is no audio at all.
    testsupport::WriteFileBytes(dir.File("noise.mp3"), std::vector<uint8_t>(v.begin() + 10, v.begin() + 30010));
    EXPECT_EQ(Cli("info '" + dir.File("noise.mp3") + "'", &szOut), 2);
    EXPECT_NE(szOut.find("no MPEG Layer III frame"), std::string::npos) << szOut;
    EXPECT_EQ(Cli("convert '" + dir.File("noise.mp3") + "' '" + dir.File("noise.wav") + "'", &szOut), 2);
}

TEST_F(Mp3Cli, ALoudMasterIsLimitedNotWrappedOnTheWayToSixteenBits)
{
    if (!HaveTool("lame") || !HaveTool("mpg123"))
        GTEST_SKIP() << "lame and mpg123 are needed";
    // Mastered past full scale: the encoder is told to scale its input up, so that its peaks
    // decode above what 16 bits hold.
    std::vector<int32_t> vLoud;
    for (int i = 0; i < 44100; ++i) {
        const double f = 0.7 * std::sin(2 * M_PI * 220 * i / 44100.0) + 0.2 * std::sin(2 * M_PI * 3300 * i / 44100.0);
        const int32_t n = static_cast<int32_t>(std::lround(f * 32767));
        vLoud.push_back(n);
        vLoud.push_back(-n);
    }
    testsupport::WriteSimpleWav(dir.File("loud.wav"), 44100, 2, 16, vLoud);
    ASSERT_EQ(RunCommand("lame --quiet -b 192 --scale 1.5 '" + dir.File("loud.wav") + "' '" + dir.File("loud.mp3") + "'"),
              0);
    std::string szOut;
    ASSERT_EQ(Cli("convert '" + dir.File("loud.mp3") + "' '" + dir.File("back.wav") + "'", &szOut), 0) << szOut;
    const std::vector<int16_t> vOurs = testsupport::ReadWavSamples16(dir.File("back.wav"));
    std::string szRef;
    RunCommand("mpg123 -q -s '" + dir.File("loud.mp3") + "' 2>/dev/null", &szRef);
    ASSERT_EQ(vOurs.size() * 2, szRef.size());
    int nWrapped = 0, nClipped = 0;
    for (size_t i = 0; i < vOurs.size(); ++i) {
        const int16_t r = static_cast<int16_t>(static_cast<uint8_t>(szRef[2 * i]) | (static_cast<uint8_t>(szRef[2 * i + 1]) << 8));
        nClipped += std::abs(r) >= 32767;
        nWrapped += std::abs(r) > 16384 && (r > 0) != (vOurs[i] > 0);
    }
    EXPECT_GT(nClipped, 0); // the decoding does go past full scale
    EXPECT_EQ(nWrapped, 0);
}

// convert --format and info's names for compressed and wide WAV; a file keeps its encoding
// when converted without one.
#include <gtest/gtest.h>

#include "support/TestSupport.h"

using testsupport::RunCli;
using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteSimpleWav;

namespace {

// The format record of a WAV file we wrote (it follows "fmt " and its size at once).
std::vector<uint8_t> RecordOf(const std::string& szPath)
{
    const std::vector<uint8_t> v = ReadFileBytes(szPath);
    if (v.size() < 38)
        return {};
    const size_t nSize = v[16] | (v[17] << 8);
    return std::vector<uint8_t>(v.begin() + 20, v.begin() + 20 + static_cast<long>(std::min(nSize, v.size() - 20)));
}

} // namespace

TEST(CliConvertFormat, WritesEachEncodingAndInfoNamesIt)
{
    TempDir dir;
    const std::string szIn = dir.File("in.wav");
    WriteSimpleWav(szIn, 22050, 2, 16, testsupport::Sine16(22050, 2, 22050, 440));
    const std::pair<const char*, const char*> cases[] = {
        {"pcm8", "PCM 8-bit"},           {"pcm16", "PCM 16-bit"},       {"pcm24", "PCM 24-bit"},
        {"pcm32", "PCM 32-bit"},         {"float", "IEEE float 32-bit"}, {"float64", "IEEE float 64-bit"},
        {"ima", "IMA ADPCM"},            {"msadpcm", "MS ADPCM"},
    };
    for (const auto& [szEncoding, szName] : cases) {
        const std::string szOut = dir.File(std::string(szEncoding) + ".wav");
        std::string szLog;
        ASSERT_EQ(RunCli("convert " + szIn + " " + szOut + " --format wav:" + szEncoding, &szLog), 0) << szLog;
        ASSERT_EQ(RunCli("info " + szOut, &szLog), 0);
        EXPECT_NE(szLog.find(std::string(": WAV ") + szName + ", 22050 Hz, 2 channels, "), std::string::npos) << szLog;
    }
    // The ADPCM encodings hold at most two channels: a third is mixed away on the way.
    std::string szLog;
    WriteSimpleWav(dir.File("three.wav"), 8000, 3, 16, std::vector<int32_t>(3 * 800, 100));
    EXPECT_EQ(RunCli("convert " + dir.File("three.wav") + " " + dir.File("three-ima.wav") + " --format=wav:ima", &szLog),
              2);
    EXPECT_NE(szLog.find("cannot convert 3 channels to 2"), std::string::npos) << szLog;
}

TEST(CliConvertFormat, AFileKeepsItsEncodingUnlessAskedOtherwise)
{
    TempDir dir;
    const std::string szIn = dir.File("in.wav");
    WriteSimpleWav(szIn, 8000, 1, 16, testsupport::Sine16(8000, 1, 8000, 300));
    ASSERT_EQ(RunCli("convert " + szIn + " " + dir.File("ms.wav") + " --format wav:msadpcm"), 0);
    ASSERT_EQ(RunCli("convert " + dir.File("ms.wav") + " " + dir.File("again.wav")), 0);
    EXPECT_EQ(RecordOf(dir.File("again.wav")), RecordOf(dir.File("ms.wav")));
    // Another rate makes a record of the same kind for that rate.
    ASSERT_EQ(RunCli("convert " + dir.File("ms.wav") + " " + dir.File("ms22.wav") + " --rate 22050"), 0);
    std::string szLog;
    RunCli("info " + dir.File("ms22.wav"), &szLog);
    EXPECT_NE(szLog.find("WAV MS ADPCM, 22050 Hz, 1 channel,"), std::string::npos) << szLog;
    const std::vector<uint8_t> v22 = RecordOf(dir.File("ms22.wav"));
    ASSERT_GE(v22.size(), 14u);
    EXPECT_EQ(v22[12] | (v22[13] << 8), 512); // the usual block for 22050 Hz
    ASSERT_EQ(RunCli("convert " + dir.File("ms.wav") + " " + dir.File("pcm.wav") + " --bits 16"), 0);
    RunCli("info " + dir.File("pcm.wav"), &szLog);
    EXPECT_NE(szLog.find("WAV PCM 16-bit"), std::string::npos) << szLog;
}

TEST(CliConvertFormat, BadFormatsAreUsageErrors)
{
    TempDir dir;
    const std::string szIn = dir.File("in.wav");
    WriteSimpleWav(szIn, 8000, 1, 16, std::vector<int32_t>(100, 5));
    std::string szLog;
    EXPECT_EQ(RunCli("convert " + szIn + " " + dir.File("o.wav") + " --format wav:mp3", &szLog), 64);
    EXPECT_NE(szLog.find("WAV has no encoding 'mp3' (known: pcm16, pcm8, pcm24"), std::string::npos) << szLog;
    EXPECT_EQ(RunCli("convert " + szIn + " " + dir.File("o.wav") + " --format ima", &szLog), 64);
    EXPECT_NE(szLog.find("--format takes FORMAT:ENCODING, e.g. wav:ima"), std::string::npos) << szLog;
    EXPECT_EQ(RunCli("convert " + szIn + " " + dir.File("o.wav") + " --format wav:ima --bits 8", &szLog), 64);
    EXPECT_NE(szLog.find("--bits and --format cannot be given together"), std::string::npos) << szLog;
    EXPECT_FALSE(testsupport::RunCommand("test -e " + dir.File("o.wav")) == 0);
}

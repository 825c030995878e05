#include <gtest/gtest.h>

#include <filesystem>

#include "support/CliTest.h"

using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;

namespace {

class RawOptions : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        testsupport::WriteSimpleWav(In(), 8000, 2, 16, testsupport::Sine16(8000, 2, 8000, 440.0, 8000.0));
    }
    std::string In() const { return dir.File("in.wav"); }
    void Store(const std::string& szLines)
    {
        std::filesystem::create_directories(dir.File("config/Korvane"));
        testsupport::WriteFileBytes(dir.File("config/Korvane/Sonitra.conf"),
                                    std::vector<uint8_t>(szLines.begin(), szLines.end()));
    }
};

} // namespace

TEST_F(RawOptions, OptionsChooseTheLayoutOfEveryVerb)
{
    const std::string szRaw = dir.File("out.raw");
    ASSERT_EQ(Cli("convert " + In() + " " + szRaw + " --raw-format s16be --raw-rate 16000 --raw-channels 2"), 0);
    // One second at 16000 Hz, two channels of two bytes.
    EXPECT_EQ(ReadFileBytes(szRaw).size(), 16000u * 4);
    std::string szOut;
    ASSERT_EQ(Cli("info --raw-format=6 --raw-rate=16000 --raw-channels=2 " + szRaw, &szOut), 0);
    EXPECT_NE(szOut.find("out.raw: RAW 16 bit PCM (BE), 16000 Hz, 2 channels, 16000 frames"), std::string::npos) << szOut;
    ASSERT_EQ(Cli("info --raw-format u8 --raw-rate 32000 " + szRaw, &szOut), 0);
    EXPECT_NE(szOut.find("out.raw: RAW 8 bit unsigned, 32000 Hz, 1 channel, 64000 frames"), std::string::npos) << szOut;

    // Without options the stored values hold: here the defaults, Dialogic ADPCM at 8000 Hz.
    const std::string szVox = dir.File("out.vox");
    ASSERT_EQ(Cli("convert " + In() + " " + szVox), 0);
    EXPECT_EQ(ReadFileBytes(szVox).size(), 4000u);
    ASSERT_EQ(Cli("info " + szVox, &szOut), 0);
    EXPECT_NE(szOut.find("out.vox: VOX Dialogic ADPCM, 8000 Hz, 1 channel, 8000 frames"), std::string::npos) << szOut;
    // Edits go through the same door.
    ASSERT_EQ(Cli("edit " + szRaw + " " + dir.File("cut.au") + " --raw-format s16be --raw-rate 16000 --raw-channels 2 "
                  "delete=0,8000", &szOut), 0) << szOut;
    ASSERT_EQ(Cli("info " + dir.File("cut.au"), &szOut), 0);
    EXPECT_NE(szOut.find("cut.au: AU PCM 16-bit, 16000 Hz, 2 channels, 8000 frames"), std::string::npos) << szOut;
}

TEST_F(RawOptions, StoredValuesAreTheFallbackAndStayAsStored)
{
    Store("[Settings]\nVoxRawFileFormat=1\nVoxRawSampleRate=11025\nVoxRawFileChannels=2\n");
    const std::string szRaw = dir.File("out.raw");
    ASSERT_EQ(Cli("convert " + In() + " " + szRaw), 0);
    EXPECT_EQ(ReadFileBytes(szRaw).size(), 11025u * 2);
    std::string szOut;
    ASSERT_EQ(Cli("info " + szRaw + " --raw-rate 22050", &szOut), 0);
    EXPECT_NE(szOut.find("out.raw: RAW G711 uLaw, 22050 Hz, 2 channels, 11025 frames"), std::string::npos) << szOut;
    ASSERT_EQ(Cli("info " + szRaw, &szOut), 0);
    EXPECT_NE(szOut.find("out.raw: RAW G711 uLaw, 11025 Hz, 2 channels, 11025 frames"), std::string::npos) << szOut;
    // A ".vox" file is one channel whatever is stored.
    ASSERT_EQ(Cli("convert " + In() + " " + dir.File("a.vox") + " --raw-format alaw", &szOut), 0);
    EXPECT_EQ(ReadFileBytes(dir.File("a.vox")).size(), 11025u);
}

TEST_F(RawOptions, BadValuesAreRefused)
{
    const std::pair<std::string, std::string> aCases[] = {
        {"--raw-format 7", "--raw-format takes vox, ulaw, alaw, s16le, u8, s8, s16be or 0 to 6, not '7'"},
        {"--raw-format pcm", "not 'pcm'"},
        {"--raw-rate 999", "--raw-rate takes 1000 to 196000 Hz, not '999'"},
        {"--raw-channels 0", "--raw-channels takes 1 to 8, not '0'"},
        {"--raw-channels", "--raw-channels needs a value"},
    };
    for (const auto& [szArgs, szMessage] : aCases) {
        std::string szOut;
        EXPECT_EQ(Cli("info " + In() + " " + szArgs, &szOut), 64) << szArgs;
        EXPECT_NE(szOut.find(szMessage), std::string::npos) << szOut;
    }
    std::string szHelp;
    ASSERT_EQ(Cli("convert --help", &szHelp), 0);
    EXPECT_NE(szHelp.find("--raw-format F"), std::string::npos);
}

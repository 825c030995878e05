// Speech through espeak-ng.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/engine/LTextToSpeech.h"
#include "support/TestSupport.h"

using namespace testsupport;

TEST(TextToSpeech, SpeaksIntoAWavFile)
{
    if (!HaveTool("espeak-ng"))
        GTEST_SKIP() << "espeak-ng is not installed";
    TempDir dir;
    const std::string szWav = dir.File("speech; $(x).wav");
    std::string szError;
    // A text that looks like options is still only text.
    ASSERT_TRUE(LTextToSpeech::Speak("-v de --help Hello there.", "en", 200, szWav, szError)) << szError;
    EXPECT_GT(std::filesystem::file_size(szWav), 10000u);
    EXPECT_FALSE(std::filesystem::exists(szWav + ".txt"));
}

TEST(TextToSpeech, RefusesBadRequestsAndSaysWhenTheProgramIsMissing)
{
    TempDir dir;
    std::string szError;
    EXPECT_FALSE(LTextToSpeech::Speak("  \n", "en", 175, dir.File("a.wav"), szError));
    EXPECT_EQ(szError, "Type or paste the text to speak.");
    EXPECT_FALSE(LTextToSpeech::Speak("Hi", "--help", 175, dir.File("a.wav"), szError));
    EXPECT_FALSE(LTextToSpeech::Speak("Hi", "en", 20, dir.File("a.wav"), szError));
    EXPECT_TRUE(LTextToSpeech::IsVoiceName("en-us+f3"));
    EXPECT_FALSE(LTextToSpeech::IsVoiceName("en us"));
    const char* szPath = std::getenv("PATH");
    const std::string szOld = szPath ? szPath : "";
    setenv("PATH", dir.Path().c_str(), 1);
    const bool bSpoke = LTextToSpeech::Speak("Hi", "en", 175, dir.File("a.wav"), szError);
    setenv("PATH", szOld.c_str(), 1);
    EXPECT_FALSE(bSpoke);
    EXPECT_EQ(szError, LTextToSpeech::kMsgMissing);
}

// The text goes through a helper file in the temporary folder, which an unusable $TMPDIR does not
// stop, and which is gone afterwards.
TEST(TextToSpeech, SpeaksWithAMissingTemporaryFolderAndLeavesNoTextBehind)
{
    if (!HaveTool("espeak-ng"))
        GTEST_SKIP() << "espeak-ng is not installed";
    TempDir dir;
    const char* szOld = std::getenv("TMPDIR");
    const std::string szSaved = szOld ? szOld : "";
    setenv("TMPDIR", dir.File("missing").c_str(), 1);
    std::string szError;
    const bool bSpoke = LTextToSpeech::Speak("Hello.", "en", 200, dir.File("a.wav"), szError);
    setenv("TMPDIR", dir.Path().c_str(), 1);
    const bool bSpokeHere = LTextToSpeech::Speak("Hello.", "en", 200, dir.File("b.wav"), szError);
    if (szOld)
        setenv("TMPDIR", szSaved.c_str(), 1);
    else
        unsetenv("TMPDIR");
    EXPECT_TRUE(bSpoke) << szError;
    EXPECT_TRUE(bSpokeHere) << szError;
    size_t nFiles = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(dir.Path()))
        ++nFiles;
    EXPECT_EQ(nFiles, 2u) << "only the two WAV files";
}

// The play, record and devices verbs on the virtual device (SONITRA_AUDIO_DEVICE=virtual),
// run twenty times faster than real time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/LAudioFile.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {
const std::string kVirtual = "SONITRA_AUDIO_DEVICE=virtual SONITRA_VIRTUAL_SPEED=20 ";

int Cli(const std::string& szArgs, std::string* pOut = nullptr, const std::string& szEnv = kVirtual)
{
    return RunCommand(szEnv + SONITRA_CLI_PATH + " " + szArgs + " 2>&1", pOut);
}

bool Contains(const std::string& s, const std::string& szPart)
{
    return s.find(szPart) != std::string::npos;
}
} // namespace

TEST(DevicesVerb, ListsOutputsAndInputsWithTheDefaultFirst)
{
    std::string szOut;
    ASSERT_EQ(Cli("devices", &szOut), 0) << szOut;
    EXPECT_TRUE(Contains(szOut, "output devices (virtual):\n   0  [Default Sound Out]\n   1  Virtual Sound Out"))
        << szOut;
    EXPECT_TRUE(Contains(szOut, "input devices (virtual):\n   0  [Default Sound In]\n   1  Virtual Sound In")) << szOut;
    EXPECT_EQ(Cli("devices extra"), 64);
}

TEST(PlayVerb, PlaysToTheEndFromTheGivenTime)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 2, 16, Sine16(8000, 2, 16000, 440));
    std::string szOut;
    ASSERT_EQ(Cli("play " + dir.File("a.wav") + " --from 0.5", &szOut), 0) << szOut;
    EXPECT_TRUE(Contains(szOut, "played " + dir.File("a.wav") + " at 0:00:02.000")) << szOut;
    ASSERT_EQ(Cli("play " + dir.File("a.wav") + " --from 0:01.900 --device 1", &szOut), 0) << szOut;
}

TEST(PlayVerb, RefusesWhatItCannotPlay)
{
    TempDir dir;
    WriteSimpleWav(dir.File("a.wav"), 8000, 1, 16, Sine16(8000, 1, 800, 440));
    std::string szOut;
    EXPECT_EQ(Cli("play " + dir.File("a.wav") + " --device 5", &szOut), 2);
    EXPECT_TRUE(Contains(szOut, "Please check that you have selected the correct sound player device using "
                                "Settings. Open Settings using File->Settings"))
        << szOut;
    EXPECT_EQ(Cli("play " + dir.File("missing.wav"), &szOut), 2);
    EXPECT_EQ(Cli("play " + dir.File("a.wav") + " --from 5", &szOut), 64);
    EXPECT_EQ(Cli("play " + dir.File("a.wav") + " --from soon", &szOut), 64);
    EXPECT_EQ(Cli("play", &szOut), 64);
}

TEST(RecordVerb, RecordsTheInputUpToTheMaximumTime)
{
    TempDir dir;
    std::string szOut;
    ASSERT_EQ(Cli("record " + dir.File("r.wav") + " --max 1.25 --rate 8000 --channels 1", &szOut,
                  kVirtual + "SONITRA_VIRTUAL_TONE=500 "),
              0)
        << szOut;
    EXPECT_TRUE(Contains(szOut, "0:00:01.250")) << szOut;
    std::string szError;
    LSoundSourcePtr pRec = LAudioFile::OpenSource(dir.File("r.wav"), &szError);
    ASSERT_FALSE(pRec->IsError()) << szError;
    EXPECT_EQ(pRec->GetSampleRate(), 8000);
    EXPECT_EQ(pRec->GetChannels(), 1);
    ASSERT_EQ(pRec->GetLength(), 10000);
    std::vector<int32_t> v(10000);
    pRec->Read(v.data(), 10000);
    int32_t nPeak = 0;
    for (size_t i = 8000; i < v.size(); ++i)
        nPeak = std::max(nPeak, std::abs(v[i]));
    EXPECT_NEAR(nPeak, 16383 * 16, 400 * 16); // the tone, through the DC filter
}

TEST(RecordVerb, VoiceActivatedKeepsOnlyWhatIsLoud)
{
    TempDir dir;
    std::string szOut;
    // Silence never reaches -20 dB: the recorder waits until Ctrl+C, and nothing is kept.
    // The interrupt handler is in place before the output file is created, so the Ctrl+C waits for the file.
    const std::string szRecord = kVirtual + SONITRA_CLI_PATH + " record " + dir.File("q.wav") +
                                 " --max 1 --rate 8000 --channels 2 --voice -20";
    const std::string szScript = szRecord + " > " + dir.File("q.log") + " 2>&1 & pid=$!; " +
                                 "for i in $(seq 300); do [ -e " + dir.File("q.wav") +
                                 " ] && break; sleep 0.05; done; sleep 0.3; kill -INT $pid; wait $pid";
    ASSERT_EQ(RunCommand("bash -c '" + szScript + "'", &szOut), 0) << szOut;
    LSoundSourcePtr pRec = LAudioFile::OpenSource(dir.File("q.wav"));
    EXPECT_FALSE(pRec->IsError());
    EXPECT_EQ(pRec->GetLength(), 0);
    // A tone is loud from the start.
    ASSERT_EQ(Cli("record " + dir.File("t.wav") + " --max 1 --rate 8000 --channels 2 --voice -20", &szOut,
                  kVirtual + "SONITRA_VIRTUAL_TONE=500 "),
              0)
        << szOut;
    pRec = LAudioFile::OpenSource(dir.File("t.wav"));
    EXPECT_EQ(pRec->GetChannels(), 2);
    EXPECT_EQ(pRec->GetLength(), 8000);
    EXPECT_EQ(Cli("record " + dir.File("x.wav") + " --channels 3"), 64);
    EXPECT_EQ(Cli("record " + dir.File("x.wav") + " --device 4 --max 1"), 2);
}

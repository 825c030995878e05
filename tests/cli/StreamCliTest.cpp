// Effects and batches that stream from file to file: they write what the document path writes,
// and one that meets a failing write mid-stream (the file size limit, with SIGXFSZ ignored so that
// writes fail) leaves the old target byte for byte and no partial output beside it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/CliTest.h"

using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

constexpr int kLimitKb = 64;

class StreamCli : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        // 4 s of 22050 Hz stereo: 350 KB of output, far past the limit.
        testsupport::WriteSimpleWav(dir.File("in.wav"), 22050, 2, 16, testsupport::Sine16(22050, 2, 4 * 22050, 440.0));
        std::filesystem::create_directories(dir.File("out"));
    }
    // Runs the tool under the file size limit; returns its exit status, with what it said in *pLog.
    int LimitedCli(const std::string& szArgs, std::string* pLog)
    {
        return RunCommand(szEnv + "bash -c 'trap \"\" XFSZ; ulimit -f " + std::to_string(kLimitKb) +
                              "; exec \"$0\" \"$@\"' '" SONITRA_CLI_PATH "' " + szArgs + " 2>&1 </dev/null",
                          pLog);
    }
    std::vector<std::string> FilesInOut() const
    {
        std::vector<std::string> v;
        for (const auto& e : std::filesystem::directory_iterator(dir.File("out")))
            v.push_back(e.path().filename().string());
        return v;
    }

    const std::vector<uint8_t> vOld = std::vector<uint8_t>(3000, 'o');
};

} // namespace

TEST_F(StreamCli, AFailingWriteKeepsTheOldTargetOfAnEffect)
{
    for (const std::string szEffect : {"echo", "normalize", "reverse", "equalizer Points=100:6,1000:-3"}) {
        SCOPED_TRACE(szEffect);
        const std::string szOut = dir.File("out/in.wav");
        WriteFileBytes(szOut, vOld);
        std::string szLog;
        EXPECT_EQ(LimitedCli("effect '" + dir.File("in.wav") + "' '" + szOut + "' " + szEffect, &szLog), 2) << szLog;
        EXPECT_NE(szLog.find("writing the file failed"), std::string::npos) << szLog;
        EXPECT_EQ(ReadFileBytes(szOut), vOld);
        EXPECT_EQ(FilesInOut(), std::vector<std::string>{"in.wav"});
    }
}

TEST_F(StreamCli, AFailingWriteKeepsTheOldTargetOfABatch)
{
    const std::string szScript = dir.File("s.snb");
    std::string szLog;
    ASSERT_EQ(RunCommand("XDG_CONFIG_HOME='" + dir.File("config") + "' '" SONITRA_CLI_PATH "' script new '" + szScript +
                             "' normalize then high-pass-filter then fade-in 2>&1",
                         &szLog),
              0)
        << szLog;
    WriteFileBytes(dir.File("out/in.wav"), vOld);
    EXPECT_EQ(LimitedCli("batch '" + szScript + "' '" + dir.File("in.wav") + "' --to wav --out '" + dir.File("out") +
                             "' --jobs 1",
                         &szLog),
              2)
        << szLog;
    EXPECT_EQ(ReadFileBytes(dir.File("out/in.wav")), vOld);
    EXPECT_EQ(FilesInOut(), std::vector<std::string>{"in.wav"});
}

// A range over the whole file takes the document path; the same effect without it streams.
TEST_F(StreamCli, StreamedEffectsWriteWhatTheDocumentPathWrites)
{
    const std::string szIn = dir.File("in.wav");
    const std::string szFrames = std::to_string(4 * 22050);
    for (const std::string szEffect : {"echo EchoGain=80 EchoTime=30", "reverse", "normalize NormalizePeakLevel=70",
                                       "equalizer Points=100:6,1000:-3", "mono", "convert-sample-rate ConvertSampleRate=8000",
                                       "amplify AmplifyGain=300"}) {
        SCOPED_TRACE(szEffect);
        std::string szLog;
        ASSERT_EQ(Cli("effect '" + szIn + "' '" + dir.File("s.wav") + "' " + szEffect, &szLog), 0) << szLog;
        ASSERT_EQ(Cli("effect '" + szIn + "' '" + dir.File("d.wav") + "' " + szEffect + " --range 0," + szFrames, &szLog),
                  0)
            << szLog;
        EXPECT_TRUE(ReadFileBytes(dir.File("s.wav")) == ReadFileBytes(dir.File("d.wav")));
    }
}

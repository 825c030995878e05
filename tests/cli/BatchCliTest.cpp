// End to end: `sonitra-cli script new/show` and `sonitra-cli batch` over many files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "support/CliTest.h"

namespace {

using testsupport::ReadText;

class BatchCli : public testsupport::CliTest
{
protected:
    int Cli(const std::string& szArgs) { return CliApart(szArgs); }
    // Short mono files, each a different tone and level, so a mixed-up output shows.
    std::vector<std::string> MakeInputs(int nCount, const std::string& szSub)
    {
        testsupport::RunCommand("mkdir -p " + dir.File(szSub));
        std::vector<std::string> v;
        for (int i = 0; i < nCount; ++i) {
            const std::string szPath = dir.File(szSub + "/f" + std::to_string(i) + ".wav");
            testsupport::WriteSimpleWav(szPath, 8000, 1, 16,
                                        testsupport::Sine16(8000, 1, 400, 200.0 + 7 * i, 2000.0 + 40 * i));
            v.push_back(szPath);
        }
        return v;
    }
};

} // namespace

TEST_F(BatchCli, ScriptNewWritesTheRecordsAndShowDescribesThem)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " normalize NormalizePeakLevel=90 then high-pass-filter LowCutFreq=300 "
                  "then fade-in then dynamic-range-compressor CompressorRatio=2:1"),
              0)
        << Err();
    const std::vector<uint8_t> v = testsupport::ReadFileBytes(szScript);
    const std::vector<uint8_t> vHead = {0, 0xA2, 0x0F, 0, 0, 4, 0, 0, 0, 90, 0, 0, 0, 0xAB, 0x0F, 0, 0, 4, 0, 0, 0, 0x2C, 1, 0, 0,
                                        0xA6, 0x0F, 0, 0, 0, 0, 0, 0, 0xAC, 0x0F, 0, 0, 12, 0, 0, 0};
    ASSERT_GE(v.size(), vHead.size() + 12);
    EXPECT_EQ(std::vector<uint8_t>(v.begin(), v.begin() + static_cast<long>(vHead.size())), vHead);
    ASSERT_EQ(Cli("script show " + szScript), 0) << Err();
    const std::string sz = Out();
    EXPECT_NE(sz.find("1. normalize NormalizePeakLevel=90\n   Normalize Peak Level (%) = 90"), std::string::npos) << sz;
    EXPECT_NE(sz.find("Frequency (Hz) = 300"), std::string::npos) << sz;
    EXPECT_NE(sz.find("3. fade-in\n   Click on Settings to view or change."), std::string::npos) << sz;
    EXPECT_NE(sz.find("Threshold (db) = -20, Ratio = 2:1, Limit (db) = 3"), std::string::npos) << sz;
}

TEST_F(BatchCli, ScriptRefusesWhatTheDialogsRefuse)
{
    EXPECT_EQ(Cli("script new " + dir.File("s.snb") + " echo EchoTime=3000"), 64);
    EXPECT_NE(Err().find("Echo time must be between 10 and 3000ms. Please try again."), std::string::npos) << Err();
    EXPECT_EQ(Cli("script new " + dir.File("s.snb") + " paste-mix"), 64);
    EXPECT_EQ(Cli("script new " + dir.File("s.snb") + " normalize then"), 64);
    EXPECT_EQ(Cli("script new " + dir.File("s.snb") + " echo Volume=3"), 64);
    EXPECT_FALSE(testsupport::RunCommand("test -e " + dir.File("s.snb")) == 0);
    testsupport::WriteFileBytes(dir.File("v1.snb"), {1});
    EXPECT_EQ(Cli("script show " + dir.File("v1.snb")), 2);
    EXPECT_NE(Err().find("This file does not have the same version with the current Sonitra version or it is corrupted."),
              std::string::npos);
    // A record too short for its effect cannot run.
    testsupport::WriteFileBytes(dir.File("short.snb"), {0, 0xA2, 0x0F, 0, 0, 2, 0, 0, 0, 90, 0});
    EXPECT_EQ(Cli("script show " + dir.File("short.snb")), 2);
    EXPECT_NE(Err().find("GetCommandDataItemData failed because datasize is too small"), std::string::npos) << Err();
    EXPECT_NE(Err().find(dir.File("short.snb")), std::string::npos) << Err();
    const std::vector<std::string> v = MakeInputs(1, "one");
    EXPECT_EQ(Cli("batch " + dir.File("short.snb") + " " + v[0] + " --to wav --out " + dir.File("o")), 2);
    EXPECT_NE(Err().find("GetCommandDataItemData failed because datasize is too small"), std::string::npos) << Err();
}

// One command at a time, the batch and the effect verb run the same engine function: the same
// samples, with no rounding between steps to tell them apart.
TEST_F(BatchCli, EachCommandAloneEqualsTheEffectVerbExactly)
{
    const std::vector<std::string> vIn = MakeInputs(3, "in");
    const char* aCommands[] = {"normalize NormalizePeakLevel=50", "high-pass-filter LowCutFreq=400", "fade-in",
                               "echo EchoTime=20 EchoGain=30", "reverse"};
    int nScript = 0;
    for (const char* szCommand : aCommands) {
        SCOPED_TRACE(szCommand);
        const std::string szTag = std::to_string(nScript++);
        const std::string szScript = dir.File("one" + szTag + ".snb");
        ASSERT_EQ(Cli("script new " + szScript + " " + szCommand), 0) << Err();
        std::string szList;
        for (const std::string& sz : vIn)
            szList += " " + sz;
        ASSERT_EQ(Cli("batch " + szScript + szList + " --to wav --out " + dir.File("b" + szTag) + " --jobs 1"), 0) << Err();
        for (size_t i = 0; i < vIn.size(); ++i) {
            const std::string szName = "/f" + std::to_string(i) + ".wav";
            const std::string szStep = dir.File("e" + szTag + "-" + std::to_string(i) + ".wav");
            ASSERT_EQ(Cli("effect " + vIn[i] + " " + szStep + " " + szCommand), 0) << Err();
            const std::vector<int16_t> vBatch = testsupport::ReadWavSamples16(dir.File("b" + szTag + szName));
            ASSERT_EQ(vBatch.size(), 400u) << i;
            EXPECT_EQ(vBatch, testsupport::ReadWavSamples16(szStep)) << i;
        }
    }
}

// 200 files through normalize, high-pass filter and fade in on two workers, one of them unreadable:
// every other output equals `effect` run step by step, and the summary names the bad one. The
// level stays well below full scale, so the peak limiter of a save never acts on the steps' files.
TEST_F(BatchCli, ManyFilesEqualTheEffectsStepByStep)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " normalize NormalizePeakLevel=50 then high-pass-filter LowCutFreq=400 then fade-in"), 0);
    std::vector<std::string> vIn = MakeInputs(200, "in");
    const std::string szBad = vIn[117];
    testsupport::WriteFileBytes(szBad, {'n', 'o', 't', ' ', 'a', 'u', 'd', 'i', 'o'});
    std::string szList;
    for (const std::string& sz : vIn)
        szList += " " + sz;
    ASSERT_EQ(Cli("batch " + szScript + szList + " --to wav --out " + dir.File("out") + " --jobs 2"), 2) << Err();
    const std::string szSummary = Out();
    EXPECT_NE(szSummary.find("199 of 200 files converted; 1 failed:"), std::string::npos) << szSummary;
    EXPECT_NE(szSummary.find("  " + szBad + ": "), std::string::npos) << szSummary;

    // The same three steps through the effect verb, several at a time.
    std::ofstream steps(dir.File("steps.txt"));
    for (int i = 0; i < 200; ++i)
        if (vIn[static_cast<size_t>(i)] != szBad)
            steps << i << "\n";
    steps.close();
    const std::string szOne = std::string(SONITRA_CLI_PATH) + " effect";
    const std::string szStep = dir.File("step");
    testsupport::RunCommand("mkdir -p " + szStep);
    const std::string szChain =
        szEnv + "xargs -P 8 -I{} sh -c '" + szOne + " " + dir.File("in") + "/f{}.wav " + szStep + "/a{}.wav normalize NormalizePeakLevel=50 && " +
        szOne + " " + szStep + "/a{}.wav " + szStep + "/b{}.wav high-pass-filter LowCutFreq=400 && " + szOne + " " + szStep +
        "/b{}.wav " + szStep + "/c{}.wav fade-in' < " + dir.File("steps.txt") + " 2>" + dir.File("steps-err.txt");
    ASSERT_EQ(testsupport::RunCommand(szChain), 0) << ReadText(dir.File("steps-err.txt"));
    for (int i = 0; i < 200; ++i) {
        const std::string szOut = dir.File("out/f" + std::to_string(i) + ".wav");
        if (vIn[static_cast<size_t>(i)] == szBad) {
            EXPECT_NE(testsupport::RunCommand("test -e " + szOut), 0);
            continue;
        }
        const std::vector<int16_t> vBatch = testsupport::ReadWavSamples16(szOut);
        const std::vector<int16_t> vSteps = testsupport::ReadWavSamples16(szStep + "/c" + std::to_string(i) + ".wav");
        ASSERT_EQ(vBatch.size(), 400u) << i;
        ASSERT_EQ(vBatch.size(), vSteps.size()) << i;
        // Step by step, each intermediate file rounds to 16 bits; the batch, like the editor, keeps
        // full precision from load to save. Half a step of rounding before the high-pass filter
        // comes out at most one step (its impulse response sums to less than 2), and the two later
        // roundings add at most one more: the outputs agree to within 2 and no further.
        for (size_t k = 0; k < vBatch.size(); ++k)
            ASSERT_LE(std::abs(vBatch[k] - vSteps[k]), 2) << "file " << i << " sample " << k;
    }
}

TEST_F(BatchCli, OneWorkerAndTwoGiveTheSameBytesAndOutputsNeverReplaceInputs)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " echo EchoTime=20 EchoGain=30 then reverse"), 0);
    const std::vector<std::string> vIn = MakeInputs(5, "in");
    std::string szList;
    for (const std::string& sz : vIn)
        szList += " " + sz;
    ASSERT_EQ(Cli("batch " + szScript + szList + " --to wav --out " + dir.File("one") + " --jobs 1"), 0) << Err();
    EXPECT_NE(Out().find("5 of 5 files converted."), std::string::npos);
    ASSERT_EQ(Cli("batch " + szScript + szList + " --to .wav --out " + dir.File("two") + " --jobs 2"), 0) << Err();
    for (int i = 0; i < 5; ++i) {
        const std::string szName = "/f" + std::to_string(i) + ".wav";
        EXPECT_EQ(testsupport::ReadFileBytes(dir.File("one") + szName), testsupport::ReadFileBytes(dir.File("two") + szName));
    }
    // Beside the inputs, as WAV again: every output would be its input.
    const std::vector<uint8_t> vBefore = testsupport::ReadFileBytes(vIn[0]);
    EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0] + " --to wav"), 2);
    EXPECT_NE(Out().find("the output would replace the input"), std::string::npos) << Out();
    EXPECT_EQ(testsupport::ReadFileBytes(vIn[0]), vBefore);
    // Two inputs of the same name into one folder: the second is refused, not written over the first.
    testsupport::RunCommand("mkdir -p " + dir.File("other") + " && cp " + vIn[1] + " " + dir.File("other/f0.wav"));
    EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0] + " " + dir.File("other/f0.wav") + " " + vIn[2] + " --to wav --out " +
                  dir.File("same") + " --jobs 2"),
              2);
    EXPECT_NE(Out().find("2 of 3 files converted; 1 failed:\n  " + dir.File("other/f0.wav") +
                         ": another file of this batch is written to"),
              std::string::npos)
        << Out();
    EXPECT_EQ(testsupport::ReadFileBytes(dir.File("same/f0.wav")), testsupport::ReadFileBytes(dir.File("one/f0.wav")));
    EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0] + " --to xyz"), 64);
    EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0]), 64);
    EXPECT_EQ(Cli("batch " + dir.File("missing.snb") + " " + vIn[0] + " --to wav --out " + dir.File("o")), 2);
}

// A script cut short or padded is refused before any file is touched: cutting the last 4 bytes
// once turned AmplifyGain=150 into 0 and wrote silence with success.
TEST_F(BatchCli, ADamagedScriptRunsNothing)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " fade-in then amplify AmplifyGain=150"), 0) << Err();
    const std::vector<uint8_t> vScript = testsupport::ReadFileBytes(szScript);
    const std::vector<std::string> vIn = MakeInputs(2, "in");
    const std::vector<std::vector<uint8_t>> vDamaged = {
        std::vector<uint8_t>(vScript.begin(), vScript.end() - 4),
        [&] {
            auto v = vScript;
            v.insert(v.end(), {0, 0, 0});
            return v;
        }(),
    };
    for (const std::vector<uint8_t>& vBad : vDamaged) {
        SCOPED_TRACE(vBad.size());
        testsupport::WriteFileBytes(szScript, vBad);
        for (const char* szJobs : {"1", "2"}) {
            EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0] + " " + vIn[1] + " --to wav --out " + dir.File("out") +
                          " --jobs " + szJobs),
                      2);
            EXPECT_NE(Err().find(szScript), std::string::npos) << Err();
            EXPECT_NE(Err().find(vBad.size() < vScript.size() ? "record 2: cut short" : "record 3: cut short"),
                      std::string::npos)
                << Err();
            EXPECT_NE(testsupport::RunCommand("test -e " + dir.File("out/f0.wav")), 0);
        }
        EXPECT_EQ(Cli("script show " + szScript), 2);
        EXPECT_EQ(Out(), "");
    }
}

TEST_F(BatchCli, ShowDescribesTheConversionsFromTheScript)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " convert-sample-rate ConvertSampleRate=8000 then stereo"), 0) << Err();
    ASSERT_EQ(Cli("script show " + szScript), 0) << Err();
    EXPECT_NE(Out().find("convert-sample-rate ConvertSampleRate=8000\n   Convert Sample Rate = 8000\n"), std::string::npos)
        << Out();
    EXPECT_NE(Out().find("2. stereo\n   Convert Channel = 2\n"), std::string::npos) << Out();
}

// x.au would become x.wav, which this same batch reads: neither x.au nor x.wav is converted, the
// other files are, and x.wav stays byte for byte, whether one process runs the batch or two.
TEST_F(BatchCli, AnOutputThatIsAnyInputIsRefusedForThatFileOnly)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " reverse"), 0) << Err();
    const std::vector<std::string> vIn = MakeInputs(3, "in");
    const std::string szAu = dir.File("in/f0.au");
    const std::string szOtherAu = dir.File("in/f2.au");
    ASSERT_EQ(Cli("convert " + vIn[1] + " " + szAu), 0) << Err();
    ASSERT_EQ(Cli("convert " + vIn[2] + " " + szOtherAu), 0) << Err();
    const std::string szWav = dir.File("in/f0.wav");
    testsupport::RunCommand("mkdir -p " + dir.File("in/sub") + " && ln -s .. " + dir.File("in/sub/up"));
    const std::vector<uint8_t> vWavBefore = testsupport::ReadFileBytes(szWav);
    const std::vector<uint8_t> vAuBefore = testsupport::ReadFileBytes(szAu);
    for (const char* szJobs : {"1", "2"}) {
        SCOPED_TRACE(szJobs);
        // The other input named through a link to its folder is still the same file.
        ASSERT_EQ(Cli("batch " + szScript + " " + szAu + " " + szOtherAu + " " + dir.File("in/sub/up/f0.wav") +
                      " --to wav --jobs " + szJobs),
                  2);
        const std::string sz = Out();
        EXPECT_NE(sz.find("1 of 3 files converted; 2 failed:"), std::string::npos) << sz;
        EXPECT_NE(sz.find("  " + szAu + ": the output " + szWav + " would replace "), std::string::npos) << sz;
        EXPECT_NE(sz.find("the output would replace the input"), std::string::npos) << sz;
        EXPECT_EQ(testsupport::ReadFileBytes(szWav), vWavBefore);
        EXPECT_EQ(testsupport::ReadFileBytes(szAu), vAuBefore);
        EXPECT_EQ(testsupport::ReadWavSamples16(vIn[2]).size(), 400u);
    }
    // Into another folder nothing clashes and all three are converted.
    EXPECT_EQ(Cli("batch " + szScript + " " + szAu + " " + szOtherAu + " --to wav --out " + dir.File("o")), 0) << Out();
}

// A $TMPDIR that does not exist no longer stops the helper programs: the workers of a parallel
// batch start and every file is converted, and an external encoder runs.
TEST_F(BatchCli, WorkersRunWithAMissingTemporaryFolder)
{
    const std::string szScript = dir.File("s.snb");
    ASSERT_EQ(Cli("script new " + szScript + " fade-in"), 0) << Err();
    const std::vector<std::string> vIn = MakeInputs(3, "in");
    const std::string szSaved = szEnv;
    szEnv += "TMPDIR=" + dir.File("missing") + " ";
    EXPECT_EQ(Cli("batch " + szScript + " " + vIn[0] + " " + vIn[1] + " " + vIn[2] + " --to wav --out " +
                  dir.File("o") + " --jobs 2"),
              0)
        << Out() << Err();
    EXPECT_NE(Out().find("3 of 3 files converted."), std::string::npos) << Out();
    // An encoder run as a child program is not stopped by it either.
    if (testsupport::HaveTool("flac")) {
        EXPECT_EQ(Cli("convert " + vIn[0] + " " + dir.File("o/f0.flac")), 0) << Err();
        EXPECT_EQ(Cli("convert " + dir.File("o/f0.flac") + " " + dir.File("o/back.wav")), 0) << Err();
        EXPECT_EQ(testsupport::ReadWavSamples16(dir.File("o/back.wav")), testsupport::ReadWavSamples16(vIn[0]));
    }
    szEnv = szSaved;
}

// Compressed and wide WAV against sox and ffmpeg, both ways, on speech: files the tools write
// decode here as the published algorithms decode them, and the tools read our files as we do.
// Where the two tools disagree, the one that follows the published algorithm is matched bit for
// bit: sox for IMA ADPCM (shifts of the step), ffmpeg for Microsoft ADPCM (truncating division).
#include <gtest/gtest.h>

#include <cstdio>

#include "formats/LAudioFile.h"
#include "formats/LWaveFormat.h"
#include "tests/formats/CodecFiles.h"

using namespace codecfiles;
using testsupport::HaveTool;
using testsupport::RunCommand;

namespace {

enum class Tool
{
    Sox,
    Ffmpeg
};

struct Encoding
{
    const char* szName;    // our encoding
    const char* szSoxArgs; // sox output options
    const char* szFfmpeg;  // ffmpeg codec
    Tool exact;            // the tool that decodes bit for bit as we do; the other within tolerance
    bool bWide;            // 16-bit samples pass unchanged: both tools within one step
};

const Encoding kEncodings[] = {
    {"ima", "-e ima-adpcm", "adpcm_ima_wav", Tool::Sox, false},
    {"msadpcm", "-e ms-adpcm", "adpcm_ms", Tool::Ffmpeg, false},
    {"pcm24", "-b 24", "pcm_s24le", Tool::Sox, true},
    {"pcm32", "-b 32", "pcm_s32le", Tool::Sox, true},
    {"float", "-e float -b 32", "pcm_f32le", Tool::Sox, true},
    {"float64", "-e float -b 64", "pcm_f64le", Tool::Sox, true},
};

std::vector<int16_t> ToolDecode(Tool tool, const std::string& szPath)
{
    return tool == Tool::Sox ? SoxDecode(szPath) : FfmpegDecode(szPath);
}

class WavInterop : public ::testing::TestWithParam<Encoding>
{
protected:
    static void SetUpTestSuite()
    {
        pDir = new testsupport::TempDir;
        bTools = HaveTool("sox") && HaveTool("ffmpeg") && HaveTool("espeak-ng") &&
                 MakeSpeech(pDir->File("mono8k.wav"), 8000, 1) && MakeSpeech(pDir->File("stereo22k.wav"), 22050, 2);
    }
    static void TearDownTestSuite()
    {
        delete pDir;
        pDir = nullptr;
    }
    void SetUp() override
    {
        if (!bTools)
            GTEST_SKIP() << "needs sox, ffmpeg and espeak-ng";
    }
    static std::vector<std::string> Inputs() { return {pDir->File("mono8k.wav"), pDir->File("stereo22k.wav")}; }
    static std::string Out(const std::string& szIn, const std::string& szTag)
    {
        return szIn.substr(0, szIn.size() - 4) + "-" + GetParam().szName + "-" + szTag + ".wav";
    }

    static testsupport::TempDir* pDir;
    static bool bTools;
};

testsupport::TempDir* WavInterop::pDir = nullptr;
bool WavInterop::bTools = false;

} // namespace

TEST_P(WavInterop, ToolFilesDecodeAsThePublishedAlgorithm)
{
    const Encoding& e = GetParam();
    for (const std::string& szIn : Inputs()) {
        const std::string szSox = Out(szIn, "sox");
        const std::string szFf = Out(szIn, "ff");
        ASSERT_EQ(RunCommand("sox " + Quote(szIn) + " " + e.szSoxArgs + " " + Quote(szSox) + " 2>/dev/null"), 0);
        ASSERT_EQ(RunCommand("ffmpeg -nostdin -loglevel error -y -i " + Quote(szIn) + " -c:a " + e.szFfmpeg + " " +
                             Quote(szFf)),
                  0);
        for (const std::string& szFile : {szSox, szFf}) {
            const std::vector<int16_t> vOurs = DecodeFile(szFile);
            if (e.bWide) {
                for (Tool tool : {Tool::Sox, Tool::Ffmpeg}) {
                    const std::vector<int16_t> vTool = ToolDecode(tool, szFile);
                    ASSERT_EQ(vOurs.size(), vTool.size()) << szFile;
                    EXPECT_LE(MaxDiff(vOurs, vTool), 1) << szFile;
                }
                continue;
            }
            const std::vector<int16_t> vExact = ToolDecode(e.exact, szFile);
            const size_t nCommon = std::min(vOurs.size(), vExact.size());
            ASSERT_GT(nCommon, vOurs.size() * 9 / 10) << szFile;
            EXPECT_EQ(FirstDifference(std::vector<int16_t>(vOurs.begin(), vOurs.begin() + nCommon),
                                      std::vector<int16_t>(vExact.begin(), vExact.begin() + nCommon)),
                      -1)
                << szFile;
        }
    }
}

TEST_P(WavInterop, ToolsReadOurFilesAsWeDo)
{
    const Encoding& e = GetParam();
    for (const std::string& szIn : Inputs()) {
        const std::string szOurs = Out(szIn, "ours");
        ASSERT_EQ(RunCommand(Quote(SONITRA_CLI_PATH) + " convert " + Quote(szIn) + " " + Quote(szOurs) +
                             " --format wav:" + e.szName),
                  0);
        int32_t nLength = 0;
        const std::vector<int16_t> vOurs = DecodeFile(szOurs, &nLength);
        ASSERT_FALSE(vOurs.empty());
        for (Tool tool : {Tool::Sox, Tool::Ffmpeg}) {
            const std::vector<int16_t> vTool = ToolDecode(tool, szOurs);
            const std::string szWhat = szOurs + (tool == Tool::Sox ? " by sox" : " by ffmpeg");
            ASSERT_EQ(vTool.size(), vOurs.size()) << szWhat;
            if (e.bWide)
                EXPECT_LE(MaxDiff(vOurs, vTool), 1) << szWhat;
            else if (tool == e.exact)
                EXPECT_EQ(FirstDifference(vOurs, vTool), -1) << szWhat;
            else {
                const double fSnr = SnrDb(vOurs, vTool);
                std::printf("[ SNR      ] %s: %.2f dB against our reading\n", szWhat.c_str(), fSnr);
                EXPECT_GT(fSnr, 45) << szWhat;
            }
        }
    }
}

TEST_P(WavInterop, RoundTripKeepsSpeechWithinTheCodecsLoss)
{
    const Encoding& e = GetParam();
    for (const std::string& szIn : Inputs()) {
        const std::string szOurs = Out(szIn, "trip");
        ASSERT_EQ(RunCommand(Quote(SONITRA_CLI_PATH) + " convert " + Quote(szIn) + " " + Quote(szOurs) +
                             " --format wav:" + e.szName),
                  0);
        const std::vector<int16_t> vIn = DecodeFile(szIn);
        const std::vector<int16_t> vOut = DecodeFile(szOurs);
        ASSERT_GE(vOut.size(), vIn.size());
        const double fSnr = SnrDb(vIn, vOut);
        std::printf("[ SNR      ] %s %s: %.2f dB\n", e.szName, szIn.substr(szIn.rfind('/') + 1).c_str(), fSnr);
        RecordProperty(std::string("snr_") + e.szName, std::to_string(fSnr));
        EXPECT_GT(fSnr, e.bWide ? 998.0 : 18.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, WavInterop, ::testing::ValuesIn(kEncodings),
                         [](const ::testing::TestParamInfo<Encoding>& info) { return std::string(info.param.szName); });

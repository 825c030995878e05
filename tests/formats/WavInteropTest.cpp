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

// How the tools' readings must compare with ours.
enum class Match
{
    One,  // one tool (exact) bit for bit, the other above 45 dB
    Wide, // both within one 16-bit step
    Both, // both bit for bit
    ULaw, // both bit for bit but for the 32 codes whose level is fixed 4 below the standard's
};

struct Encoding
{
    const char* szName;    // our encoding
    const char* szSoxArgs; // sox output options
    const char* szFfmpeg;  // ffmpeg codec
    Match match;
    Tool exact;        // for Match::One
    double fMinSnr;    // of the round trip on speech
    bool bMono8k;      // the codec holds only 8000 Hz mono
    bool bWide() const { return match == Match::Wide; }
};

const Encoding kEncodings[] = {
    {"ima", "-e ima-adpcm", "adpcm_ima_wav", Match::One, Tool::Sox, 18, false},
    {"msadpcm", "-e ms-adpcm", "adpcm_ms", Match::One, Tool::Ffmpeg, 18, false},
    {"pcm24", "-b 24", "pcm_s24le", Match::Wide, Tool::Sox, 998, false},
    {"pcm32", "-b 32", "pcm_s32le", Match::Wide, Tool::Sox, 998, false},
    {"float", "-e float -b 32", "pcm_f32le", Match::Wide, Tool::Sox, 998, false},
    {"float64", "-e float -b 64", "pcm_f64le", Match::Wide, Tool::Sox, 998, false},
    {"alaw", "-e a-law", "pcm_alaw", Match::Both, Tool::Sox, 30, false},
    {"ulaw", "-e u-law", "pcm_mulaw", Match::ULaw, Tool::Sox, 30, false},
    {"gsm", "-e gsm-full-rate", "libgsm_ms", Match::Both, Tool::Sox, 8, true},
};

// The standard µ-law levels of segment 5 (256 m + 4092) are read here 4 nearer zero; every
// other sample must agree.
void ExpectULawAgrees(const std::vector<int16_t>& vOurs, const std::vector<int16_t>& vTool, const std::string& szWhat)
{
    int nFixed = 0;
    for (size_t i = 0; i < std::min(vOurs.size(), vTool.size()); ++i) {
        if (vOurs[i] == vTool[i])
            continue;
        const int nLevel = std::abs(vTool[i]);
        ASSERT_TRUE(nLevel >= 4092 && nLevel <= 7932 && (nLevel - 4092) % 256 == 0 &&
                    std::abs(vOurs[i]) == nLevel - 4)
            << szWhat << " sample " << i << ": " << vOurs[i] << " against " << vTool[i];
        ++nFixed;
    }
    EXPECT_GT(nFixed, 0) << szWhat; // speech passes through those levels
}

void ExpectMatch(const Encoding& e, Tool tool, const std::vector<int16_t>& vOurs, const std::vector<int16_t>& vTool,
                 const std::string& szWhat)
{
    switch (e.match) {
    case Match::Wide: EXPECT_LE(MaxDiff(vOurs, vTool), 1) << szWhat; break;
    case Match::Both: EXPECT_EQ(FirstDifference(vOurs, vTool), -1) << szWhat; break;
    case Match::ULaw: ExpectULawAgrees(vOurs, vTool, szWhat); break;
    case Match::One:
        if (tool == e.exact) {
            EXPECT_EQ(FirstDifference(vOurs, vTool), -1) << szWhat;
        } else {
            const double fSnr = SnrDb(vOurs, vTool);
            std::printf("[ SNR      ] %s: %.2f dB against our reading\n", szWhat.c_str(), fSnr);
            EXPECT_GT(fSnr, 45) << szWhat;
        }
        break;
    }
}

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
    static std::vector<std::string> Inputs()
    {
        if (GetParam().bMono8k)
            return {pDir->File("mono8k.wav")};
        return {pDir->File("mono8k.wav"), pDir->File("stereo22k.wav")};
    }
    static std::string Out(const std::string& szIn, const std::string& szTag)
    {
        return szIn.substr(0, szIn.size() - 4) + "-" + GetParam().szName + "-" + szTag + ".wav";
    }

    static testsupport::TempDir* pDir;
    static bool bTools;
};

testsupport::TempDir* WavInterop::pDir = nullptr;
bool WavInterop::bTools = false;

// A tool may decode the padding of the last block that the file's "fact" count leaves out (we
// end where the count says): less than one block more is cut off, anything else is kept.
std::vector<int16_t> WithinFact(std::vector<int16_t> vTool, size_t nOurs)
{
    constexpr size_t kLargestBlock = 2 * 2048;
    if (vTool.size() > nOurs && vTool.size() - nOurs < kLargestBlock)
        vTool.resize(nOurs);
    return vTool;
}

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
            if (e.match != Match::One) {
                for (Tool tool : {Tool::Sox, Tool::Ffmpeg}) {
                    const std::vector<int16_t> vTool = WithinFact(ToolDecode(tool, szFile), vOurs.size());
                    ASSERT_EQ(vOurs.size(), vTool.size()) << szFile;
                    ExpectMatch(e, tool, vOurs, vTool, szFile);
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
            const std::vector<int16_t> vTool = WithinFact(ToolDecode(tool, szOurs), vOurs.size());
            const std::string szWhat = szOurs + (tool == Tool::Sox ? " by sox" : " by ffmpeg");
            ASSERT_EQ(vTool.size(), vOurs.size()) << szWhat;
            ExpectMatch(e, tool, vOurs, vTool, szWhat);
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
        EXPECT_GT(fSnr, e.fMinSnr);
    }
}

// Every byte of both laws, read by us and by the tools.
TEST(WavInteropG711, EveryCodeDecodesAsTheToolsDecodeIt)
{
    if (!HaveTool("sox") || !HaveTool("ffmpeg"))
        GTEST_SKIP() << "needs sox and ffmpeg";
    testsupport::TempDir dir;
    Bytes vCodes(256);
    for (int i = 0; i < 256; ++i)
        vCodes[i] = static_cast<uint8_t>(i);
    for (uint16_t nTag : {6, 7}) {
        const std::string sz = dir.File("codes" + std::to_string(nTag) + ".wav");
        testsupport::WriteFileBytes(sz, FileOf(LWaveFormatRecord::Make(nTag, 1, 8000, 8000, 1, 8), vCodes));
        const std::vector<int16_t> vOurs = DecodeFile(sz);
        ASSERT_EQ(vOurs.size(), 256u);
        for (Tool tool : {Tool::Sox, Tool::Ffmpeg}) {
            const std::vector<int16_t> vTool = ToolDecode(tool, sz);
            ASSERT_EQ(vTool.size(), 256u);
            int nDiffer = 0;
            for (int i = 0; i < 256; ++i)
                nDiffer += vOurs[i] != vTool[i];
            EXPECT_EQ(nDiffer, nTag == 7 ? 32 : 0) << nTag;
            if (nTag == 7)
                ExpectULawAgrees(vOurs, vTool, sz);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, WavInterop, ::testing::ValuesIn(kEncodings),
                         [](const ::testing::TestParamInfo<Encoding>& info) { return std::string(info.param.szName); });

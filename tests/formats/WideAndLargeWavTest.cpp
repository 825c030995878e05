// Files of more than 16 bits and of more than 4 GB: 24-bit, 32-bit and float WAV, AIFF and AU
// keep the 20 bits a sample holds inside through a load and a save; RF64 is read and written.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "formats/LAudioFile.h"
#include "formats/LWaveFile.h"
#include "formats/LWaveHeader.h"
#include "formats/codec/LCodecFloat.h"
#include "formats/codec/LCodecPCM.h"
#include "support/TestSupport.h"
#include "tests/formats/CodecFiles.h"
#include "tests/formats/SaveProcess.h"
#include "tests/formats/ToolAudio.h"
#include "work/LProgressDialog.h"

using namespace wavbytes;
using testsupport::ReadFileBytes;
using testsupport::TempDir;
using toolaudio::Quote;
using toolaudio::ReadAll;
using toolaudio::RunTool;

namespace {

// Saves a source as a file keeping the encoding it was read in.
// Opens a file and saves it under another name in the encoding it was read in.
std::string RoundTrip(const std::string& szIn, const std::string& szOut, LAudioFileDetails* pDetails = nullptr)
{
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr p = LAudioFile::OpenSource(szIn, &szError, &details);
    if (p->IsError())
        return szError;
    if (pDetails)
        *pDetails = details;
    SaveProcess save(p.Get(), szOut, details.encoding);
    return save.Run() == LProgressDialog::ResultDone ? std::string() : save.szError;
}

// A tool's decoding as 32-bit integers (full scale 2^31), interleaved; empty on failure.
std::vector<int32_t> ToolDecode32(const std::string& szTool, const std::string& szPath)
{
    const std::string szOut = szPath + "." + szTool + ".s32";
    const std::string szCmd =
        szTool == "sox" ? "sox -D " + Quote(szPath) + " -t s32 -L " + Quote(szOut)
                        : "ffmpeg -v error -y -i " + Quote(szPath) + " -f s32le -c:a pcm_s32le " + Quote(szOut);
    if (!RunTool(szCmd))
        return {};
    const Bytes v = ReadFileBytes(szOut);
    std::vector<int32_t> vOut(v.size() / 4);
    std::memcpy(vOut.data(), v.data(), vOut.size() * 4);
    return vOut;
}

// The largest difference in steps of the 20-bit internal sample (4096 units of a 32-bit one).
double MaxSteps(const std::vector<int32_t>& a, const std::vector<int32_t>& b)
{
    double f = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        f = std::max(f, std::abs(double(a[i]) - b[i]) / 4096.0);
    return f;
}

} // namespace

TEST(WideFiles, FilesOfSoxAndFfmpegKeepTwentyBitsThroughLoadAndSave)
{
    TempDir dir;
    struct Case
    {
        const char* szTool;
        const char* szName;
        const char* szOptions;
        const char* szEncoding; // as we describe it
    };
    const Case aCases[] = {
        {"sox", "s24.wav", "-b 24", "PCM 24-bit"},
        {"sox", "s32.wav", "-b 32", "PCM 32-bit"},
        {"sox", "sf.wav", "-e floating-point -b 32", "IEEE float 32-bit"},
        {"sox", "sd.wav", "-e floating-point -b 64", "IEEE float 64-bit"},
        {"sox", "s24.aif", "-b 24", "PCM 24-bit"},
        {"sox", "s32.aif", "-b 32", "PCM 32-bit"},
        {"sox", "s24.au", "-b 24", "PCM 24-bit"},
        {"sox", "s32.au", "-b 32", "PCM 32-bit"},
        {"sox", "sf.au", "-e floating-point -b 32", "IEEE float 32-bit"},
        {"ffmpeg", "f24.wav", "-c:a pcm_s24le", "PCM 24-bit"},
        {"ffmpeg", "f32.wav", "-c:a pcm_s32le", "PCM 32-bit"},
        {"ffmpeg", "ff.wav", "-c:a pcm_f32le", "IEEE float 32-bit"},
        {"ffmpeg", "f24.aif", "-c:a pcm_s24be", "PCM 24-bit"},
        {"ffmpeg", "f24.au", "-c:a pcm_s24be", "PCM 24-bit"},
        {"ffmpeg", "f6ch.wav", "-c:a pcm_s24le -ac 6", "PCM 24-bit"}, // written extensible
    };
    // A tone with detail below 16 bits: a reader that cuts to 16 bits is off by up to 16 steps.
    const std::string szSource = dir.File("source.wav");
    ASSERT_TRUE(RunTool("sox -n -r 44100 -c 2 -b 32 " + Quote(szSource) + " synth 0.5 sine 440 sine 3001 gain -1"));
    for (const Case& c : aCases) {
        SCOPED_TRACE(c.szName);
        const std::string szIn = dir.File(c.szName);
        const std::string szCmd = std::string(c.szTool) == "sox"
                                      ? "sox " + Quote(szSource) + " " + c.szOptions + " " + Quote(szIn)
                                      : "ffmpeg -v error -y -i " + Quote(szSource) + " " + c.szOptions + " " + Quote(szIn);
        ASSERT_TRUE(RunTool(szCmd));
        const std::vector<int32_t> vTool = ToolDecode32("sox", szIn);
        ASSERT_FALSE(vTool.empty());

        // Read: each sample is the tool's within one step.
        std::string szError;
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(szIn, &szError, &details);
        ASSERT_FALSE(p->IsError()) << szError;
        EXPECT_EQ(details.szEncoding, c.szEncoding);
        std::vector<int32_t> vOurs = ReadAll(*p);
        ASSERT_EQ(vOurs.size(), vTool.size());
        for (int32_t& s : vOurs)
            s = static_cast<int32_t>(static_cast<uint32_t>(s) << 12);
        EXPECT_LE(MaxSteps(vOurs, vTool), 1.0);

        // Saved in the encoding it was read in, and read back by the tools: within one step still.
        const std::string szExt = std::string(c.szName).substr(std::string(c.szName).find('.'));
        const std::string szOut = dir.File(std::string("out-") + c.szName);
        ASSERT_EQ(RoundTrip(szIn, szOut), "");
        LAudioFileDetails out;
        LAudioFile::OpenSource(szOut, &szError, &out);
        EXPECT_EQ(out.szEncoding, c.szEncoding);
        for (const char* szTool : {"sox", "ffmpeg"}) {
            const std::vector<int32_t> vBack = ToolDecode32(szTool, szOut);
            ASSERT_EQ(vBack.size(), vTool.size()) << szTool;
            EXPECT_LE(MaxSteps(vBack, vTool), 1.0) << szTool;
        }
    }
}

TEST(WideFiles, SixteenBitValuesSurviveEveryWideFormatExactly)
{
    TempDir dir;
    std::vector<int32_t> vIn;
    for (int i = 0; i < 2000; ++i)
        vIn.push_back(static_cast<int32_t>(std::lround(32767 * std::sin(i * 0.37))) * 16);
    vIn[0] = -0x80000;
    vIn[1] = 0x7FFF0;
    const std::pair<const char*, LWaveFormatRecord> aRecords[] = {
        {"pcm24", LCodecPCM::MakeWide(8000, 1, 24)},
        {"pcm32", LCodecPCM::MakeWide(8000, 1, 32)},
        {"pcm24 plain", LWaveFormatRecord::Make(1, 1, 8000, 24000, 3, 24)},
        {"float", LCodecFloat::MakeFloat(8000, 1, 32)},
        {"float64", LCodecFloat::MakeFloat(8000, 1, 64)},
    };
    for (const auto& [szEncoding, record] : aRecords) {
        const std::string szPath = dir.File(std::string(szEncoding) + ".wav");
        {
            LSoundSinkPtr pSink = LWaveFile::OpenSink(szPath, record);
            ASSERT_TRUE(pSink && !pSink->IsError()) << szEncoding;
            pSink->Write(vIn.data(), static_cast<int32_t>(vIn.size()));
        }
        LSoundSourcePtr p = LWaveFile::OpenSource(szPath);
        ASSERT_FALSE(p->IsError()) << szEncoding;
        EXPECT_EQ(ReadAll(*p), vIn) << szEncoding;
    }
}

TEST(WideFiles, ConvertKeepsTheInputsWidthAndSaysWhenItCannot)
{
    TempDir dir;
    const std::string szIn = dir.File("in24.wav");
    ASSERT_TRUE(RunTool("sox -n -r 48000 -c 2 -b 24 " + Quote(szIn) + " synth 0.2 sine 500"));
    std::string szLog;
    const std::string szCli = Quote(SONITRA_CLI_PATH);
    ASSERT_EQ(testsupport::RunCommand(szCli + " convert " + Quote(szIn) + " " + Quote(dir.File("o.wav")) + " 2>&1", &szLog),
              0)
        << szLog;
    EXPECT_EQ(szLog, "");
    EXPECT_EQ(testsupport::RunCommand(szCli + " info " + Quote(dir.File("o.wav")), &szLog), 0);
    EXPECT_NE(szLog.find("WAV PCM 24-bit, 48000 Hz, 2 channels, 9600 frames"), std::string::npos) << szLog;
    // Across formats the width stays too.
    ASSERT_EQ(testsupport::RunCommand(szCli + " convert " + Quote(szIn) + " " + Quote(dir.File("o.aif")), &szLog), 0);
    testsupport::RunCommand(szCli + " info " + Quote(dir.File("o.aif")), &szLog);
    EXPECT_NE(szLog.find("AIFF PCM 24-bit"), std::string::npos) << szLog;
    // A float WAV into AIFF, which holds no float here: 16-bit, and the user is told.
    const std::string szFloat = dir.File("f.wav");
    ASSERT_TRUE(RunTool("sox -n -r 8000 -c 1 -e floating-point -b 32 " + Quote(szFloat) + " synth 0.1 sine 500"));
    ASSERT_EQ(testsupport::RunCommand(szCli + " convert " + Quote(szFloat) + " " + Quote(dir.File("f.aif")) + " 2>&1",
                                      &szLog),
              0);
    EXPECT_NE(szLog.find("cannot hold IEEE float 32-bit; writing 16-bit PCM"), std::string::npos) << szLog;
}

TEST(LargeFiles, AnRF64FileOfFfmpegOpensAndSaves)
{
    TempDir dir;
    const std::string szIn = dir.File("rf.wav");
    ASSERT_TRUE(RunTool("ffmpeg -v error -f lavfi -i sine=f=440:d=0.5 -ar 48000 -ac 2 -c:a pcm_s24le -rf64 always " +
                        Quote(szIn)));
    ASSERT_EQ(std::string(reinterpret_cast<const char*>(ReadFileBytes(szIn).data()), 4), "RF64");
    LSoundSourcePtr p = LAudioFile::OpenSource(szIn);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetLength(), 24000);
    EXPECT_EQ(p->GetLengthInFile(), 24000);
    const std::string szOut = dir.File("out.wav");
    ASSERT_EQ(RoundTrip(szIn, szOut), "");
    EXPECT_LE(MaxSteps(ToolDecode32("ffmpeg", szOut), ToolDecode32("ffmpeg", szIn)), 1.0);
    EXPECT_EQ(ToolDecode32("ffmpeg", szOut).size(), 48000u);
}

// The switch to RF64 is seen through a lowered limit: a save that will pass it keeps room for
// ds64 ahead of the samples and fills it in; one that does not keeps the plain header.
TEST(LargeFiles, ASaveThatPassesTheLimitIsWrittenAsRF64)
{
    TempDir dir;
    const std::string szIn = dir.File("in.wav");
    ASSERT_TRUE(RunTool("sox -n -r 8000 -c 2 -b 16 " + Quote(szIn) + " synth 1 sine 300"));
    struct Limit
    {
        explicit Limit(uint64_t n) { LWaveHeader::SetSizeLimit(n); }
        ~Limit() { LWaveHeader::SetSizeLimit(0xFFFFFFFF); }
    };
    for (const char* szEncoding : {"pcm16", "pcm24", "float"}) {
        SCOPED_TRACE(szEncoding);
        const std::string szOut = dir.File(std::string("big-") + szEncoding + ".wav");
        {
            Limit limit(20000); // below the 32000 bytes of 16-bit samples
            LSoundSourcePtr p = LAudioFile::OpenSource(szIn);
            SaveProcess save(p.Get(), szOut, LAudioEncoding::Named(szEncoding));
            ASSERT_EQ(save.Run(), LProgressDialog::ResultDone) << save.szError;
        }
        const Bytes v = ReadFileBytes(szOut);
        ASSERT_GT(v.size(), 80u);
        EXPECT_EQ(std::string(v.begin(), v.begin() + 4), "RF64");
        EXPECT_EQ(std::string(v.begin() + 12, v.begin() + 16), "ds64");
        uint64_t nData = 0;
        std::memcpy(&nData, v.data() + 28, 8);
        const uint64_t nBytes = std::string(szEncoding) == "pcm16" ? 2 : std::string(szEncoding) == "pcm24" ? 3 : 4;
        EXPECT_EQ(nData, 8000u * 2 * nBytes);
        // Read back here and by both tools, frame for frame.
        LSoundSourcePtr pBack = LAudioFile::OpenSource(szOut);
        ASSERT_FALSE(pBack->IsError());
        EXPECT_EQ(pBack->GetLength(), 8000);
        for (const char* szTool : {"sox", "ffmpeg"}) {
            const std::vector<int32_t> vTool = ToolDecode32(szTool, szOut);
            EXPECT_EQ(vTool.size(), 16000u) << szTool;
            EXPECT_LE(MaxSteps(vTool, ToolDecode32("sox", szIn)), 1.0) << szTool;
        }
    }
    // Under the real limit the same save is a plain RIFF file of the usual 46-byte header.
    const std::string szSmall = dir.File("small.wav");
    ASSERT_EQ(RoundTrip(szIn, szSmall), "");
    const Bytes v = ReadFileBytes(szSmall);
    EXPECT_EQ(std::string(v.begin(), v.begin() + 4), "RIFF");
    EXPECT_EQ(v.size(), 46u + 32000);
}

TEST(LargeFiles, StreamingSizesReadToTheEndWithoutAWarning)
{
    TempDir dir;
    WavShape shape;
    shape.vData = Samples16({1, 2, 3, 4, 5});
    for (uint32_t nSize : {0xFFFFFFFFu, 0u}) {
        shape.nDataSize = nSize;
        Bytes v = Build(shape);
        v[4] = v[5] = v[6] = v[7] = static_cast<uint8_t>(nSize); // never filled in either
        const std::string szPath = dir.File("s" + std::to_string(nSize) + ".wav");
        testsupport::WriteFileBytes(szPath, v);
        LSoundSourcePtr p = LAudioFile::OpenSource(szPath);
        ASSERT_FALSE(p->IsError());
        EXPECT_EQ(p->GetLength(), 5) << nSize;
        EXPECT_EQ(p->GetLengthInFile(), 5) << nSize;
        EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{16, 32, 48, 64, 80})) << nSize;
    }
    // A finished file whose data is really empty stays empty, whatever follows its data chunk.
    shape.vData.clear();
    shape.nDataSize.reset();
    Bytes v = Build(shape);
    const Bytes vList = Chunk("LIST", Bytes(10, 'x'));
    v.insert(v.end(), vList.begin(), vList.end());
    const uint32_t nRiff = static_cast<uint32_t>(v.size() - 8);
    for (int i = 0; i < 4; ++i)
        v[4 + i] = static_cast<uint8_t>(nRiff >> (8 * i));
    testsupport::WriteFileBytes(dir.File("empty.wav"), v);
    EXPECT_EQ(LAudioFile::OpenSource(dir.File("empty.wav"))->GetLength(), 0);
}

TEST(WavMessages, ARefusedRecordNamesWhatIsWrong)
{
    TempDir dir;
    const auto Open = [&](uint16_t nTag, uint16_t nChans, uint16_t nBlock, uint16_t nBits, std::string* pszError) {
        WavShape shape;
        shape.nTag = nTag;
        shape.nChans = nChans;
        shape.nBits = nBits;
        shape.vData = Bytes(4096, 0);
        Bytes v = Build(shape);
        v[32] = static_cast<uint8_t>(nBlock); // the block alignment
        v[33] = static_cast<uint8_t>(nBlock >> 8);
        testsupport::WriteFileBytes(dir.File("m.wav"), v);
        return LAudioFile::OpenSource(dir.File("m.wav"), pszError);
    };
    const auto Reason = [&](uint16_t nTag, uint16_t nChans, uint16_t nBlock, uint16_t nBits) {
        std::string szError;
        EXPECT_TRUE(Open(nTag, nChans, nBlock, nBits, &szError)->IsError());
        return szError;
    };
    EXPECT_EQ(Reason(0x11, 7, 7 * 256, 4), "IMA ADPCM WAV files of 7 channels are not supported (1 to 2)");
    EXPECT_EQ(Reason(0x31, 2, 65, 0), "GSM 6.10 WAV files of 2 channels are not supported (mono only)");
    EXPECT_EQ(Reason(3, 120, 8, 64), "damaged WAV file: blocks of 8 bytes do not hold 120 channels of IEEE float 64-bit");
    // 120 channels of doubles that do fit their blocks are read.
    LSoundSourcePtr p = Open(3, 120, 960, 64, nullptr);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetChannels(), 120);
}

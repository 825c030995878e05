#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>

#include "formats/LAudioFile.h"
#include "formats/Mp3Support.h"
#include "formats/mp3/LMP3Decoder.h"

using namespace mp3test;
using testsupport::HaveTool;
using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

// SONITRA_TEST_DATA in the environment points elsewhere than the build's own setting.
const std::string kConformance =
    std::string(std::getenv("SONITRA_TEST_DATA") ? std::getenv("SONITRA_TEST_DATA") : SONITRA_TEST_DATA) +
    "/mp3-conformance/";

std::vector<int16_t> ReadPcm(const std::string& szPath)
{
    const std::vector<uint8_t> v = ReadFileBytes(szPath);
    std::vector<int16_t> vOut(v.size() / 2);
    for (size_t i = 0; i < vOut.size(); ++i)
        vOut[i] = static_cast<int16_t>(v[2 * i] | (v[2 * i + 1] << 8));
    return vOut;
}

} // namespace

TEST(Mp3Conformance, StreamsMatchTheReferenceDecoderWithinOneStep)
{
    struct Stream
    {
        const char* szName;
        bool bEndsEarly; // switches from one channel to two, which ends the stream by design
    };
    const Stream vStreams[] = {
        {"l3-compl", false},           {"l3-he_32khz", false},         {"l3-he_44khz", false},
        {"l3-he_48khz", false},        {"l3-he_mode", true},           {"l3-hecommon", false},
        {"l3-si", false},              {"l3-si_block", false},         {"l3-si_huff", false},
        {"l3-sin1k0db", false},        {"l3-test45", false},           {"l3-test46", false},
        {"M2L3_bitrate_16_all", false}, {"M2L3_bitrate_22_all", false}, {"M2L3_bitrate_24_all", false},
        {"M2L3_compl24", false},       {"M2L3_noise", false},
    };
    // The streams live in the repository: their absence is a broken checkout, not a reason to skip.
    ASSERT_EQ(testsupport::RunCommand("test -d " + Quote(kConformance)), 0) << "no conformance streams at " << kConformance;
    // Once with the filter banks this processor would choose, once with the baseline's.
    for (const bool bBaseline : {false, true})
    for (const Stream& s : vStreams) {
        LMP3Decoder::SetBaselineOnly(bBaseline);
        SCOPED_TRACE(std::string(s.szName) + (bBaseline ? " (baseline lanes)" : ""));
        LMP3Source src(kConformance + s.szName + ".bit");
        ASSERT_FALSE(src.IsError());
        const std::vector<int16_t> vOurs = DecodeAll(src);
        const std::vector<int16_t> vRef = ReadPcm(kConformance + s.szName + ".pcm");
        const Comparison c = Compare(vOurs, vRef);
        std::printf("  %-22s PSNR %6.1f dB, largest difference %d, %zu of %zu samples\n", s.szName, c.fPsnr,
                    c.nMaxDiff, vOurs.size(), vRef.size());
        EXPECT_GT(c.fPsnr, 96.0);
        EXPECT_LE(c.nMaxDiff, 1);
        // Every frame is decoded, up to the stream's last byte; the reference output leaves out
        // at most the last frame.
        const size_t nFrameSamples = static_cast<size_t>(src.GetFirstHeader().SamplesPerFrame()) * src.GetChannels();
        if (s.bEndsEarly) {
            EXPECT_LT(vOurs.size(), vRef.size() / 2);
        } else {
            EXPECT_GE(vOurs.size(), vRef.size());
            EXPECT_LE(vOurs.size(), vRef.size() + nFrameSamples);
        }
    }
    LMP3Decoder::SetBaselineOnly(false);
}

TEST(Mp3Conformance, FreeFormatIsRefused)
{
    // Every header of this stream carries bit-rate index 0, and a chance pattern in its data is
    // not followed by the frames it announces: nothing opens as noise.
    ASSERT_EQ(testsupport::RunCommand("test -f " + Quote(kConformance + "l3-he_free.bit")), 0)
        << "no conformance streams at " << kConformance;
    LMP3Source src(kConformance + "l3-he_free.bit");
    EXPECT_TRUE(src.IsError());
}

TEST(Mp3Decode, LameFilesMatchMpg123WithinOneStepAndKeepTheirLength)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    struct Case
    {
        const char* szName;
        int nRate;
        int nChans;
        const char* szOptions;
        bool bTag; // the frame is large enough for the encoder's tag, which gives the length
    };
    const Case vCases[] = {
        {"cbr32.mp3", 44100, 2, "-b 32 --resample 44.1", false}, {"cbr128.mp3", 44100, 2, "-b 128", true},
        {"cbr320.mp3", 44100, 2, "-b 320 -m s", true},          {"joint.mp3", 48000, 2, "-b 160 -m j", true},
        {"mono.mp3", 32000, 1, "-b 64 -m m", true},             {"vbr.mp3", 44100, 2, "-V 2", true},
        {"m2-22.mp3", 22050, 1, "-b 48", false},                {"m2-16.mp3", 16000, 2, "-b 64", true},
        {"m25-8.mp3", 8000, 1, "-b 16", false},                 {"m2-vbr.mp3", 24000, 2, "-V 4", true},
        {"m25-11.mp3", 11025, 2, "-b 64", true},
    };
    for (const Case& k : vCases) {
        SCOPED_TRACE(k.szName);
        const int32_t nInput = k.nRate * 6 / 5 + 7;
        ASSERT_TRUE(MakeMp3(dir, k.szName, k.nRate, k.nChans, nInput, k.szOptions));
        LMP3Source src(dir.File(k.szName));
        ASSERT_FALSE(src.IsError());
        EXPECT_EQ(src.GetSampleRate(), k.nRate);
        EXPECT_EQ(src.GetChannels(), k.nChans);
        const int32_t nFirstLength = src.GetLength();
        const std::vector<int16_t> vOurs = DecodeAll(src);
        // mpg123 leaves out the tag frame and, where the tag says, the encoder's delay and padding.
        const std::vector<int16_t> vRef = Mpg123Gapless(dir.File(k.szName));
        ASSERT_FALSE(vRef.empty());
        const Comparison c = Compare(vOurs, vRef);
        EXPECT_LE(c.nMaxDiff, 1);
        EXPECT_EQ(vOurs.size(), vRef.size());
        EXPECT_EQ(static_cast<int32_t>(vOurs.size() / k.nChans), src.GetLength());
        if (k.bTag) {
            // What the encoder was given, at once and after decoding.
            EXPECT_EQ(nFirstLength, nInput);
            EXPECT_EQ(src.GetLength(), nInput);
        }
    }
}

TEST(Mp3Decode, SeekIsExactInSamplesOnTheFrameTheAverageSizeFinds)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "cbr.mp3", 44100, 2, 44100 * 3, "-b 128"));
    LMP3Source whole(dir.File("cbr.mp3"));
    const std::vector<int16_t> vAll = DecodeAll(whole);
    LMP3Source src(dir.File("cbr.mp3"));
    // The seek goes to frame start x average frame size and searches on from there; where the
    // encoder's padding puts a frame a byte earlier, the search finds the next one.
    auto MaxDiffAt = [&](const std::vector<int32_t>& v, int32_t sFrom) {
        int nMax = 0;
        for (size_t i = 0; i < v.size(); ++i)
            nMax = std::max(nMax, std::abs(std::clamp((v[i] + 8) >> 4, -32768, 32767) -
                                           vAll[static_cast<size_t>(sFrom) * 2 + i]));
        return nMax;
    };
    for (int32_t sAt : {100000, 7, 50000, 0, 1152 * 4 + 5}) {
        SCOPED_TRACE(sAt);
        src.SetPosition(sAt);
        EXPECT_EQ(src.GetPosition(), sAt);
        std::vector<int32_t> v(2000 * 2);
        src.Read(v.data(), 2000);
        EXPECT_EQ(src.GetPosition(), sAt + 2000);
        EXPECT_LE(std::min(MaxDiffAt(v, sAt), MaxDiffAt(v, sAt + 1152)), 1);
        if (sAt < 1152 * 5) { // no search: the warm-up starts at the file's first byte
            EXPECT_LE(MaxDiffAt(v, sAt), 1);
        }
    }
    const int32_t nLength = src.GetLength();
    src.SetPosition(nLength + 5000); // held to the length
    EXPECT_EQ(src.GetPosition(), nLength);
}

TEST(Mp3Framing, LeadingJunkIsSearchedUpTo65535Bytes)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "a.mp3", 44100, 1, 44100, "-b 64"));
    const std::vector<uint8_t> vFile = ReadFileBytes(dir.File("a.mp3"));
    for (size_t nJunk : {size_t{3000}, size_t{70000}}) {
        std::vector<uint8_t> v(nJunk, 0x5A);
        v.insert(v.end(), vFile.begin(), vFile.end());
        WriteFileBytes(dir.File("junk.mp3"), v);
        LMP3Source src(dir.File("junk.mp3"));
        EXPECT_EQ(src.IsError(), nJunk > 65535) << nJunk;
    }
}

TEST(Mp3Framing, FreeFormatHeadersAreNotAccepted)
{
    TempDir dir;
    std::vector<uint8_t> v;
    for (int i = 0; i < 200; ++i) {
        const uint8_t aFrame[] = {0xFF, 0xFB, 0x00, 0xC0}; // MPEG-1 Layer III, bit-rate index 0
        v.insert(v.end(), aFrame, aFrame + 4);
        v.insert(v.end(), 413, 0);
    }
    WriteFileBytes(dir.File("free.mp3"), v);
    LMP3Source src(dir.File("free.mp3"));
    EXPECT_TRUE(src.IsError());
    // The failed source still reads zeros, and its position stops at the largest frame number.
    src.SetPosition(INT32_MAX - 10);
    std::vector<int32_t> vRead(4097, 5);
    src.Read(vRead.data(), 4097);
    EXPECT_EQ(src.GetPosition(), INT32_MAX);
    EXPECT_TRUE(std::all_of(vRead.begin(), vRead.end(), [](int32_t n) { return n == 0; }));
    std::string szError;
    // Nothing decodes these empty frames; the message says what the file is.
    EXPECT_TRUE(LAudioFile::OpenSource(dir.File("free.mp3"), &szError)->IsError());
    EXPECT_NE(szError.find("free-format"), std::string::npos) << szError;
}

TEST(Mp3Framing, XingFrameCountGivesTheLengthAtOnce)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "v.mp3", 44100, 2, 44100, "-V 5"));
    std::vector<uint8_t> v = ReadFileBytes(dir.File("v.mp3"));
    const auto it = std::search(v.begin(), v.end(), std::begin("Xing"), std::end("Xing") - 1);
    ASSERT_NE(it, v.end());
    const size_t nCount = static_cast<size_t>(it - v.begin()) + 8;
    ASSERT_TRUE(v[nCount - 1] & 1); // the frame-count flag
    const uint8_t a1000[] = {0, 0, 0x03, 0xE8};
    std::copy(a1000, a1000 + 4, v.begin() + static_cast<long>(nCount));
    WriteFileBytes(dir.File("x.mp3"), v);
    LMP3Source src(dir.File("x.mp3"));
    EXPECT_EQ(src.GetVbrFrameCount(), 1000u);
    EXPECT_TRUE(src.IsVariableBitRate());
    // The encoder's tag that follows the count takes its delay and padding off.
    ASSERT_GT(src.GetEncoderDelay(), 0);
    EXPECT_EQ(src.GetLength(), 1152000 - src.GetEncoderDelay() - src.GetEncoderPadding());
    // Without that tag (a Xing frame of another encoder) the count alone gives the length.
    const auto itLame = std::search(v.begin(), v.end(), std::begin("LAME"), std::end("LAME") - 1);
    ASSERT_NE(itLame, v.end());
    std::fill(itLame, itLame + 36, 0);
    WriteFileBytes(dir.File("y.mp3"), v);
    LMP3Source plain(dir.File("y.mp3"));
    EXPECT_EQ(plain.GetVbrFrameCount(), 1000u);
    EXPECT_EQ(plain.GetEncoderDelay(), 0);
    EXPECT_EQ(plain.GetLength(), 1152000);
}

TEST(Mp3Framing, ConstantRateLengthIsEstimatedThenRefinedWhileReading)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "long.mp3", 44100, 1, 44100 * 64, "-b 128 -m m -f -t")); // no tag frame
    std::vector<uint8_t> v = ReadFileBytes(dir.File("long.mp3"));
    ASSERT_GT(v.size(), 1000000u);
    v.resize(1000000);
    WriteFileBytes(dir.File("cut.mp3"), v);
    LMP3Source src(dir.File("cut.mp3"));
    ASSERT_FALSE(src.IsError());
    EXPECT_NEAR(src.GetAverageFrameBytes(), 417.959, 0.001);
    // No trailing tag: every byte counts.
    EXPECT_EQ(src.GetLength(), 1152 * static_cast<int32_t>(1000000 / (144.0 * 128000 / 44100) + 0.9));
    EXPECT_FALSE(src.IsVariableBitRate());
    // The file ends inside a frame: what follows the last whole frame reads as zeros and the
    // length becomes what was decoded.
    const std::vector<int16_t> vAll = DecodeAll(src);
    EXPECT_EQ(static_cast<int32_t>(vAll.size()), src.GetLength());
    EXPECT_EQ(src.GetLength() % 1152, 0);
    EXPECT_LT(src.GetLength(), 1152 * 2394);
    std::vector<int32_t> vTail(500, 9);
    src.Read(vTail.data(), 500);
    EXPECT_TRUE(std::all_of(vTail.begin(), vTail.end(), [](int32_t n) { return n == 0; }));
}

TEST(Mp3Framing, StereoFramesAfterAMonoStartEndTheStream)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "m.mp3", 44100, 1, 11025, "-b 64 -m m"));
    ASSERT_TRUE(MakeMp3(dir, "s.mp3", 44100, 2, 44100, "-b 64 -m s"));
    std::vector<uint8_t> v = ReadFileBytes(dir.File("m.mp3"));
    const std::vector<uint8_t> vStereo = ReadFileBytes(dir.File("s.mp3"));
    v.insert(v.end(), vStereo.begin(), vStereo.end());
    WriteFileBytes(dir.File("ms.mp3"), v);
    LMP3Source mono(dir.File("m.mp3"));
    const size_t nMono = DecodeAll(mono).size();
    LMP3Source src(dir.File("ms.mp3"));
    ASSERT_EQ(src.GetChannels(), 1);
    const std::vector<int16_t> vAll = DecodeAll(src);
    // The mono file's tag gives its length; the stereo frames after it are never reached.
    EXPECT_EQ(vAll.size(), nMono);
    EXPECT_EQ(static_cast<int32_t>(vAll.size()), src.GetLength());
}

TEST(Mp3Format, DoorOpensMp3AndDescribesIt)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "a.mp3", 22050, 1, 22050, "-b 32"));
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("a.mp3"), &szError, &details);
    ASSERT_FALSE(p->IsError()) << szError;
    EXPECT_EQ(details.szFormat, "MP3");
    EXPECT_EQ(details.szEncoding, "MPEG-2 Layer III, 32 kbit/s");
    // The encoder's "Info" tag frame marks a constant rate; its "Xing" frame a variable one.
    ASSERT_TRUE(MakeMp3(dir, "b.mp3", 44100, 2, 44100, "-b 128"));
    ASSERT_TRUE(MakeMp3(dir, "c.mp3", 44100, 2, 44100, "-V 4"));
    ASSERT_FALSE(LAudioFile::OpenSource(dir.File("b.mp3"), &szError, &details)->IsError());
    EXPECT_EQ(details.szEncoding, "MPEG-1 Layer III, 128 kbit/s");
    ASSERT_FALSE(LAudioFile::OpenSource(dir.File("c.mp3"), &szError, &details)->IsError());
    EXPECT_EQ(details.szEncoding.rfind("MPEG-1 Layer III, VBR (about ", 0), 0u) << details.szEncoding;
    EXPECT_EQ(details.encoding.szName, "mp3");
    EXPECT_EQ(p->GetSampleRate(), 22050);
}

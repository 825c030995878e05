// MPEG Layer 3 inside WAV files: opened through the codec layer and decoded as the plain MP3 of
// the same stream decodes, never offered for saving.
#include <gtest/gtest.h>

#include "formats/LAudioFormat.h"
#include "formats/LWaveFile.h"
#include "formats/codec/LCodecStream.h"
#include "tests/formats/CodecFiles.h"
#include "tests/formats/Mp3Support.h"

using mp3test::ReadToEnd;
using codecfiles::Bytes;
using testsupport::TempDir;

namespace {

constexpr uint16_t kMp3Tag = 0x55;

// The record encoders write for MPEG Layer 3: block align 1 and twelve bytes of codec data.
LWaveFormatRecord Mp3Record(uint32_t nRate, uint16_t nChans, uint32_t nBitRate)
{
    std::vector<uint8_t> vExtra = {1, 0, 2, 0, 0, 0, 0xA1, 0x01, 1, 0, 0x71, 0x05};
    return LWaveFormatRecord::Make(kMp3Tag, nChans, nRate, nBitRate / 8, 1, 0, vExtra);
}

// A WAV file holding the bytes of an MP3 file made by lame.
std::string WrapMp3(const TempDir& dir, const std::string& szMp3, uint32_t nRate, uint16_t nChans, uint32_t nBitRate,
                    const uint32_t* pDataSize = nullptr)
{
    const std::string szWav = szMp3 + ".wav";
    const Bytes vStream = testsupport::ReadFileBytes(dir.File(szMp3));
    testsupport::WriteFileBytes(dir.File(szWav), codecfiles::FileOf(Mp3Record(nRate, nChans, nBitRate), vStream, {},
                                                                   pDataSize));
    return dir.File(szWav);
}

class Mp3Wav : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!testsupport::HaveTool("lame") || !testsupport::HaveTool("mpg123"))
            GTEST_SKIP() << "lame and mpg123 are needed";
    }
    TempDir dir;
};

} // namespace

TEST_F(Mp3Wav, DecodesAsTheSameStreamDecodesOnItsOwn)
{
    struct Case
    {
        const char* szName;
        int nRate, nChans;
        uint32_t nBitRate;
        const char* szOptions;
    } cases[] = {
        {"cbr-stereo.mp3", 44100, 2, 128000, "-b 128"},
        {"vbr-stereo.mp3", 48000, 2, 160000, "-V 4"},
        {"mono-mpeg2.mp3", 22050, 1, 32000, "-b 32"},
        {"mono-mpeg25.mp3", 8000, 1, 16000, "-b 16"},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(mp3test::MakeMp3(dir, c.szName, c.nRate, c.nChans, c.nRate * 3 / 2, c.szOptions)) << c.szName;
        const std::vector<int16_t> vTool = mp3test::Mpg123Decode(dir.File(c.szName));
        ASSERT_FALSE(vTool.empty()) << c.szName;
        LSoundSourcePtr p = LWaveFile::OpenSource(WrapMp3(dir, c.szName, c.nRate, c.nChans, c.nBitRate));
        ASSERT_FALSE(p->IsError()) << c.szName;
        EXPECT_EQ(p->GetSampleRate(), c.nRate);
        EXPECT_EQ(p->GetChannels(), c.nChans);
        const std::vector<int16_t> vOurs = ReadToEnd(*p, 3001);
        // The first frame tells the stream's frame count and holds no sound: both leave it out.
        EXPECT_EQ(vOurs.size(), vTool.size()) << c.szName;
        EXPECT_EQ(p->GetLength() * c.nChans, static_cast<int32_t>(vOurs.size())) << c.szName;
        const mp3test::Comparison cmp = mp3test::Compare(vOurs, vTool);
        EXPECT_LE(cmp.nMaxDiff, 1) << c.szName;
        EXPECT_GT(cmp.nCompared, vTool.size() * 99 / 100) << c.szName;
    }
}

TEST_F(Mp3Wav, FilesThatFfmpegWritesOpenAsItReadsThem)
{
    if (!testsupport::HaveTool("ffmpeg"))
        GTEST_SKIP() << "ffmpeg is needed";
    const std::string szIn = dir.File("in.wav");
    testsupport::WriteSimpleWav(szIn, 44100, 2, 16, mp3test::TestSignal(44100, 2, 44100 * 2));
    const std::string szOut = dir.File("ffmpeg-mp3.wav");
    if (testsupport::RunCommand("ffmpeg -nostdin -loglevel error -i " + mp3test::Quote(szIn) +
                                " -c:a libmp3lame -b:a 128k -f wav " + mp3test::Quote(szOut)) != 0)
        GTEST_SKIP() << "this ffmpeg cannot encode MP3";
    LWaveFormatRecord record;
    LSoundSourcePtr p = LWaveFile::OpenSource(szOut, nullptr, &record);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(record.EffectiveTag(), kMp3Tag);
    const std::vector<int16_t> vOurs = ReadToEnd(*p, 3001);
    const std::vector<int16_t> vTool = codecfiles::FfmpegDecode(szOut);
    ASSERT_FALSE(vTool.empty());
    // The tool may trim the decoder's delay; the sound itself agrees wherever it is aligned.
    double fBest = 0;
    for (long nShift = -2400; nShift <= 2400; nShift += 2)
        fBest = std::max(fBest, codecfiles::SnrDb(std::vector<int16_t>(vOurs.begin() + std::max(0L, nShift), vOurs.end()),
                                                  std::vector<int16_t>(vTool.begin() + std::max(0L, -nShift), vTool.end())));
    EXPECT_GT(fBest, 45.0);
    EXPECT_NEAR(static_cast<double>(vOurs.size()), static_cast<double>(vTool.size()), 2.0 * 2 * 1152);
}

TEST_F(Mp3Wav, SeeksLandOnTheFrameAskedAndTheLengthIsEstimatedUntilTheEnd)
{
    ASSERT_TRUE(mp3test::MakeMp3(dir, "seek.mp3", 44100, 2, 44100 * 3, "-b 128"));
    LSoundSourcePtr p = LWaveFile::OpenSource(WrapMp3(dir, "seek.mp3", 44100, 2, 128000));
    ASSERT_FALSE(p->IsError());
    const std::vector<int16_t> vTool = mp3test::Mpg123Decode(dir.File("seek.mp3"));
    const int32_t nFrames = static_cast<int32_t>(vTool.size() / 2);
    // From the average bytes per second: within a few frames of the truth before the end is met.
    EXPECT_NEAR(p->GetLength(), nFrames, 4 * 1152);
    for (int32_t sTo : {1, 1151, 50000, 100001, nFrames - 10}) {
        p->SetPosition(sTo);
        EXPECT_EQ(p->GetPosition(), sTo);
        std::vector<int32_t> v(2000);
        p->Read(v.data(), 1000);
        EXPECT_EQ(p->GetPosition(), sTo + 1000);
    }
    p->SetPosition(0);
    const std::vector<int16_t> vFirst = ReadToEnd(*p, 3001);
    EXPECT_EQ(vFirst.size(), vTool.size());
    // Back at the start after the seeks, the decoder starts afresh as it did the first time.
    p->SetPosition(0);
    EXPECT_EQ(codecfiles::FirstDifference(ReadToEnd(*p, 3001), vFirst), -1);
}

TEST_F(Mp3Wav, DecodesButIsNeverOfferedForSaving)
{
    const LWaveFormatRecord record = Mp3Record(44100, 2, 128000);
    const LWaveFormatRecord pcm = LWaveFormatRecord::PCM16(44100, 2);
    EXPECT_TRUE(LCodecStream::Open(nullptr, record, pcm, LCodecStream::kOpenQuery));
    EXPECT_FALSE(LCodecStream::Open(nullptr, pcm, record, LCodecStream::kOpenQuery));
    const LAudioFormat* pWave = LAudioFormat::ByExtension("x.wav");
    ASSERT_NE(pWave, nullptr);
    const std::vector<std::string> v = pWave->GetEncodings();
    EXPECT_EQ(std::find(v.begin(), v.end(), "mp3"), v.end());
    LAudioEncoding encoding{"mp3", record.vBytes, {}};
    EXPECT_FALSE(pWave->CanWrite(encoding));
}

TEST_F(Mp3Wav, DamagedStreamsEndInSilence)
{
    ASSERT_TRUE(mp3test::MakeMp3(dir, "cut.mp3", 22050, 1, 22050, "-b 32"));
    Bytes vStream = testsupport::ReadFileBytes(dir.File("cut.mp3"));
    const size_t nFull = vStream.size();
    Bytes vHalf(vStream.begin(), vStream.begin() + static_cast<long>(nFull / 2 + 37)); // ends inside a frame
    Bytes vNoise(20000);
    uint32_t nSeed = 7;
    for (uint8_t& b : vNoise)
        b = static_cast<uint8_t>((nSeed = nSeed * 1103515245u + 12345u) >> 24);
    for (const Bytes& vData : {vHalf, vNoise, Bytes{0xFF, 0xFB}}) {
        const std::string szPath = dir.File("damaged.wav");
        testsupport::WriteFileBytes(szPath, codecfiles::FileOf(Mp3Record(22050, 1, 32000), vData));
        LSoundSourcePtr p = LWaveFile::OpenSource(szPath);
        ASSERT_FALSE(p->IsError());
        const std::vector<int16_t> v = ReadToEnd(*p, 3001);
        EXPECT_LT(v.size(), 22050u * 2);
        std::vector<int32_t> vAfter(500, 99);
        p->Read(vAfter.data(), 500);
        EXPECT_EQ(vAfter, std::vector<int32_t>(500, 0));
    }
}

#include <gtest/gtest.h>

#include "formats/LWaveFile.h"
#include "support/TestSupport.h"
#include "tests/formats/WavBytes.h"

using namespace wavbytes;

namespace {

class WavRead : public ::testing::Test
{
protected:
    LSoundSourcePtr Open(const Bytes& v, std::string* pszReason = nullptr)
    {
        const std::string szPath = dir.File("t" + std::to_string(++nFiles) + ".wav");
        testsupport::WriteFileBytes(szPath, v);
        return LWaveFile::OpenSource(szPath, pszReason);
    }
    LSoundSourcePtr Open(const WavShape& s, std::string* pszReason = nullptr) { return Open(Build(s), pszReason); }
    bool Opens(const WavShape& s) { return !Open(s)->IsError(); }

    testsupport::TempDir dir;
    int nFiles = 0;
};

WavShape Mono16(std::vector<int16_t> vSamples)
{
    WavShape s;
    s.vData = Samples16(vSamples);
    return s;
}

Bytes WithChunkBeforeFmt(Bytes vChunk)
{
    WavShape s;
    s.vBeforeFmt = vChunk;
    return Build(s);
}

} // namespace

TEST_F(WavRead, ChunkWalkToleratesForeignAndOddChunks)
{
    WavShape s = Mono16({1, 2, 3});
    s.vBeforeRiff = Chunk("JUNK", Bytes(7, 'x'));
    s.vBeforeFmt = Chunk("bext", Bytes(3, 'y'));
    s.vBetween = Chunk("LIST", Bytes(9, 'z'));
    LSoundSourcePtr p = Open(s);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(ReadFrames(*p, 3), (std::vector<int32_t>{16, 32, 48}));
    s.nFmtSize = 17; // "data" follows an odd format chunk at once
    EXPECT_TRUE(Opens(s));
}

TEST_F(WavRead, FormatChunkSizeAndRecordLimits)
{
    WavShape s = Mono16({0});
    for (uint32_t nSize : {16u, 18u, 8192u}) {
        s.nFmtSize = nSize;
        EXPECT_TRUE(Opens(s)) << nSize;
    }
    std::string szReason;
    for (uint32_t nSize : {8u, 15u, 8193u}) {
        s.nFmtSize = nSize;
        EXPECT_TRUE(Open(s, &szReason)->IsError()) << nSize;
        EXPECT_EQ(szReason, "damaged WAV file: format chunk of " + std::to_string(nSize) + " bytes");
    }
    s = Mono16(std::vector<int16_t>(255));
    s.nChans = 255;
    s.nRate = 196000;
    EXPECT_TRUE(Opens(s));
    s.nChans = 256;
    EXPECT_FALSE(Opens(s));
    s.nChans = 1;
    for (uint32_t nRate : {0u, 196001u}) {
        s.nRate = nRate;
        EXPECT_FALSE(Opens(s)) << nRate;
    }
}

TEST_F(WavRead, LengthFromDataSizeOrFileSize)
{
    WavShape s = Mono16({1, 2, 3, 4, 5});
    s.nChans = 2;
    EXPECT_EQ(Open(s)->GetLength(), 2); // the part frame is dropped
    s.nDataSize = 0xFFFFFFFF;           // still being written: as much as the file holds
    s.vData = Samples16({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(Open(s)->GetLength(), 4);
    s.nDataSize = 400; // a size beyond the file is believed, its tail reads as zeros
    LSoundSourcePtr p = Open(s);
    ASSERT_EQ(p->GetLength(), 100);
    std::vector<int32_t> vAll = ReadFrames(*p, 100);
    EXPECT_EQ(vAll[7], 128);
    EXPECT_EQ(vAll[8], 0);
    EXPECT_EQ(vAll[199], 0);
}

TEST_F(WavRead, ConvertsBothSampleWidths)
{
    LSoundSourcePtr p16 = Open(Mono16({0x7FFF, -0x8000, -1}));
    EXPECT_EQ(p16->GetMaxAmplitude(), 0x7FFF0);
    EXPECT_EQ(ReadFrames(*p16, 3), (std::vector<int32_t>{0x7FFF0, -0x80000, -16}));
    WavShape s;
    s.nBits = 8;
    s.vData = {0, 128, 255};
    EXPECT_EQ(ReadFrames(*Open(s), 3), (std::vector<int32_t>{-128 * 4096, 0, 127 * 4096}));
    s.nBits = 0; // a PCM record claiming no bits reads as 8-bit
    EXPECT_EQ(Open(s)->GetLength(), 3);
}

TEST_F(WavRead, ReadsOutsideTheDataAreSilence)
{
    LSoundSourcePtr p = Open(Mono16({1, 2, 3, 4}));
    p->SetPosition(-2);
    EXPECT_EQ(ReadFrames(*p, 4), (std::vector<int32_t>{0, 0, 16, 32}));
    EXPECT_EQ(ReadFrames(*p, 4), (std::vector<int32_t>{48, 64, 0, 0}));
    EXPECT_EQ(p->GetPosition(), 6);
    p->SetPosition(-10);
    EXPECT_EQ(ReadFrames(*p, 3), (std::vector<int32_t>{0, 0, 0}));
    p->SetPosition(100);
    EXPECT_EQ(ReadFrames(*p, 2), (std::vector<int32_t>{0, 0}));
    p->SetPosition(1);
    EXPECT_EQ(ReadFrames(*p, 1), (std::vector<int32_t>{32}));
}

TEST_F(WavRead, LargeReadsMatchBlockwiseReads)
{
    std::vector<int16_t> vSamples(2 * 20000);
    for (size_t i = 0; i < vSamples.size(); ++i)
        vSamples[i] = static_cast<int16_t>(i * 7);
    WavShape s = Mono16(vSamples);
    s.nChans = 2;
    LSoundSourcePtr pWhole = Open(s), pPieces = Open(s);
    std::vector<int32_t> vWhole = ReadFrames(*pWhole, 20010), vPieces;
    for (int32_t n : {1, 8191, 8193, 3000, 625}) {
        std::vector<int32_t> v = ReadFrames(*pPieces, n);
        vPieces.insert(vPieces.end(), v.begin(), v.end());
    }
    EXPECT_EQ(vWhole, vPieces);
    EXPECT_EQ(vWhole[2 * 19999 + 1], vSamples[2 * 19999 + 1] * 16);
}

TEST_F(WavRead, RecordsWithoutAReaderOpenLatched)
{
    std::string szReason;
    WavShape s = Mono16({1, 2, 3});
    // PCM of 24 bits goes to the codec layer, which reads it (two frames here).
    s.nBits = 24;
    LSoundSourcePtr p24 = Open(s, &szReason);
    EXPECT_FALSE(p24->IsError());
    EXPECT_EQ(p24->GetLength(), 2);
    s.nBits = 16;
    s.nTag = 0x11;
    EXPECT_TRUE(Open(s, &szReason)->IsError());
    EXPECT_EQ(szReason, "IMA ADPCM WAV files are not supported");

    // The extensible spelling of 16-bit PCM is plain PCM.
    s.nTag = 0xFFFE;
    s.nFmtSize = 40;
    Bytes v = Build(s);
    const uint8_t kGuid[16] = {1, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
    const size_t nRecord = v.size() - 6 - 8 - 40;
    v[nRecord + 16] = 22;
    std::copy(kGuid, kGuid + 16, v.begin() + nRecord + 24);
    EXPECT_FALSE(Open(v)->IsError());
}

TEST_F(WavRead, DamagedFilesFailWithAReason)
{
    const Bytes vGood = Build(Mono16({1, 2, 3}));
    std::string szReason;
    // Cut at every length: either an error with a reason or a readable source, never a crash.
    for (size_t n = 0; n < vGood.size(); ++n) {
        szReason.clear();
        LSoundSourcePtr p = Open(Bytes(vGood.begin(), vGood.begin() + n), &szReason);
        EXPECT_EQ(p->IsError(), n < 44) << n;
        EXPECT_EQ(p->IsError(), !szReason.empty()) << n;
        ReadFrames(*p, 5);
    }
    const std::pair<Bytes, std::string> cases[] = {
        {Bytes(100, 'x'), "not a WAV file: no RIFF WAVE chunk found"},
        {{'a', 'b', 'c', 'd', 3, 0, 0, 0, 1, 2, 3, 4, 5, 6}, "not a WAV file: damaged chunk ahead of the RIFF WAVE chunk"},
        {WithChunkBeforeFmt({'b', 'i', 'g', ' ', 0xF0, 0xFF, 0xFF, 0x7F}), "damaged WAV file: no 'fmt ' chunk"},
        {WithChunkBeforeFmt({'b', 'i', 'g', ' ', 0xF0, 0xFF, 0xFF, 0xFF}),
         "damaged WAV file: a chunk size is out of range"},
    };
    for (const auto& [vBytes, szExpected] : cases) {
        EXPECT_TRUE(Open(vBytes, &szReason)->IsError());
        EXPECT_EQ(szReason, szExpected);
    }
    EXPECT_TRUE(LWaveFile::OpenSource(dir.File("missing.wav"), &szReason)->IsError());
    EXPECT_EQ(szReason, "cannot open the file: No such file or directory");
    LSoundSourcePtr p = LWaveFile::OpenSource(dir.Path());
    EXPECT_EQ(p->GetSampleRate(), 11025);
    EXPECT_EQ(p->GetChannels(), 1);
}

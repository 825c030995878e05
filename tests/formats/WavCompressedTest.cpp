// The compressed WAV reader and writer: headers, lengths, chunk layouts, ends and seeking.
#include <gtest/gtest.h>

#include "formats/LWaveFile.h"
#include "formats/codec/LCodec.h"
#include "formats/codec/LCodecFloat.h"
#include "formats/codec/LCodecPCM.h"
#include "tests/formats/CodecFiles.h"

using namespace codecfiles;
using testsupport::ReadFileBytes;
using testsupport::WriteFileBytes;

namespace {

LWaveFormatRecord Record(const char* szCodec, uint32_t nRate, uint16_t nChans)
{
    LWaveFormatRecord r;
    EXPECT_TRUE(LCodec::ByShortName(szCodec)->MakeRecord(nRate, nChans, r)) << szCodec;
    return r;
}

LWaveFormatRecord WithBlock(LWaveFormatRecord r, uint16_t nBlock)
{
    std::vector<uint8_t> v = r.vBytes;
    v[12] = static_cast<uint8_t>(nBlock);
    v[13] = static_cast<uint8_t>(nBlock >> 8);
    r.Decode(v.data(), v.size());
    return r;
}

uint32_t Get32(const Bytes& v, size_t n)
{
    return v[n] | (v[n + 1] << 8) | (v[n + 2] << 16) | (static_cast<uint32_t>(v[n + 3]) << 24);
}

class WavCompressed : public ::testing::Test
{
protected:
    std::string Path() { return dir.File("c" + std::to_string(++nFiles) + ".wav"); }
    // Our encoding of the samples; returns the file's bytes.
    Bytes Encode(const LWaveFormatRecord& r, const std::vector<int16_t>& v)
    {
        const std::string sz = Path();
        EXPECT_TRUE(EncodeFile(sz, r, v));
        return ReadFileBytes(sz);
    }
    LSoundSourcePtr Open(const Bytes& v)
    {
        const std::string sz = Path();
        WriteFileBytes(sz, v);
        return LWaveFile::OpenSource(sz);
    }
    // The data chunk of a file we wrote (the last chunk).
    static Bytes DataOf(const Bytes& vFile)
    {
        size_t nAt = 12;
        while (nAt + 8 <= vFile.size() && std::string(vFile.begin() + nAt, vFile.begin() + nAt + 4) != "data")
            nAt += 8 + Get32(vFile, nAt + 4);
        nAt += 8;
        return Bytes(vFile.begin() + static_cast<long>(std::min(nAt, vFile.size())), vFile.end());
    }

    testsupport::TempDir dir;
    int nFiles = 0;
};

} // namespace

TEST_F(WavCompressed, HeaderIsOpenWhileWritingAndCompletedOnClose)
{
    const LWaveFormatRecord r = Record("ima", 8000, 1);
    const std::string sz = Path();
    {
        LSoundSinkPtr p = LWaveFile::OpenSink(sz, r);
        ASSERT_FALSE(p->IsError());
        p->Write(std::vector<int32_t>(1000, 160).data(), 1000);
        const Bytes vOpen = ReadFileBytes(sz);
        EXPECT_EQ(Get32(vOpen, 4), 0xFFFFFFFFu);
        EXPECT_EQ(Get32(vOpen, 16), 20u); // 18 + cbSize 2
        EXPECT_EQ(std::string(vOpen.begin() + 40, vOpen.begin() + 44), "fact");
        EXPECT_EQ(Get32(vOpen, 56), 0xFFFFFFFFu);
        // A file whose writer has not closed yet reads as streaming: one whole block so far.
        LSoundSourcePtr pSrc = LWaveFile::OpenSource(sz);
        ASSERT_FALSE(pSrc->IsError());
        EXPECT_EQ(pSrc->GetLength(), 505);
    }
    // One whole block, then 495 frames in a block of 4 + 62 x 4 bytes; "fact" holds the true count.
    const Bytes v = ReadFileBytes(sz);
    ASSERT_EQ(v.size(), 60u + 256 + 252);
    EXPECT_EQ(Get32(v, 4), 52u + 256 + 252); // 38 + cbSize + fact + data
    EXPECT_EQ(Get32(v, 44), 4u);
    EXPECT_EQ(Get32(v, 48), 1000u);
    EXPECT_EQ(Get32(v, 56), 256u + 252);
    EXPECT_EQ(std::string(v.begin() + 52, v.begin() + 56), "data");
    EXPECT_EQ(LWaveFile::OpenSource(sz)->GetLength(), 1000);

    // Closed after nothing: the bare header with the sizes and the count filled in.
    const LWaveFormatRecord ms = Record("msadpcm", 8000, 2);
    const std::string szEmpty = Path();
    LWaveFile::OpenSink(szEmpty, ms).Reset();
    const Bytes vEmpty = ReadFileBytes(szEmpty);
    ASSERT_EQ(vEmpty.size(), 58u + 32);
    EXPECT_EQ(Get32(vEmpty, 4), 50u + 32);
    EXPECT_EQ(Get32(vEmpty, 78), 0u);
    EXPECT_EQ(Get32(vEmpty, 86), 0u);
}

TEST_F(WavCompressed, SinkFailsCleanly)
{
    // A record nothing encodes, and a folder that does not exist.
    EXPECT_TRUE(LWaveFile::OpenSink(Path(), LWaveFormatRecord::Make(0x1234, 1, 8000, 8000, 1, 8))->IsError());
    EXPECT_TRUE(LWaveFile::OpenSink(dir.File("no/such.wav"), Record("ima", 8000, 1))->IsError());
}

TEST_F(WavCompressed, FixedRatioCodecsGiveTheExactLength)
{
    const std::vector<int16_t> vIn = Tones(8000, 2, 1001);
    for (const LWaveFormatRecord& r : {LCodecPCM::MakeWide(8000, 2, 24), LCodecPCM::MakeWide(8000, 2, 32),
                                       LCodecFloat::MakeFloat(8000, 2, 32), LCodecFloat::MakeFloat(8000, 2, 64)}) {
        const Bytes vFile = Encode(r, vIn);
        LSoundSourcePtr p = Open(vFile);
        ASSERT_FALSE(p->IsError());
        EXPECT_EQ(p->GetLength(), 1001);
        EXPECT_EQ(DecodeAll(*p), vIn); // 16-bit samples survive these formats unchanged
        // Streaming size, and a part frame at the end, are both taken as the whole frames there.
        const uint32_t nStreaming = 0xFFFFFFFF;
        Bytes vData = DataOf(vFile);
        vData.push_back(1);
        EXPECT_EQ(Open(FileOf(r, vData, {}, &nStreaming))->GetLength(), 1001);
        EXPECT_EQ(Open(FileOf(r, vData))->GetLength(), 1001);
    }
}

TEST_F(WavCompressed, ChunksBeforeDataAndStreamingSizeKeepTheLength)
{
    const std::vector<int16_t> vIn = Tones(11025, 1, 3000);
    for (const char* szCodec : {"ima", "msadpcm", "pcm24", "float", "alaw", "ulaw", "gsm"}) {
        const LWaveFormatRecord r = Record(szCodec, 11025, 1);
        const Bytes vData = DataOf(Encode(r, vIn));
        LSoundSourcePtr pPlain = Open(FileOf(r, vData));
        const int32_t nLength = pPlain->GetLength();
        const std::vector<int16_t> vPlain = DecodeAll(*pPlain);
        // The last block of ADPCM keeps only what it needs; GSM fills its last block of 320.
        EXPECT_GE(nLength, 3000) << szCodec;
        EXPECT_LT(nLength, std::string(szCodec) == "gsm" ? 3201 : 3000 + 8) << szCodec;
        Bytes vFact = Chunk("fact", {0xB8, 0x0B, 0, 0});
        const Bytes vList = Chunk("LIST", Bytes(13, 'i'));
        vFact.insert(vFact.end(), vList.begin(), vList.end());
        const uint32_t nStreaming = 0xFFFFFFFF;
        LSoundSourcePtr pStreaming = Open(FileOf(r, vData, {}, &nStreaming));
        ASSERT_FALSE(pStreaming->IsError()) << szCodec;
        EXPECT_EQ(pStreaming->GetLength(), nLength) << szCodec;
        EXPECT_EQ(DecodeAll(*pStreaming), vPlain) << szCodec;
        // A "fact" count of 3000 ends the sound there: the rest is the last block's padding.
        LSoundSourcePtr pFact = Open(FileOf(r, vData, vFact));
        ASSERT_FALSE(pFact->IsError()) << szCodec;
        EXPECT_EQ(pFact->GetLength(), 3000) << szCodec;
        EXPECT_EQ(DecodeAll(*pFact), std::vector<int16_t>(vPlain.begin(), vPlain.begin() + 3000)) << szCodec;
    }
}

TEST_F(WavCompressed, StereoOddBlocksAndAShortLastBlock)
{
    const std::vector<int16_t> vIn = Tones(8000, 2, 2500);
    const LWaveFormatRecord vRecords[] = {WithBlock(Record("ima", 8000, 2), 72), WithBlock(Record("ima", 8000, 1), 36),
                                          WithBlock(Record("msadpcm", 8000, 2), 101),
                                          WithBlock(Record("msadpcm", 8000, 1), 77)};
    for (const LWaveFormatRecord& r : vRecords) {
        SCOPED_TRACE(std::to_string(r.wFormatTag) + "/" + std::to_string(r.nChannels) + "/" + std::to_string(r.nBlockAlign));
        const std::vector<int16_t> vIn1 = std::vector<int16_t>(vIn.begin(), vIn.begin() + 2500 * r.nChannels);
        const Bytes vData = DataOf(Encode(r, vIn1));
        LSoundSourcePtr p = Open(FileOf(r, vData));
        ASSERT_FALSE(p->IsError());
        const std::vector<int16_t> vOut = DecodeAll(*p);
        ASSERT_GE(vOut.size(), vIn1.size());
        EXPECT_GT(SnrDb(vIn1, vOut), 15); // a sweep to 3 kHz at 8000 Hz: hard going for 4 bits
        // The padding after the last frame repeats it: no jump to silence at the end.
        for (size_t i = vIn1.size(); i < vOut.size(); ++i)
            EXPECT_LT(std::abs(vOut[i] - vIn1[vIn1.size() - r.nChannels + i % r.nChannels]), 2000) << i;
        // Cut inside the last whole block: the blocks before decode as they did, the part as far as it goes.
        const size_t nCut = vData.size() - r.nBlockAlign / 2 - r.nBlockAlign;
        LSoundSourcePtr pCut = Open(FileOf(r, Bytes(vData.begin(), vData.begin() + static_cast<long>(nCut))));
        const std::vector<int16_t> vCut = DecodeAll(*pCut);
        ASSERT_LT(vCut.size(), vOut.size());
        EXPECT_GT(vCut.size(), vOut.size() - 2 * r.nBlockAlign * 2);
        EXPECT_TRUE(std::equal(vCut.begin(), vCut.end(), vOut.begin()));
        EXPECT_EQ(pCut->GetLength() * r.nChannels, static_cast<int32_t>(vCut.size()));
    }
}

TEST_F(WavCompressed, ReadsOutsideTheDataAreSilence)
{
    const LWaveFormatRecord r = Record("ima", 8000, 1);
    LSoundSourcePtr p = Open(FileOf(r, DataOf(Encode(r, Tones(8000, 1, 600)))));
    const std::vector<int16_t> vAll = DecodeAll(*p);
    p->SetPosition(-3);
    std::vector<int32_t> v(10, 7);
    p->Read(v.data(), 10);
    EXPECT_EQ(v[0], 0);
    EXPECT_EQ(v[2], 0);
    for (int i = 3; i < 10; ++i)
        EXPECT_EQ(v[i], vAll[i - 3] * 16);
    EXPECT_EQ(p->GetPosition(), 7);
    p->SetPosition(p->GetLength() - 2);
    p->Read(v.data(), 10);
    EXPECT_EQ(v[1], vAll.back() * 16);
    EXPECT_EQ(v[2], 0);
    EXPECT_EQ(v[9], 0);
    p->SetPosition(p->GetLength() + 5000);
    p->Read(v.data(), 10);
    EXPECT_EQ(v, std::vector<int32_t>(10, 0));
    EXPECT_EQ(p->GetPosition(), static_cast<int32_t>(vAll.size()) + 5010);
}

TEST_F(WavCompressed, SeekLandsOnTheFrameAndReadsWhatStraightReadingGives)
{
    for (const char* szCodec : {"ima", "msadpcm", "pcm24", "float", "alaw", "ulaw", "gsm"}) {
        for (uint16_t nChans : {1, 2}) {
            if (nChans == 2 && std::string(szCodec) == "gsm")
                continue;
            SCOPED_TRACE(std::string(szCodec) + " " + std::to_string(nChans));
            const LWaveFormatRecord r = Record(szCodec, 22050, nChans);
            LSoundSourcePtr p = Open(FileOf(r, DataOf(Encode(r, Tones(22050, nChans, 40000)))));
            const std::vector<int16_t> vAll = DecodeAll(*p);
            for (int32_t f : {1, 1016, 1017, 1018, 5000, 20339, 33000, 39990}) {
                p->SetPosition(f);
                EXPECT_EQ(p->GetPosition(), f);
                const int32_t n = std::min(700, static_cast<int32_t>(vAll.size() / nChans) - f);
                std::vector<int32_t> vBuf(static_cast<size_t>(n) * nChans);
                p->SetPosition(f);
                p->Read(vBuf.data(), n);
                const std::vector<int16_t> vStraight(vAll.begin() + static_cast<long>(f) * nChans,
                                                     vAll.begin() + static_cast<long>(f + n) * nChans);
                std::vector<int16_t> vSeeked(vBuf.size());
                for (size_t i = 0; i < vBuf.size(); ++i)
                    vSeeked[i] = static_cast<int16_t>(vBuf[i] >> 4);
                // GSM carries memory across blocks: the memory kept while reading straight through
                // is put back, so a seek gives the same samples.
                ASSERT_EQ(FirstDifference(vStraight, vSeeked), -1) << f;
                EXPECT_EQ(p->GetPosition(), f + n);
            }
        }
    }
}

TEST_F(WavCompressed, GsmSeeksAheadOfWhatWasReadSettleAndThenResumeExactly)
{
    const LWaveFormatRecord r = Record("gsm", 8000, 1);
    const std::vector<uint8_t> vFile = FileOf(r, DataOf(Encode(r, Tones(8000, 1, 80000))));
    LSoundSourcePtr pStraight = Open(vFile);
    const std::vector<int16_t> vAll = DecodeAll(*pStraight);
    LSoundSourcePtr p = Open(vFile);
    auto ReadAt = [&](int32_t f, int32_t n) {
        p->SetPosition(f);
        std::vector<int32_t> vBuf(static_cast<size_t>(n));
        p->Read(vBuf.data(), n);
        std::vector<int16_t> v(vBuf.size());
        for (size_t i = 0; i < v.size(); ++i)
            v[i] = static_cast<int16_t>(vBuf[i] >> 4);
        return v;
    };
    const auto Straight = [&](int32_t f, int32_t n) {
        return std::vector<int16_t>(vAll.begin() + f, vAll.begin() + f + n);
    };
    // Never read up to there: decoding starts a second ahead and has nearly settled.
    EXPECT_GT(SnrDb(Straight(60000, 700), ReadAt(60000, 700)), 30);
    // Read from the start once, every later seek into that stretch is exact.
    EXPECT_EQ(FirstDifference(Straight(0, 50000), ReadAt(0, 50000)), -1);
    for (int32_t f : {49000, 7, 33333, 12345})
        ASSERT_EQ(FirstDifference(Straight(f, 900), ReadAt(f, 900)), -1) << f;
}

TEST_F(WavCompressed, DamagedAndUnknownRecordsOpenLatchedWithAReason)
{
    std::string szReason;
    const std::string sz = Path();
    WriteFileBytes(sz, FileOf(LWaveFormatRecord::Make(0x1234, 1, 8000, 8000, 1, 8), Bytes(10)));
    EXPECT_TRUE(LWaveFile::OpenSource(sz, &szReason)->IsError());
    EXPECT_EQ(szReason, "format 0x1234 WAV files are not supported");
    // IMA with a block too small for its header.
    WriteFileBytes(sz, FileOf(LWaveFormatRecord::Make(0x11, 1, 8000, 4000, 4, 4, {1, 0}), Bytes(10)));
    EXPECT_TRUE(LWaveFile::OpenSource(sz, &szReason)->IsError());
    EXPECT_EQ(szReason, "IMA ADPCM WAV files are not supported");
    // Blocks that decode to more frames than a buffer holds.
    WriteFileBytes(sz, FileOf(WithBlock(Record("msadpcm", 8000, 1), 8000), Bytes(10)));
    EXPECT_TRUE(LWaveFile::OpenSource(sz, &szReason)->IsError());
    // Damaged data decodes to something, never fails the read.
    Bytes vJunk(5000);
    for (size_t i = 0; i < vJunk.size(); ++i)
        vJunk[i] = static_cast<uint8_t>(i * 37 + (i >> 3));
    for (const char* szCodec : {"ima", "msadpcm"}) {
        LSoundSourcePtr p = Open(FileOf(Record(szCodec, 8000, 2), vJunk));
        ASSERT_FALSE(p->IsError());
        EXPECT_GT(DecodeAll(*p).size(), 4000u);
    }
}

#include <gtest/gtest.h>

#include "core/LFile.h"
#include "formats/LWaveFile.h"
#include "support/TestSupport.h"
#include "tests/formats/WavBytes.h"

using namespace wavbytes;
using testsupport::ReadFileBytes;
using testsupport::TempDir;

namespace {

uint32_t Get32(const Bytes& v, size_t n)
{
    return v[n] | (v[n + 1] << 8) | (v[n + 2] << 16) | (static_cast<uint32_t>(v[n + 3]) << 24);
}

void Write(LSoundSinkBase& sink, std::vector<int32_t> vSamples)
{
    sink.Write(vSamples.data(), static_cast<int32_t>(vSamples.size() / sink.GetChannels()));
}

} // namespace

TEST(WavWrite, EmptySinkLeavesTheClosedHeader)
{
    TempDir dir;
    const std::string szPath = dir.File("e.wav");
    LWaveFile::OpenSinkPCM(szPath, 22050, 0, 16, 2); // destroyed at once
    Bytes vExpected = {'R', 'I', 'F', 'F', 38, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0, 2, 0};
    for (auto [x, n] : {std::pair<uint32_t, int>{22050, 4}, {22050 * 4, 4}, {4, 2}, {16, 2}, {0, 2}})
        Put(vExpected, x, n);
    vExpected.insert(vExpected.end(), {'d', 'a', 't', 'a', 0, 0, 0, 0});
    EXPECT_EQ(ReadFileBytes(szPath), vExpected);
}

TEST(WavWrite, RoundTripsThroughTheReaderWhileOpenAndAfterClose)
{
    TempDir dir;
    for (int nBits : {8, 16}) {
        const std::string szPath = dir.File("r" + std::to_string(nBits) + ".wav");
        const std::vector<int32_t> vIn = {0x7FFF0 & ~0xFFF, -0x80000, 4096, -4096, 0, 0x12000};
        LSoundSinkPtr pSink = LWaveFile::OpenSinkPCM(szPath, 8000, 0, nBits, 2);
        ASSERT_TRUE(pSink && !pSink->IsError());
        Write(*pSink, vIn);
        EXPECT_EQ(pSink->GetPosition(), 3);
        // An unfinished file keeps the open sizes and reads as streaming.
        EXPECT_EQ(Get32(ReadFileBytes(szPath), 42), 0xFFFFFFFFu);
        EXPECT_EQ(LWaveFile::OpenSource(szPath)->GetLength(), 3);
        pSink.Reset();
        EXPECT_EQ(Get32(ReadFileBytes(szPath), 42), 3u * 2 * nBits / 8);
        LSoundSourcePtr pSrc = LWaveFile::OpenSource(szPath);
        EXPECT_EQ(ReadFrames(*pSrc, 3), vIn) << nBits;
    }
}

TEST(WavWrite, RoundsAndWrapsInsteadOfClipping)
{
    TempDir dir;
    const std::string szPath = dir.File("w.wav");
    Write(*LWaveFile::OpenSinkPCM(szPath, 8000, 0, 16, 1), {0x7FFF7, 0x7FFF8, -0x80000, -0x80009, 7, 8});
    EXPECT_EQ(ReadFrames(*LWaveFile::OpenSource(szPath), 6),
              (std::vector<int32_t>{0x7FFF0, -0x80000, -0x80000, 0x7FFF0, 0, 16}));
    Write(*LWaveFile::OpenSinkPCM(szPath, 8000, 0, 8, 1), {127 * 4096 + 2047, 127 * 4096 + 2048, 2048});
    EXPECT_EQ(ReadFrames(*LWaveFile::OpenSource(szPath), 3), (std::vector<int32_t>{127 * 4096, -128 * 4096, 4096}));
}

TEST(WavWrite, SeekOnlyTruncatesBackwards)
{
    TempDir dir;
    const std::string szPath = dir.File("s.wav");
    LSoundSinkPtr pSink = LWaveFile::OpenSinkPCM(szPath, 8000, 0, 16, 1);
    Write(*pSink, {16, 32, 48, 64});
    pSink->SetPosition(10);
    EXPECT_EQ(pSink->GetPosition(), 4);
    pSink->SetPosition(2);
    EXPECT_EQ(pSink->GetPosition(), 2);
    EXPECT_EQ(ReadFileBytes(szPath).size(), 46u + 4);
    Write(*pSink, {80});
    pSink->SetPosition(-5);
    EXPECT_EQ(pSink->GetPosition(), 0);
    Write(*pSink, {96});
    pSink.Reset();
    EXPECT_EQ(ReadFileBytes(szPath).size(), 46u + 2);

    // A sink opened at a start frame continues the file from there.
    Write(*LWaveFile::OpenSinkPCM(szPath, 8000, 0, 16, 1), {16, 32, 48});
    pSink = LWaveFile::OpenSinkPCM(szPath, 8000, 2, 16, 1);
    Write(*pSink, {160, 176});
    EXPECT_EQ(pSink->GetPosition(), 4);
    pSink.Reset();
    EXPECT_EQ(ReadFrames(*LWaveFile::OpenSource(szPath), 4), (std::vector<int32_t>{16, 32, 160, 176}));
}

TEST(WavWrite, SinkChoiceByBitsAndFailures)
{
    TempDir dir;
    const std::string szPath = dir.File("b.wav");
    EXPECT_FALSE(LWaveFile::OpenSinkPCM(szPath, 8000, 0, 17, 1));
    EXPECT_FALSE(LWaveFile::OpenSinkPCM(szPath, 8000, 0, 0, 1));
    EXPECT_FALSE(LFile::Exists(szPath));
    for (int nBits : {1, 8, 9, 16}) {
        LWaveFile::OpenSinkPCM(szPath, 8000, 0, nBits, 1);
        EXPECT_EQ(ReadFileBytes(szPath)[34], nBits <= 8 ? 8 : 16) << nBits;
    }
    LSoundSinkPtr pBad = LWaveFile::OpenSinkPCM(dir.File("no/such/folder.wav"), 8000, 0, 16, 1);
    ASSERT_TRUE(pBad);
    EXPECT_TRUE(pBad->IsError());
    Write(*pBad, {1, 2}); // a latched sink ignores writes
}

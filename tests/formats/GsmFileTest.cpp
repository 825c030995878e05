#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "core/LMemorySound.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "formats/LGSMFileSink.h"
#include "formats/LGSMFileSource.h"
#include "formats/LGSMFrame.h"
#include "tests/formats/GsmSignals.h"
#include "tests/formats/SaveProcess.h"
#include "work/LProgressDialog.h"

using namespace gsmsignals;
using testsupport::TempDir;

namespace {

std::vector<int32_t> Internal(const Samples& v)
{
    std::vector<int32_t> vOut(v.size());
    for (size_t i = 0; i < v.size(); ++i)
        vOut[i] = v[i] * 16;
    return vOut;
}

std::vector<int32_t> ReadAll(LSoundSourceBase& src, int32_t nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * src.GetChannels(), 12345);
    src.Read(v.data(), nFrames);
    return v;
}

void WriteGsm(const std::string& szPath, const std::vector<int32_t>& vSamples, int32_t nChunk = 1000)
{
    LSoundSinkPtr pSink(new LGSMFileSink(szPath));
    ASSERT_FALSE(pSink->IsError());
    for (size_t i = 0; i < vSamples.size(); i += static_cast<size_t>(nChunk)) {
        const int32_t n = static_cast<int32_t>(std::min<size_t>(nChunk, vSamples.size() - i));
        pSink->Write(vSamples.data() + i, n);
    }
    EXPECT_EQ(pSink->GetPosition(), static_cast<int32_t>(vSamples.size()));
}

// Frames of a signal coded by a fresh codec, as a file of them holds them.
Bytes Frames(const Samples& vIn)
{
    Samples v = vIn;
    v.resize((v.size() + 159) / 160 * 160, 0);
    LGSMFrame codec;
    Bytes vOut(v.size() / 160 * 33);
    for (size_t f = 0; f < v.size() / 160; ++f)
        codec.EncodeNormal(v.data() + 160 * f, vOut.data() + 33 * f);
    return vOut;
}

} // namespace

TEST(GsmFile, LengthCountsWholeFramesOnly)
{
    TempDir dir;
    const Bytes vFrames = Frames(Noise(16000, 3000, 1));
    ASSERT_EQ(vFrames.size(), 3300u);
    Bytes vLonger = vFrames;
    vLonger.resize(3310, 0xD5);
    testsupport::WriteFileBytes(dir.File("a.gsm"), vFrames);
    testsupport::WriteFileBytes(dir.File("b.gsm"), vLonger);
    for (const char* szName : {"a.gsm", "b.gsm"}) {
        LGSMFileSource src(dir.File(szName));
        EXPECT_FALSE(src.IsError());
        EXPECT_EQ(src.GetLength(), 16000) << szName;
        EXPECT_EQ(src.GetSampleRate(), 8000);
        EXPECT_EQ(src.GetChannels(), 1);
        // The part frame reads as the silence behind the end.
        const std::vector<int32_t> vA = ReadAll(src, 16100);
        EXPECT_TRUE(std::all_of(vA.begin() + 16000, vA.end(), [](int32_t s) { return s == 0; }));
    }
    LGSMFileSource missing(dir.File("none.gsm"));
    EXPECT_TRUE(missing.IsError());
    EXPECT_EQ(ReadAll(missing, 3), (std::vector<int32_t>{0, 0, 0}));
}

TEST(GsmFile, SinkCompletesTheLastFrameWithSilenceAndWritesNothingForNothing)
{
    TempDir dir;
    const Samples v = Noise(161, 9000, 4);
    WriteGsm(dir.File("161.gsm"), Internal(v), 7);
    const Bytes vFile = testsupport::ReadFileBytes(dir.File("161.gsm"));
    EXPECT_EQ(vFile.size(), 66u);
    EXPECT_EQ(vFile, Frames(v)) << "the second frame codes one sample and 159 zeros";

    WriteGsm(dir.File("0.gsm"), {});
    EXPECT_TRUE(LFile::Exists(dir.File("0.gsm")));
    EXPECT_TRUE(testsupport::ReadFileBytes(dir.File("0.gsm")).empty());

    LSoundSinkPtr pSink(new LGSMFileSink(dir.File("no/such/folder.gsm")));
    EXPECT_TRUE(pSink->IsError());
}

TEST(GsmFile, SinkRoundsInternalSamplesToSixteenBitsAndWraps)
{
    TempDir dir;
    // v x 16 plus up to 7 rounds down to v, plus 8 rounds up; beyond full scale wraps.
    std::vector<int32_t> vInternal = Internal(Noise(320, 20000, 8));
    Samples vExpected(320);
    for (size_t i = 0; i < vInternal.size(); ++i) {
        const int32_t nNudge = static_cast<int32_t>(i % 16) - 8;
        vInternal[i] += nNudge;
        vExpected[i] = static_cast<int16_t>((vInternal[i] + 8) >> 4);
    }
    vInternal[5] = 0x7FFF8; // wraps to -32768
    vExpected[5] = -32768;
    WriteGsm(dir.File("r.gsm"), vInternal);
    EXPECT_EQ(testsupport::ReadFileBytes(dir.File("r.gsm")), Frames(vExpected));
}

TEST(GsmFile, FilesMatchToastAndUntoastBitForBit)
{
    if (!HaveToast())
        GTEST_SKIP() << "toast/untoast (libgsm-tools) are not installed";
    TempDir dir;
    Samples v = HaveSpeechTools() ? Speech(dir, "en-gb", "The file holds whole frames of speech.") : Noise(20000, 8000, 3);
    ASSERT_FALSE(v.empty());
    v.resize(v.size() / 160 * 160 + 17, 0); // a part frame at the end

    WriteGsm(dir.File("ours.gsm"), Internal(v), 4099);
    const Bytes vTheirs = Toast(dir, v);
    EXPECT_EQ(testsupport::ReadFileBytes(dir.File("ours.gsm")), vTheirs);

    testsupport::WriteFileBytes(dir.File("theirs.gsm"), vTheirs);
    LGSMFileSource src(dir.File("theirs.gsm"));
    ASSERT_EQ(src.GetLength(), static_cast<int32_t>(vTheirs.size() / 33 * 160));
    // Odd read sizes cross frame boundaries anywhere.
    std::vector<int32_t> vOurs;
    for (int32_t n = 1; static_cast<int32_t>(vOurs.size()) < src.GetLength(); n = n * 3 % 997 + 1) {
        const std::vector<int32_t> vPart = ReadAll(src, n);
        vOurs.insert(vOurs.end(), vPart.begin(), vPart.end());
    }
    vOurs.resize(static_cast<size_t>(src.GetLength()));
    EXPECT_EQ(vOurs, Internal(Untoast(dir, vTheirs)));
}

TEST(GsmFile, ReadsSilenceOutsideTheFileAndSeeksToAnyFrame)
{
    TempDir dir;
    const Samples v = Noise(160 * 120, 6000, 12);
    testsupport::WriteFileBytes(dir.File("n.gsm"), Frames(v));
    LGSMFileSource src(dir.File("n.gsm"));
    const std::vector<int32_t> vAll = ReadAll(src, src.GetLength());

    src.SetPosition(-5);
    std::vector<int32_t> vHead = ReadAll(src, 10);
    EXPECT_EQ(src.GetPosition(), 5);
    EXPECT_EQ(std::vector<int32_t>(vHead.begin(), vHead.begin() + 5), std::vector<int32_t>(5, 0));
    EXPECT_EQ(std::vector<int32_t>(vHead.begin() + 5, vHead.end()), std::vector<int32_t>(vAll.begin(), vAll.begin() + 5));

    src.SetPosition(src.GetLength() - 2);
    const std::vector<int32_t> vTail = ReadAll(src, 4);
    EXPECT_EQ(vTail, (std::vector<int32_t>{vAll[vAll.size() - 2], vAll.back(), 0, 0}));

    // Short jumps ahead decode their way there and are exact.
    for (int32_t s : {1000, 1161, 1161 + 160 * 20, 1161 + 160 * 45 + 3}) {
        src.SetPosition(s);
        EXPECT_EQ(ReadAll(src, 300), std::vector<int32_t>(vAll.begin() + s, vAll.begin() + s + 300)) << s;
    }
    // Jumps back or far restart the decoder early enough for its memory to settle.
    for (int32_t s : {100, 160 * 100 + 77, 160 * 3, 0}) {
        src.SetPosition(s);
        const std::vector<int32_t> vGot = ReadAll(src, 400);
        int32_t nWorst = 0;
        for (size_t i = 0; i < vGot.size(); ++i)
            nWorst = std::max(nWorst, std::abs(vGot[i] - vAll[static_cast<size_t>(s) + i]));
        EXPECT_LE(nWorst, 16 * 8) << "at " << s;
    }
}

TEST(GsmFile, FrameWithoutSignatureReadsAsSilence)
{
    TempDir dir;
    Bytes vFrames = Frames(Noise(160 * 4, 6000, 2));
    vFrames[33 * 2] = 0x00;
    testsupport::WriteFileBytes(dir.File("bad.gsm"), vFrames);
    LGSMFileSource src(dir.File("bad.gsm"));
    const std::vector<int32_t> v = ReadAll(src, 640);
    EXPECT_TRUE(std::all_of(v.begin() + 320, v.begin() + 480, [](int32_t s) { return s == 0; }));
    EXPECT_FALSE(std::all_of(v.begin() + 480, v.end(), [](int32_t s) { return s == 0; }));
    EXPECT_EQ(src.GetBadFrames(), 1);
}

TEST(GsmFormat, OpensThroughTheDoorByExtensionAndRefusesWhatIsNotGsm)
{
    TempDir dir;
    testsupport::WriteFileBytes(dir.File("a.gsm"), Frames(Noise(1600, 6000, 2)));
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("a.gsm"), &szError, &details);
    ASSERT_FALSE(p->IsError()) << szError;
    EXPECT_EQ(p->GetLength(), 1600);
    EXPECT_EQ(p->GetMaxAmplitude(), 0x7FFF0);
    EXPECT_EQ(details.szFormat, "GSM");
    EXPECT_EQ(details.szEncoding, "06.10 full rate");
    EXPECT_EQ(details.encoding.szName, "gsm");

    const std::pair<Bytes, std::string> cases[] = {
        {Bytes(20, 0xD0), "not a GSM file: shorter than one 33-byte frame"},
        {Bytes(66, 0x00), "not a GSM file: the first frame lacks the GSM signature"},
    };
    for (const auto& [vBytes, szReason] : cases) {
        testsupport::WriteFileBytes(dir.File("x.gsm"), vBytes);
        EXPECT_TRUE(LAudioFile::OpenSource(dir.File("x.gsm"), &szError)->IsError());
        EXPECT_EQ(szError, szReason);
    }
    const LAudioFormat* pGsm = LAudioFormat::ByExtension("x.GSM");
    ASSERT_NE(pGsm, nullptr);
    EXPECT_EQ(pGsm, LAudioFormat::ByName("GSM"));
    EXPECT_EQ(pGsm->GetFileTypes().front().szLabel, "Gsm Files(*.gsm)");
    EXPECT_EQ(pGsm->GetDefaultExtension(), ".gsm");
}

TEST(GsmFormat, SavingConvertsToEightKilohertzMonoAndOpeningSinksRefusesOtherShapes)
{
    TempDir dir;
    // One second of 22050 Hz stereo, different in each channel.
    std::vector<int32_t> v(2 * 22050);
    const Samples vLeft = Noise(22050, 4000, 5);
    for (size_t i = 0; i < vLeft.size(); ++i) {
        v[2 * i] = vLeft[i] * 16;
        v[2 * i + 1] = -vLeft[i] * 16;
    }
    SaveProcess save(new LSRCMemory(v, 22050, 2), dir.File("s.gsm"));
    ASSERT_EQ(save.Run(), 0) << save.szError;
    LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("s.gsm"));
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetSampleRate(), 8000);
    EXPECT_EQ(p->GetChannels(), 1);
    EXPECT_EQ(p->GetLength(), 8000);

    std::string szError;
    EXPECT_FALSE(LAudioFile::OpenSink(dir.File("w.gsm"), 44100, 1, LAudioEncoding(), &szError));
    EXPECT_EQ(szError, "GSM files hold 8000 Hz mono only (asked for 44100 Hz, 1 channel)");
    EXPECT_FALSE(LAudioFile::OpenSink(dir.File("w.gsm"), 8000, 2, LAudioEncoding(), &szError));
    LSoundSinkPtr pSink = LAudioFile::OpenSink(dir.File("w.gsm"), 8000, 1, LAudioEncoding::Named("pcm8"), &szError);
    ASSERT_TRUE(pSink) << szError;
    EXPECT_FALSE(pSink->IsError());
}

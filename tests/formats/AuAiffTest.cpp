#include <gtest/gtest.h>

#include <cstring>

#include "core/LMemorySound.h"
#include "formats/LAifFile.h"
#include "formats/LAuFile.h"
#include "formats/LAudioFile.h"
#include "formats/LG711.h"
#include "support/TestSupport.h"
#include "tests/formats/ToolAudio.h"
#include "tests/formats/SaveProcess.h"
#include "work/LProgressDialog.h"

using namespace toolaudio;
using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

using Bytes = std::vector<uint8_t>;

void Add(Bytes& v, const std::string& sz) { v.insert(v.end(), sz.begin(), sz.end()); }
void AddBE32(Bytes& v, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<uint8_t>(n >> (24 - 8 * i)));
}
void AddBE16(Bytes& v, uint32_t n)
{
    v.push_back(static_cast<uint8_t>(n >> 8));
    v.push_back(static_cast<uint8_t>(n));
}

Bytes AuHeader(uint32_t nOffset, uint32_t nSize, uint32_t nEncoding, uint32_t nRate, uint32_t nChans)
{
    Bytes v;
    Add(v, ".snd");
    for (uint32_t n : {nOffset, nSize, nEncoding, nRate, nChans})
        AddBE32(v, n);
    return v;
}

Bytes Chunk(const std::string& szId, const Bytes& vData)
{
    Bytes v;
    Add(v, szId);
    AddBE32(v, static_cast<uint32_t>(vData.size()));
    v.insert(v.end(), vData.begin(), vData.end());
    if (vData.size() & 1)
        v.push_back(0);
    return v;
}

// A COMM body: channels, frames, bits, rate; AIFF-C adds the compression type and its name.
Bytes Comm(uint16_t nChans, uint32_t nFrames, uint16_t nBits, uint32_t nRate, const std::string& szType = "")
{
    Bytes v;
    AddBE16(v, nChans);
    AddBE32(v, nFrames);
    AddBE16(v, nBits);
    uint8_t aRate[10];
    LAifFile::RateToExtended(nRate, aRate);
    v.insert(v.end(), aRate, aRate + 10);
    if (!szType.empty()) {
        Add(v, szType);
        v.push_back(0);
        v.push_back(0);
    }
    return v;
}

Bytes Ssnd(const Bytes& vSamples, uint32_t nOffset = 0)
{
    Bytes v;
    AddBE32(v, nOffset);
    AddBE32(v, 0);
    v.insert(v.end(), nOffset, 0xEE);
    v.insert(v.end(), vSamples.begin(), vSamples.end());
    return v;
}

Bytes Form(const std::string& szType, const std::vector<Bytes>& vChunks)
{
    Bytes vBody;
    Add(vBody, szType);
    for (const Bytes& c : vChunks)
        vBody.insert(vBody.end(), c.begin(), c.end());
    Bytes v;
    Add(v, "FORM");
    AddBE32(v, static_cast<uint32_t>(vBody.size()));
    v.insert(v.end(), vBody.begin(), vBody.end());
    return v;
}

enum Kind
{
    Linear16,
    Linear8,
    ULaw,
    ALaw,
};

// Our sample for what a tool decodes to 16 bits: µ-law levels are ours, the rest are exact.
int32_t OursFor(int16_t nTool, Kind kind)
{
    switch (kind) {
    case ULaw: return LG711::ULawToSample(LG711::SampleToULaw(nTool * 16));
    case Linear8: return nTool / 256 * 4096;
    default: return nTool * 16;
    }
}

void ExpectSame(const std::vector<int32_t>& vOurs, size_t nOursFrom, const std::vector<int16_t>& vTool, size_t nCount,
                Kind kind)
{
    ASSERT_GE(vOurs.size(), nOursFrom + nCount);
    ASSERT_GE(vTool.size(), nCount);
    for (size_t i = 0; i < nCount; ++i)
        ASSERT_EQ(vOurs[nOursFrom + i], OursFor(vTool[i], kind)) << "sample " << i;
}

class AuAiff : public ::testing::Test
{
protected:
    std::string Put(const std::string& szName, const Bytes& v)
    {
        WriteFileBytes(dir.File(szName), v);
        return dir.File(szName);
    }
    LSoundSourcePtr OpenAu(const Bytes& v, std::string* pszError = nullptr)
    {
        return LAuFile::OpenSource(Put("t" + std::to_string(++nFiles) + ".au", v), pszError);
    }
    LSoundSourcePtr OpenAif(const Bytes& v, std::string* pszError = nullptr)
    {
        return LAifFile::OpenSource(Put("t" + std::to_string(++nFiles) + ".aif", v), pszError);
    }
    // A stereo test signal at 11025 Hz as a 16-bit WAV for the tools to convert.
    std::string SignalWav()
    {
        const std::string szPath = dir.File("signal.wav");
        std::vector<int32_t> v;
        for (int16_t s : TestSignal(11025, 2, 3000))
            v.push_back(s);
        testsupport::WriteSimpleWav(szPath, 11025, 2, 16, v);
        return szPath;
    }

    TempDir dir;
    int nFiles = 0;
};

uint32_t BE32At(const Bytes& v, size_t n)
{
    return (static_cast<uint32_t>(v[n]) << 24) | (v[n + 1] << 16) | (v[n + 2] << 8) | v[n + 3];
}

} // namespace

TEST_F(AuAiff, AuHeaderRulesAndRefusals)
{
    // Samples start at the data offset: the annotation before them is not played. The size
    // claims 8 frames where the file holds 4: the rest reads as silence.
    Bytes v = AuHeader(32, 16, 3, 8000, 1);
    Add(v, "ABCDEFGH");
    for (int i = 1; i <= 4; ++i)
        AddBE16(v, i);
    LSoundSourcePtr p = OpenAu(v);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetLength(), 8);
    EXPECT_EQ(p->GetLengthInFile(), 4);
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{16, 32, 48, 64, 0, 0, 0, 0}));
    // An offset below 24, or past the end of the file, leaves the samples right after the header.
    for (uint32_t nOffset : {0u, 23u, 1000u}) {
        v = AuHeader(nOffset, 4, 3, 8000, 1);
        AddBE16(v, 5);
        AddBE16(v, 6);
        p = OpenAu(v);
        ASSERT_FALSE(p->IsError()) << nOffset;
        EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{80, 96})) << nOffset;
    }

    // An unknown size reads to the end of the file; a known one is believed.
    v = AuHeader(24, 0xFFFFFFFF, 1, 8000, 2);
    v.insert(v.end(), {0xFF, 0x7F, 0x80, 0x00, 0xAF});
    p = OpenAu(v);
    ASSERT_FALSE(p->IsError());
    EXPECT_EQ(p->GetChannels(), 2);
    EXPECT_EQ(p->GetLength(), 2);
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{0, 0, 32124 * 16, -32124 * 16}));
    v = AuHeader(24, 6, 27, 22050, 1);
    v.insert(v.end(), {0xD5, 0x55});
    p = OpenAu(v);
    EXPECT_EQ(p->GetLength(), 6);
    EXPECT_EQ(p->GetSampleRate(), 22050);
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{128, -128, 0, 0, 0, 0}));
    v = AuHeader(24, 2, 2, 8000, 1);
    v.insert(v.end(), {0x7F, 0x80});
    EXPECT_EQ(ReadAll(*OpenAu(v)), (std::vector<int32_t>{127 * 4096, -128 * 4096}));

    std::string szError;
    EXPECT_TRUE(OpenAu(AuHeader(24, 0, 23, 8000, 1), &szError)->IsError());
    EXPECT_EQ(szError, "AU encoding 23 is not supported");
    Bytes vShort = AuHeader(24, 0, 1, 8000, 1);
    vShort.resize(23);
    EXPECT_TRUE(OpenAu(vShort, &szError)->IsError());
    Bytes vMagic = AuHeader(24, 0, 1, 8000, 1);
    vMagic[0] = 'x';
    EXPECT_TRUE(OpenAu(vMagic, &szError)->IsError());
    EXPECT_EQ(szError, "not an AU file: no .snd signature");
    EXPECT_TRUE(OpenAu(AuHeader(24, 0, 1, 0, 1))->IsError());
    EXPECT_TRUE(OpenAu(AuHeader(24, 0, 1, 8000, 0))->IsError());
    EXPECT_TRUE(OpenAu(AuHeader(24, 0, 1, 8000, 256))->IsError());
    EXPECT_TRUE(LAuFile::OpenSource(dir.File("missing.au"))->IsError());
}

TEST_F(AuAiff, AiffChunksAndRefusals)
{
    Bytes vSamples;
    for (int i : {1, -1, 300, -300})
        AddBE16(vSamples, static_cast<uint16_t>(i));
    const std::vector<int32_t> vExpected = {16, -16, 300 * 16, -300 * 16};
    // Chunks in either order, foreign and odd-sized ones skipped, the SSND offset applied.
    for (bool bSsndFirst : {false, true}) {
        const Bytes vComm = Chunk("COMM", Comm(2, 2, 16, 44100));
        const Bytes vSsnd = Chunk("SSND", Ssnd(vSamples, 3));
        const Bytes vOdd = Chunk("ANNO", Bytes(5, 'a'));
        LSoundSourcePtr p = OpenAif(Form("AIFF", bSsndFirst ? std::vector<Bytes>{vOdd, vSsnd, vComm}
                                                            : std::vector<Bytes>{vComm, vOdd, vSsnd}));
        ASSERT_FALSE(p->IsError());
        EXPECT_EQ(p->GetSampleRate(), 44100);
        EXPECT_EQ(p->GetChannels(), 2);
        EXPECT_EQ(ReadAll(*p), vExpected);
    }
    LSoundSourcePtr p = OpenAif(Form("AIFF", {Chunk("COMM", Comm(1, 3, 8, 8000)), Chunk("SSND", Ssnd({0x7F, 0x80, 0}))}));
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{127 * 4096, -128 * 4096, 0}));

    // AIFF-C: uncompressed in either byte order, and G.711.
    Bytes vLE;
    for (int i : {1, -1, 300, -300}) {
        vLE.push_back(static_cast<uint8_t>(i & 0xFF));
        vLE.push_back(static_cast<uint8_t>((i >> 8) & 0xFF));
    }
    for (const auto& [szType, vData] : std::vector<std::pair<std::string, Bytes>>{{"NONE", vSamples}, {"sowt", vLE}}) {
        p = OpenAif(Form("AIFC", {Chunk("FVER", Bytes(4, 0)), Chunk("COMM", Comm(1, 4, 16, 8000, szType)),
                                  Chunk("SSND", Ssnd(vData))}));
        ASSERT_FALSE(p->IsError()) << szType;
        EXPECT_EQ(ReadAll(*p), vExpected) << szType;
    }
    p = OpenAif(Form("AIFC", {Chunk("COMM", Comm(1, 2, 16, 8000, "ulaw")), Chunk("SSND", Ssnd({0x80, 0xFF}))}));
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{32124 * 16, 0}));
    p = OpenAif(Form("AIFC", {Chunk("COMM", Comm(1, 2, 16, 8000, "alaw")), Chunk("SSND", Ssnd({0xD5, 0x55}))}));
    EXPECT_EQ(ReadAll(*p), (std::vector<int32_t>{128, -128}));

    std::string szError;
    const Bytes vData = Chunk("SSND", Ssnd(vSamples));
    Bytes vComm20 = Comm(1, 4, 16, 8000);
    vComm20.insert(vComm20.end(), {0, 0});
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", vComm20), vData}), &szError)->IsError());
    EXPECT_EQ(szError, "the AIFF file's COMM chunk is 20 bytes, not 18");
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", Comm(1, 4, 40, 8000)), vData}), &szError)->IsError());
    EXPECT_EQ(szError, "AIFF files of 40-bit samples are not supported");
    // Cut inside COMM: its size is right, its bytes are not there.
    const Bytes vWhole = Form("AIFF", {Chunk("COMM", Comm(1, 4, 16, 8000)), vData});
    EXPECT_TRUE(OpenAif(Bytes(vWhole.begin(), vWhole.begin() + 12 + 8 + 10), &szError)->IsError());
    EXPECT_EQ(szError, "damaged AIFF file: it ends inside its COMM chunk");
    EXPECT_TRUE(OpenAif(Form("AIFC", {Chunk("COMM", Comm(1, 4, 4, 8000, "ima4")), vData}), &szError)->IsError());
    EXPECT_EQ(szError, "AIFF-C compression 'ima4' is not supported");
    EXPECT_TRUE(OpenAif(Form("AIFF", {vData}), &szError)->IsError());
    EXPECT_EQ(szError, "not an AIFF file: no COMM chunk");
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", Comm(1, 4, 16, 8000))}), &szError)->IsError());
    EXPECT_EQ(szError, "not an AIFF file: no SSND chunk");
    EXPECT_TRUE(OpenAif(Form("WAVE", {Chunk("COMM", Comm(1, 4, 16, 8000)), vData}), &szError)->IsError());
    EXPECT_EQ(szError, "not an AIFF file: no FORM AIFF header");
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", Comm(1, 4, 16, 0)), vData}))->IsError());
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", Comm(0, 4, 16, 8000)), vData}))->IsError());
    Bytes vHuge = Form("AIFF", {vData});
    vHuge.insert(vHuge.begin() + 12, {'C', 'O', 'M', 'T', 0x80, 0, 0, 0}); // a negative chunk size
    EXPECT_TRUE(OpenAif(vHuge)->IsError());
    Bytes vFarOffset;
    AddBE32(vFarOffset, 1000);
    AddBE32(vFarOffset, 0);
    vFarOffset.resize(16);
    EXPECT_TRUE(OpenAif(Form("AIFF", {Chunk("COMM", Comm(1, 4, 16, 8000)), Chunk("SSND", vFarOffset)}), &szError)->IsError());
    EXPECT_EQ(szError, "the AIFF file's SSND offset lies beyond its data");
}

TEST_F(AuAiff, RatesAreWrittenExactlyAsExtendedNumbers)
{
    const std::pair<uint32_t, Bytes> aKnown[] = {
        {44100, {0x40, 0x0E, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
        {8000, {0x40, 0x0B, 0xFA, 0, 0, 0, 0, 0, 0, 0}},
        {11025, {0x40, 0x0C, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
        {1, {0x3F, 0xFF, 0x80, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [nRate, vBytes] : aKnown) {
        uint8_t a[10];
        LAifFile::RateToExtended(nRate, a);
        EXPECT_EQ(Bytes(a, a + 10), vBytes) << nRate;
    }
    for (uint32_t n = 1; n <= 1000000; n += (n < 200000 ? 1 : 997)) {
        uint8_t a[10];
        LAifFile::RateToExtended(n, a);
        ASSERT_EQ(LAifFile::ExtendedToRate(a), n);
    }
    // Fractions round to the nearest hertz; what is no rate reads as 0.
    const uint8_t aHalf[10] = {0x40, 0x0B, 0xFA, 0x08, 0, 0, 0, 0, 0, 0}; // 8000.5
    EXPECT_EQ(LAifFile::ExtendedToRate(aHalf), 8001u);
    const uint8_t aNeg[10] = {0xC0, 0x0B, 0xFA, 0, 0, 0, 0, 0, 0, 0};
    const uint8_t aSmall[10] = {0x3F, 0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0};
    const uint8_t aHuge[10] = {0x7F, 0xFF, 0x80, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(LAifFile::ExtendedToRate(aNeg), 0u);
    EXPECT_EQ(LAifFile::ExtendedToRate(aSmall), 0u);
    EXPECT_EQ(LAifFile::ExtendedToRate(aHuge), 0u);
}

TEST_F(AuAiff, FilesOfSoxAndFfmpegOpenAsTheyReadThem)
{
    struct Case
    {
        const char* szTool;
        const char* szName;
        const char* szOptions; // how the tool writes the file
        Kind kind;
    };
    const Case aCases[] = {
        {"sox", "sox16.au", "-e signed -b 16", Linear16},
        {"sox", "sox8.au", "-e signed -b 8", Linear8},
        {"sox", "soxu.au", "-e mu-law", ULaw},
        {"sox", "soxa.au", "-e a-law", ALaw},
        {"ffmpeg", "ff16.au", "-c:a pcm_s16be", Linear16},
        {"ffmpeg", "ffu.au", "-c:a pcm_mulaw", ULaw},
        {"ffmpeg", "ffa.au", "-c:a pcm_alaw", ALaw},
        {"sox", "sox16.aif", "-b 16", Linear16},
        {"sox", "sox8.aif", "-b 8", Linear8},
        {"ffmpeg", "ff16.aif", "-c:a pcm_s16be", Linear16},
        {"ffmpeg", "ff8.aif", "-c:a pcm_s8", Linear8},
        {"ffmpeg", "ffu.aifc", "-c:a pcm_mulaw -f aiff", ULaw},
        {"ffmpeg", "ffa.aifc", "-c:a pcm_alaw -f aiff", ALaw},
        {"ffmpeg", "ffle.aifc", "-c:a pcm_s16le -f aiff", Linear16},
    };
    const std::string szSignal = SignalWav();
    int nRan = 0;
    for (const Case& c : aCases) {
        SCOPED_TRACE(c.szName);
        if (!testsupport::HaveTool(c.szTool))
            continue;
        ++nRan;
        const std::string szPath = dir.File(c.szName);
        const std::string szCmd = std::string(c.szTool) == "sox"
                                      ? "sox -D " + Quote(szSignal) + " " + c.szOptions + " " + Quote(szPath)
                                      : "ffmpeg -v error -y -i " + Quote(szSignal) + " " + c.szOptions + " " + Quote(szPath);
        ASSERT_TRUE(RunTool(szCmd));
        const std::vector<int16_t> vTool = ToolDecode(c.szTool, szPath);
        ASSERT_EQ(vTool.size(), 6000u);
        std::string szError;
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(szPath, &szError, &details);
        ASSERT_FALSE(p->IsError()) << szError;
        EXPECT_EQ(p->GetSampleRate(), 11025);
        EXPECT_EQ(p->GetChannels(), 2);
        const std::vector<int32_t> vOurs = ReadAll(*p);
        const Bytes vFile = ReadFileBytes(szPath);
        // An AU file of these tools carries an annotation after its 24 bytes: it is skipped.
        if (vFile[0] == '.')
            EXPECT_GT(BE32At(vFile, 4), 24u);
        ASSERT_EQ(vOurs.size(), vTool.size());
        ExpectSame(vOurs, 0, vTool, vTool.size(), c.kind);
    }
    if (!nRan)
        GTEST_SKIP() << "neither sox nor ffmpeg is installed";
}

TEST_F(AuAiff, OurFilesOpenInSoxAndFfmpegToWhatWeWrote)
{
    const bool bSox = testsupport::HaveTool("sox"), bFfmpeg = testsupport::HaveTool("ffmpeg");
    if (!bSox && !bFfmpeg)
        GTEST_SKIP() << "neither sox nor ffmpeg is installed";
    std::vector<int32_t> vSignal;
    for (int16_t s : TestSignal(11025, 2, 3001))
        vSignal.push_back(s * 16 + 5); // not on 16-bit steps: the writers round
    const std::pair<const char*, const char*> aFiles[] = {
        {"o16.au", "pcm16"}, {"ou.au", "ulaw"}, {"oa.au", "alaw"}, {"o16.aif", "pcm16"}, {"o8.aiff", "pcm8"},
    };
    for (const auto& [szName, szEncoding] : aFiles) {
        SCOPED_TRACE(szName);
        const std::string szPath = dir.File(szName);
        SaveProcess save(new LSRCMemory(vSignal, 11025, 2), szPath, szEncoding);
        ASSERT_EQ(save.Run(), LProgressDialog::ResultDone) << save.szError;
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(szPath, nullptr, &details);
        ASSERT_FALSE(p->IsError());
        EXPECT_EQ(details.encoding.szName, szEncoding);
        EXPECT_EQ(p->GetSampleRate(), 11025);
        const std::vector<int32_t> vOurs = ReadAll(*p);
        ASSERT_EQ(vOurs.size(), vSignal.size());
        const Kind kind = !std::strcmp(szEncoding, "ulaw")   ? ULaw
                          : !std::strcmp(szEncoding, "alaw") ? ALaw
                          : !std::strcmp(szEncoding, "pcm8") ? Linear8
                                                             : Linear16;
        if (kind == Linear16) {
            for (size_t i = 0; i < vOurs.size(); ++i)
                ASSERT_EQ(vOurs[i], ((vSignal[i] + 8) >> 4) * 16) << i;
        }
        for (const char* szTool : {"sox", "ffmpeg"}) {
            if (!(std::string(szTool) == "sox" ? bSox : bFfmpeg))
                continue;
            SCOPED_TRACE(szTool);
            const std::vector<int16_t> vTool = ToolDecode(szTool, szPath);
            ASSERT_EQ(vTool.size(), vOurs.size());
            ExpectSame(vOurs, 0, vTool, vTool.size(), kind);
        }
        if (bSox) {
            std::string szRate;
            testsupport::RunCommand("soxi -r " + Quote(szPath) + " 2>/dev/null", &szRate);
            EXPECT_EQ(szRate, "11025\n");
        }
    }
    // An odd number of 8-bit samples pads the sound chunk.
    SaveProcess odd(new LSRCMemory(std::vector<int32_t>(3, 4096), 8000, 1), dir.File("odd.aif"), "pcm8");
    ASSERT_EQ(odd.Run(), LProgressDialog::ResultDone);
    const Bytes v = ReadFileBytes(dir.File("odd.aif"));
    ASSERT_EQ(v.size(), 58u);
    EXPECT_EQ(BE32At(v, 4), 50u);
    EXPECT_EQ(BE32At(v, 42), 11u);
    EXPECT_EQ(Bytes(v.begin() + 54, v.end()), (Bytes{1, 1, 1, 0}));
}

TEST_F(AuAiff, DoorNamesFormatsAndEncodings)
{
    Bytes v = AuHeader(24, 2, 1, 8000, 1);
    v.insert(v.end(), {0xFF, 0xFF});
    LAudioFileDetails details;
    // Found by content whatever the extension.
    EXPECT_FALSE(LAudioFile::OpenSource(Put("x.bin", v), nullptr, &details)->IsError());
    EXPECT_EQ(details.szFormat, "AU");
    EXPECT_EQ(details.szEncoding, "G.711 u-law");
    EXPECT_EQ(details.encoding.szName, "ulaw");
    const Bytes vAifc = Form("AIFC", {Chunk("COMM", Comm(1, 1, 16, 8000, "alaw")), Chunk("SSND", Ssnd({0xD5}))});
    EXPECT_FALSE(LAudioFile::OpenSource(Put("y.aifc", vAifc), nullptr, &details)->IsError());
    EXPECT_EQ(details.szFormat, "AIFF-C");
    EXPECT_EQ(details.szEncoding, "G.711 A-law");
    std::string szError;
    EXPECT_TRUE(LAudioFile::OpenSource(Put("z.snd", AuHeader(24, 0, 23, 8000, 1)), &szError)->IsError());
    EXPECT_EQ(szError, "AU encoding 23 is not supported");
}

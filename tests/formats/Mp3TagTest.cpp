// MP3 files as people have them: tags before and after the audio, junk, other layers, noise.
#include <gtest/gtest.h>

#include <cstdlib>

#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "formats/Mp3Support.h"

using namespace mp3test;
using testsupport::HaveTool;
using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Random(size_t n, uint32_t nSeed)
{
    Bytes v(n);
    for (uint8_t& b : v)
        b = static_cast<uint8_t>((nSeed = nSeed * 1103515245u + 12345u) >> 23);
    return v;
}

void Put32(Bytes& v, uint32_t n, bool bSyncSafe)
{
    for (int i = 3; i >= 0; --i)
        v.push_back(static_cast<uint8_t>(bSyncSafe ? (n >> (7 * i)) & 0x7F : (n >> (8 * i)) & 0xFF));
}

void PutLittle32(Bytes& v, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<uint8_t>(n >> (8 * i)));
}

// An ID3v2 tag with a title and a picture of nArt bytes: the picture is random bytes with
// stretches of the file's own frames in it, so that a search through it finds headers that
// look real. Version 4 adds an extended header and a footer.
Bytes Id3v2(size_t nArt, const Bytes& vAudio, int nVersion = 3)
{
    Bytes vArt = Random(nArt, static_cast<uint32_t>(nArt) + 1);
    for (size_t i = 0; i + 3000 < nArt; i += 7000)
        std::copy(vAudio.begin(), vAudio.begin() + static_cast<long>(std::min<size_t>(3000, vAudio.size())),
                  vArt.begin() + static_cast<long>(i));
    Bytes vBody;
    if (nVersion == 4) {
        Put32(vBody, 6, true); // extended header: its size, one flag byte, no flags set
        vBody.insert(vBody.end(), {1, 0});
    }
    auto Frame = [&](const char* szId, const Bytes& vData) {
        vBody.insert(vBody.end(), szId, szId + 4);
        Put32(vBody, static_cast<uint32_t>(vData.size()), nVersion == 4);
        vBody.insert(vBody.end(), {0, 0});
        vBody.insert(vBody.end(), vData.begin(), vData.end());
    };
    Frame("TIT2", {0, 'T', 'e', 's', 't'});
    if (nArt) {
        Bytes vPic = {0};
        const std::string szMime = "image/jpeg";
        vPic.insert(vPic.end(), szMime.begin(), szMime.end());
        vPic.insert(vPic.end(), {0, 3, 0});
        vPic.insert(vPic.end(), vArt.begin(), vArt.end());
        Frame("APIC", vPic);
    }
    vBody.insert(vBody.end(), 64, 0); // padding
    Bytes v = {'I', 'D', '3', static_cast<uint8_t>(nVersion), 0, static_cast<uint8_t>(nVersion == 4 ? 0x50 : 0)};
    Put32(v, static_cast<uint32_t>(vBody.size()), true);
    v.insert(v.end(), vBody.begin(), vBody.end());
    if (nVersion == 4) {
        Bytes vFooter(v.begin(), v.begin() + 10);
        std::copy_n("3DI", 3, vFooter.begin());
        v.insert(v.end(), vFooter.begin(), vFooter.end());
    }
    return v;
}

Bytes Id3v1()
{
    Bytes v = {'T', 'A', 'G'};
    v.resize(128, 'x');
    v[127] = 12;
    return v;
}

Bytes Ape(bool bHeader)
{
    Bytes vItems;
    PutLittle32(vItems, 5);
    PutLittle32(vItems, 0);
    const std::string szItem = "Title";
    vItems.insert(vItems.end(), szItem.begin(), szItem.end());
    vItems.insert(vItems.end(), {0, 'H', 'e', 'l', 'l', 'o'});
    auto Block = [&](bool bIsHeader) {
        Bytes v = {'A', 'P', 'E', 'T', 'A', 'G', 'E', 'X'};
        PutLittle32(v, 2000);
        PutLittle32(v, static_cast<uint32_t>(vItems.size() + 32));
        PutLittle32(v, 1);
        PutLittle32(v, (bHeader ? 0x80000000u : 0) | (bIsHeader ? 0x20000000u : 0));
        v.resize(32, 0);
        return v;
    };
    Bytes v;
    if (bHeader)
        v = Block(true);
    v.insert(v.end(), vItems.begin(), vItems.end());
    const Bytes vFooter = Block(false);
    v.insert(v.end(), vFooter.begin(), vFooter.end());
    return v;
}

Bytes Lyrics3v2()
{
    const std::string szBody = "LYRICSBEGININD00002" "10" "LYR00011[00:01]Hello";
    char szSize[8];
    std::snprintf(szSize, sizeof(szSize), "%06zu", szBody.size());
    const std::string sz = szBody + szSize + "LYRICS200";
    return Bytes(sz.begin(), sz.end());
}

// The first version: no size, only its two markers.
Bytes Lyrics3v1()
{
    const std::string sz = "LYRICSBEGIN[00:01]Hello\r\n[00:02]againLYRICSEND";
    return Bytes(sz.begin(), sz.end());
}

// The extended ID3v1 block that sits in front of an ID3v1 tag.
Bytes Id3v1Extended()
{
    Bytes v = {'T', 'A', 'G', '+'};
    v.resize(227, 'y');
    return v;
}

Bytes Joined(std::initializer_list<Bytes> vParts)
{
    Bytes v;
    for (const Bytes& p : vParts)
        v.insert(v.end(), p.begin(), p.end());
    return v;
}

std::vector<int16_t> Decode(const std::string& szPath, int32_t* pLength = nullptr)
{
    LMP3Source src(szPath);
    EXPECT_FALSE(src.IsError()) << szPath;
    if (pLength)
        *pLength = src.GetLength();
    return DecodeAll(src);
}

} // namespace

TEST(Mp3Tags, TaggedLameFilesDecodeToExactlyWhatTheEncoderWasGiven)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    struct Case
    {
        const char* szName;
        int nRate, nChans;
        const char* szOptions;
    } vCases[] = {
        {"cbr.mp3", 44100, 2, "-b 128"},
        {"vbr.mp3", 44100, 2, "-V 2"},
        {"mpeg2.mp3", 22050, 2, "-b 96"},
        {"mpeg25.mp3", 11025, 1, "-b 64"},
    };
    for (const Case& k : vCases) {
        SCOPED_TRACE(k.szName);
        const int32_t nInput = k.nRate * 3 / 2 + 11;
        ASSERT_TRUE(MakeMp3(dir, k.szName, k.nRate, k.nChans, nInput, k.szOptions));
        const Bytes vAudio = ReadFileBytes(dir.File(k.szName));
        const std::vector<int16_t> vRef = Mpg123Gapless(dir.File(k.szName));
        ASSERT_EQ(vRef.size(), static_cast<size_t>(nInput) * k.nChans);
        const struct
        {
            const char* szTags;
            Bytes vFile;
        } vTagged[] = {
            {"bare", vAudio},
            {"ID3v2 without art", Joined({Id3v2(0, vAudio), vAudio})},
            {"ID3v2 with 10 KB of art", Joined({Id3v2(10 * 1024, vAudio), vAudio})},
            {"ID3v2 with 200 KB of art", Joined({Id3v2(200 * 1024, vAudio), vAudio})},
            {"ID3v2.4 with extended header and footer", Joined({Id3v2(20 * 1024, vAudio, 4), vAudio})},
            {"two ID3v2 tags", Joined({Id3v2(500, vAudio), Id3v2(70 * 1024, vAudio), vAudio})},
            {"ID3v1", Joined({vAudio, Id3v1()})},
            {"APEv2 with header, and ID3v1", Joined({vAudio, Ape(true), Id3v1()})},
            {"APEv2 alone", Joined({vAudio, Ape(false)})},
            {"Lyrics3 and ID3v1", Joined({Id3v2(3000, vAudio), vAudio, Lyrics3v2(), Id3v1()})},
            {"Lyrics3 version 1, APEv2 and extended ID3v1",
             Joined({vAudio, Lyrics3v1(), Ape(false), Id3v1Extended(), Id3v1()})},
        };
        for (const auto& t : vTagged) {
            SCOPED_TRACE(t.szTags);
            WriteFileBytes(dir.File("tagged.mp3"), t.vFile);
            int32_t nLength = 0;
            const std::vector<int16_t> vOurs = Decode(dir.File("tagged.mp3"), &nLength);
            EXPECT_EQ(nLength, nInput); // before decoding, from the encoder's tag
            ASSERT_EQ(vOurs.size(), vRef.size());
            EXPECT_LE(Compare(vOurs, vRef).nMaxDiff, 1);
        }
    }
}

TEST(Mp3Tags, FilesWithoutTheEncodersTagKeepTheirLastFrames)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    // -t: no tag frame, so mpg123 decodes every frame as we do.
    ASSERT_TRUE(MakeMp3(dir, "plain.mp3", 44100, 2, 44100, "-b 128 -t"));
    const Bytes vAudio = ReadFileBytes(dir.File("plain.mp3"));
    const std::vector<int16_t> vRef = Mpg123Decode(dir.File("plain.mp3"));
    for (const Bytes& vFile : {vAudio, Joined({Id3v2(10 * 1024, vAudio), vAudio, Ape(true)})}) {
        WriteFileBytes(dir.File("t.mp3"), vFile);
        int32_t nLength = 0;
        const std::vector<int16_t> vOurs = Decode(dir.File("t.mp3"), &nLength);
        EXPECT_EQ(vOurs.size(), vRef.size());
        EXPECT_EQ(static_cast<size_t>(nLength) * 2, vRef.size()); // the estimate is right
        EXPECT_LE(Compare(vOurs, vRef).nMaxDiff, 1);
    }
}

TEST(Mp3Tags, HeadersInsideJunkAreNotTakenForTheStream)
{
    REQUIRE_CODEC_TOOLS();
    TempDir dir;
    ASSERT_TRUE(MakeMp3(dir, "a.mp3", 22050, 1, 22050, "-b 64"));
    const Bytes vAudio = ReadFileBytes(dir.File("a.mp3"));
    const std::vector<int16_t> vRef = Decode(dir.File("a.mp3"));
    // Junk that is no tag, full of sync patterns, some of them real headers of another stream.
    Bytes vJunk = Random(20000, 99);
    for (size_t i = 0; i < vJunk.size(); i += 97) {
        vJunk[i] = 0xFF;
        vJunk[i + 1] = 0xFB;
    }
    WriteFileBytes(dir.File("j.mp3"), Joined({vJunk, vAudio}));
    const std::vector<int16_t> vOurs = Decode(dir.File("j.mp3"));
    EXPECT_EQ(vOurs, vRef);
}

TEST(Mp3Tags, RandomBytesAreRefused)
{
    TempDir dir;
    for (uint32_t nSeed : {1u, 2u, 3u, 4u, 5u}) {
        Bytes v = Random(30000, nSeed);
        if (nSeed == 5)
            v = Joined({Id3v2(1000, Random(3000, 8)), v}); // a tag in front changes nothing
        WriteFileBytes(dir.File("noise.mp3"), v);
        std::string szError;
        EXPECT_TRUE(LAudioFile::OpenSource(dir.File("noise.mp3"), &szError)->IsError()) << nSeed;
        EXPECT_NE(szError.find("no MPEG Layer III frame"), std::string::npos) << szError;
    }
}

// Layers I and II, and free-format streams, open through ffmpeg or are refused by name.
class Mp3OtherLayers : public ::testing::Test
{
protected:
    void SetUp() override { LSettings::SetStore(&store); }
    void TearDown() override
    {
        LSettings::SetStore(nullptr);
        if (!szPath.empty())
            ::setenv("PATH", szPath.c_str(), 1);
    }
    void HidePrograms()
    {
        szPath = std::getenv("PATH");
        ::setenv("PATH", dir.File("no-programs").c_str(), 1);
    }
    LMemorySettings store;
    TempDir dir;
    std::string szPath;
};

TEST_F(Mp3OtherLayers, LayerTwoDecodesWithinOneStepOfTheReferenceOrIsRefusedByName)
{
    if (!HaveTool("ffmpeg") || !HaveTool("mpg123"))
        GTEST_SKIP() << "ffmpeg and mpg123 are needed";
    testsupport::WriteSimpleWav(dir.File("in.wav"), 48000, 2, 16, TestSignal(48000, 2, 48000));
    ASSERT_EQ(testsupport::RunCommand("ffmpeg -nostdin -v error -i " + Quote(dir.File("in.wav")) +
                                      " -c:a mp2 -b:a 192k -f mp2 " + Quote(dir.File("l2.mp2"))),
              0);
    WriteFileBytes(dir.File("misnamed.mp3"), Joined({Id3v2(5000, {}), ReadFileBytes(dir.File("l2.mp2"))}));
    const std::vector<int16_t> vRef = Mpg123Decode(dir.File("l2.mp2"));
    for (const char* szName : {"l2.mp2", "misnamed.mp3"}) {
        SCOPED_TRACE(szName);
        std::string szError;
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(dir.File(szName), &szError, &details);
        ASSERT_FALSE(p->IsError()) << szError;
        EXPECT_EQ(p->GetSampleRate(), 48000);
        const std::vector<int16_t> vOurs = ReadToEnd(*p);
        EXPECT_EQ(vOurs.size(), vRef.size());
        EXPECT_LE(Compare(vOurs, vRef).nMaxDiff, 1);
    }
    HidePrograms();
    std::string szError;
    EXPECT_TRUE(LAudioFile::OpenSource(dir.File("misnamed.mp3"), &szError)->IsError());
    EXPECT_NE(szError.find("Layer II"), std::string::npos) << szError;
    EXPECT_NE(szError.find("ffmpeg"), std::string::npos) << szError;
}

TEST_F(Mp3OtherLayers, LayerOneAndFreeFormatNeverOpenAsNoise)
{
    // A Layer I stream of silent frames: MPEG-1, 128 kbit/s, 44.1 kHz, one channel, no bits
    // allocated to any subband.
    Bytes vFrame = {0xFF, 0xFF, 0x40, 0xC0};
    vFrame.resize(136, 0);
    Bytes vLayer1;
    for (int i = 0; i < 300; ++i)
        vLayer1.insert(vLayer1.end(), vFrame.begin(), vFrame.end());
    WriteFileBytes(dir.File("l1.mp3"), vLayer1);
    const std::string szConformance =
        std::string(std::getenv("SONITRA_TEST_DATA") ? std::getenv("SONITRA_TEST_DATA") : SONITRA_TEST_DATA) +
        "/mp3-conformance/";
    const std::string szFree = dir.File("free.mp3");
    WriteFileBytes(szFree, ReadFileBytes(szConformance + "l3-he_free.bit"));
    for (bool bPrograms : {true, false}) {
        if (!bPrograms)
            HidePrograms();
        std::string szError;
        LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("l1.mp3"), &szError);
        if (p->IsError()) {
            EXPECT_NE(szError.find("Layer I,"), std::string::npos) << szError;
        } else {
            const std::vector<int16_t> v = ReadToEnd(*p);
            EXPECT_EQ(v, std::vector<int16_t>(300 * 384, 0));
        }
        szError.clear();
        p = LAudioFile::OpenSource(szFree, &szError);
        if (p->IsError()) {
            EXPECT_NE(szError.find("free-format"), std::string::npos) << szError;
        } else {
            // Decoded whole, never a chance pattern's few frames.
            const size_t nRef = ReadFileBytes(szConformance + "l3-he_free.pcm").size() / 2;
            EXPECT_GE(ReadToEnd(*p).size(), nRef);
        }
    }
}

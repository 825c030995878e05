#include <gtest/gtest.h>

#include <cmath>

#include "core/LMemorySound.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "formats/LDialogicAdpcm.h"
#include "formats/LG711.h"
#include "formats/LRawFileDataSoundSinkBase.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LSNKVOX.h"
#include "formats/LSRCVOX.h"
#include "formats/LVoxRawSettings.h"
#include "support/TestSupport.h"
#include "tests/formats/SaveProcess.h"
#include "tests/formats/ToolAudio.h"
#include "work/LProgressDialog.h"

using namespace toolaudio;
using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

std::vector<int32_t> ReadN(LSoundSourceBase& src, int32_t n)
{
    std::vector<int32_t> v(static_cast<size_t>(n) * src.GetChannels(), 12345);
    src.Read(v.data(), n);
    return v;
}

// The stored layout of headerless files, put back as it was after each test.
class Headerless : public ::testing::Test
{
protected:
    void SetUp() override { saved = LVoxRawSettings::Load(); }
    void TearDown() override { saved.Store(); }
    void Use(int32_t nFormat, int32_t nRate, int32_t nChans)
    {
        LSettings::SetInt("Settings", "VoxRawFileFormat", nFormat);
        LSettings::SetInt("Settings", "VoxRawSampleRate", nRate);
        LSettings::SetInt("Settings", "VoxRawFileChannels", nChans);
    }
    std::vector<int32_t> WriteVox(const std::string& szPath, const std::vector<int32_t>& v)
    {
        LSoundSinkPtr p(new LSNKVOX(szPath, 8000));
        p->Write(v.data(), static_cast<int32_t>(v.size()));
        return v;
    }

    TempDir dir;
    LVoxRawSettings saved;
};

double SnrDb(const std::vector<double>& vRef, const std::vector<double>& vTest)
{
    double fSignal = 0, fNoise = 0;
    for (size_t i = 0; i < vRef.size() && i < vTest.size(); ++i) {
        fSignal += vRef[i] * vRef[i];
        fNoise += (vRef[i] - vTest[i]) * (vRef[i] - vTest[i]);
    }
    return 10 * std::log10(fSignal / std::max(fNoise, 1e-9));
}

} // namespace

TEST(VoxRawSettingsTest, ListTextsShortNamesAndStoredValues)
{
    const char* aTexts[] = {"Dialogic ADPCM", "G711 uLaw", "G711 aLaw", "16 bit PCM (LE)",
                            "8 bit unsigned", "8 bit signed", "16 bit PCM (BE)"};
    const char* aNames[] = {"vox", "ulaw", "alaw", "s16le", "u8", "s8", "s16be"};
    for (int32_t i = 0; i < LVoxRawSettings::kEncodings; ++i) {
        EXPECT_STREQ(LVoxRawSettings::ListText(i), aTexts[i]);
        int32_t n = -1;
        EXPECT_TRUE(LVoxRawSettings::ParseFormat(aNames[i], n));
        EXPECT_EQ(n, i);
        EXPECT_TRUE(LVoxRawSettings::ParseFormat(std::to_string(i), n));
        EXPECT_EQ(n, i);
    }
    int32_t n = 0;
    for (const char* sz : {"7", "-1", "", "VOX", "pcm16", "03"})
        EXPECT_FALSE(LVoxRawSettings::ParseFormat(sz, n)) << sz;

    const LVoxRawSettings saved = LVoxRawSettings::Load();
    for (const char* sz : {"VoxRawFileFormat", "VoxRawSampleRate", "VoxRawFileChannels"})
        LSettings::Store().DeleteValue("Settings", sz);
    LVoxRawSettings s = LVoxRawSettings::Load();
    EXPECT_EQ(s.nFormat, 0);
    EXPECT_EQ(s.nSampleRate, 8000);
    EXPECT_EQ(s.nChans, 1);
    // Values out of range read as their defaults.
    LSettings::SetInt("Settings", "VoxRawFileFormat", 9);
    LSettings::SetInt("Settings", "VoxRawSampleRate", 0);
    LSettings::SetInt("Settings", "VoxRawFileChannels", 300);
    s = LVoxRawSettings::Load();
    EXPECT_EQ(s.nFormat, 0);
    EXPECT_EQ(s.nSampleRate, 8000);
    EXPECT_EQ(s.nChans, 1);
    s.nFormat = 6;
    s.nSampleRate = 22050;
    s.nChans = 2;
    s.Store();
    EXPECT_EQ(LSettings::GetInt("Settings", "VoxRawFileFormat", 0), 6);
    EXPECT_EQ(LSettings::GetInt("Settings", "VoxRawSampleRate", 0), 22050);
    EXPECT_EQ(LSettings::GetInt("Settings", "VoxRawFileChannels", 0), 2);
    // An encoding carries its layout; what it lacks comes from the stored values.
    LVoxRawSettings t{2, 11025, 3};
    const LVoxRawSettings u = LVoxRawSettings::FromEncoding(t.ToEncoding());
    EXPECT_EQ(u.nFormat, 2);
    EXPECT_EQ(u.nSampleRate, 11025);
    EXPECT_EQ(u.nChans, 3);
    const LVoxRawSettings w = LVoxRawSettings::FromEncoding(LAudioEncoding::Named("u8"));
    EXPECT_EQ(w.nFormat, 4);
    EXPECT_EQ(w.nSampleRate, 22050);
    EXPECT_EQ(w.nChans, 2);
    saved.Store();
}

TEST_F(Headerless, VoxDecodesFromTheInitialStateWithTheLeak)
{
    WriteFileBytes(dir.File("z.vox"), {0x00, 0x08, 0x70});
    LSRCVOX src(dir.File("z.vox"), 8000);
    ASSERT_FALSE(src.IsError());
    // Code 0: 16 x 16; the index falls to -1 and is clamped back to 0 at the next code, which
    // adds 256 again less a 64th of 256.
    EXPECT_EQ(ReadN(src, 2), (std::vector<int32_t>{256, 508}));
    // Code 0 then code 8 (negative): the leak pulls first, then the step is taken away.
    const int32_t s3 = 508 + 256 - (508 >> 6);
    const int32_t s4 = s3 - 256 - (s3 >> 6);
    EXPECT_EQ(ReadN(src, 2), (std::vector<int32_t>{s3, s4}));
    // Code 7 at index 0: 15 steps of 16 = 240 x 16; the index then jumps by 8 (step 34).
    const int32_t s5 = s4 + 16 * 240 - (s4 >> 6);
    const int32_t s6 = s5 + 34 * 16 - (s5 >> 6);
    EXPECT_EQ(ReadN(src, 2), (std::vector<int32_t>{s5, s6}));
    // Past the end: zeros.
    EXPECT_EQ(ReadN(src, 3), (std::vector<int32_t>{0, 0, 0}));
    EXPECT_EQ(src.GetPosition(), 9);
}

TEST_F(Headerless, VoxLengthPendingNibblesAndOddSeeks)
{
    std::vector<uint8_t> v(1000);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<uint8_t>(i * 37 + 11);
    WriteFileBytes(dir.File("k.vox"), v);
    LSRCVOX whole(dir.File("k.vox"), 8000);
    EXPECT_EQ(whole.GetLength(), 2000);
    const std::vector<int32_t> vAll = ReadN(whole, 2000);

    // Odd request sizes carry the low nibble over to the next read.
    LSRCVOX parts(dir.File("k.vox"), 8000);
    std::vector<int32_t> vParts;
    for (int32_t n : {3, 3, 1, 1, 7, 985, 1000}) {
        const std::vector<int32_t> vOne = ReadN(parts, n);
        vParts.insert(vParts.end(), vOne.begin(), vOne.end());
    }
    EXPECT_EQ(vParts, vAll);

    // A seek to an odd sample starts decoding at the high nibble of its byte, from the state
    // the decoder is in (here the initial one).
    WriteFileBytes(dir.File("s.vox"), {0x77, 0x77, 0x03, 0x77});
    LSRCVOX seek(dir.File("s.vox"), 8000);
    seek.SetPosition(5);
    LDialogicAdpcm fresh;
    const int32_t s0 = fresh.Decode(0);
    const int32_t s1 = fresh.Decode(3);
    EXPECT_EQ(ReadN(seek, 2), (std::vector<int32_t>{s0, s1}));
    EXPECT_EQ(seek.GetPosition(), 7);
    EXPECT_TRUE(LSRCVOX(dir.File("missing.vox"), 8000).IsError());
}

TEST_F(Headerless, VoxWriterPacksHighNibbleFirstAndDropsALastLoneCode)
{
    std::vector<int32_t> v;
    for (int i = 0; i < 6; ++i)
        v.push_back(i % 2 ? -30000 : 30000);
    WriteVox(dir.File("three.vox"), {v.begin(), v.begin() + 3});
    EXPECT_EQ(ReadFileBytes(dir.File("three.vox")).size(), 1u);

    // The same codes whether the samples come at once or in odd parts.
    WriteVox(dir.File("six.vox"), v);
    {
        LSoundSinkPtr p(new LSNKVOX(dir.File("parts.vox"), 8000));
        p->Write(v.data(), 3);
        p->Write(v.data() + 3, 1);
        p->Write(v.data() + 4, 2);
        EXPECT_EQ(p->GetPosition(), 6);
    }
    EXPECT_EQ(ReadFileBytes(dir.File("parts.vox")), ReadFileBytes(dir.File("six.vox")));
    ASSERT_EQ(ReadFileBytes(dir.File("six.vox")).size(), 3u);

    // First code: (30000 - 0) / 16 = 1875 >= 132 + 66 + 33: magnitude 7, positive.
    EXPECT_EQ(ReadFileBytes(dir.File("six.vox"))[0] >> 4, 7);
    // The thresholds sit just above 128, 64 and 32 steps: 131 steps is magnitude 3.
    LDialogicAdpcm enc;
    EXPECT_EQ(enc.Encode(131 * 16), 3);
    LDialogicAdpcm enc2;
    EXPECT_EQ(enc2.Encode(132 * 16), 4);
    LDialogicAdpcm enc3;
    EXPECT_EQ(enc3.Encode(-65 * 16), 8 | 1);
    LDialogicAdpcm enc4;
    EXPECT_EQ(enc4.Encode(-16 * 16), 8);
}

TEST_F(Headerless, VoxDecoderFollowsTheEncoder)
{
    const std::vector<int16_t> v16 = TestSignal(8000, 1, 8000);
    std::vector<int32_t> v;
    for (int16_t s : v16)
        v.push_back(s * 16);
    WriteVox(dir.File("sig.vox"), v);
    LSRCVOX src(dir.File("sig.vox"), 8000);
    const std::vector<int32_t> vBack = ReadAll(src);
    ASSERT_EQ(vBack.size(), v.size());
    // The decoder runs the encoder's own prediction, so the round trip tracks the signal.
    EXPECT_GT(SnrDb({v.begin(), v.end()}, {vBack.begin(), vBack.end()}), 15.0);
}

TEST_F(Headerless, VoxMadeBySoxReproducesSpeech)
{
    REQUIRE_TOOL("sox");
    REQUIRE_TOOL("espeak-ng");
    const std::string szWav = dir.File("speech.wav"), szVox = dir.File("speech.vox");
    ASSERT_TRUE(RunTool("espeak-ng -v en -w " + Quote(szWav) + " 'Please leave your message after the tone'"));
    ASSERT_TRUE(RunTool("sox " + Quote(szWav) + " -r 8000 -c 1 -t s16 -L " + Quote(dir.File("speech.s16"))));
    ASSERT_TRUE(RunTool("sox -t s16 -L -r 8000 -c 1 " + Quote(dir.File("speech.s16")) + " " + Quote(szVox)));
    const std::vector<int16_t> vRef = Samples16LE(ReadFileBytes(dir.File("speech.s16")));
    Use(RawDialogicAdpcm, 8000, 1);
    LSoundSourcePtr p = LAudioFile::OpenSource(szVox);
    ASSERT_FALSE(p->IsError());
    const std::vector<int32_t> vOurs = ReadAll(*p);
    ASSERT_EQ(vOurs.size(), vRef.size());
    // Our samples stand at half the level sox gives the same codes; the fitted gain takes
    // that out, so what is measured is the waveform.
    double fDot = 0, fOurs = 0;
    for (size_t i = 0; i < vRef.size(); ++i) {
        fDot += static_cast<double>(vOurs[i]) * vRef[i];
        fOurs += static_cast<double>(vOurs[i]) * vOurs[i];
    }
    const double fGain = fDot / fOurs;
    std::vector<double> vScaled;
    for (int32_t s : vOurs)
        vScaled.push_back(s * fGain);
    const double fSnr = SnrDb({vRef.begin(), vRef.end()}, vScaled);
    std::printf("VOX from sox, our decoder: SNR %.2f dB (gain %.4f)\n", fSnr, fGain * 16);
    EXPECT_GT(fSnr, 10.0);
}

TEST_F(Headerless, PcmAndG711LayoutsRoundTripBitForBitWithSox)
{
    REQUIRE_TOOL("sox");
    struct Layout
    {
        int32_t nFormat;
        const char* szSox;
    };
    const Layout aLayouts[] = {
        {RawPcm16LE, "-t raw -e signed -b 16 -L"}, {RawPcm16BE, "-t raw -e signed -b 16 -B"},
        {RawPcm8Unsigned, "-t raw -e unsigned -b 8"}, {RawPcm8Signed, "-t raw -e signed -b 8"},
        {RawULaw, "-t raw -e mu-law -b 8"},           {RawALaw, "-t raw -e a-law -b 8"},
    };
    const std::string szSignal = dir.File("signal.s16");
    WriteFileBytes(szSignal, Bytes16LE(TestSignal(11025, 2, 5000)));
    for (const Layout& l : aLayouts) {
        SCOPED_TRACE(l.szSox);
        const std::string szShape = std::string(l.szSox) + " -r 11025 -c 2 ";
        const std::string szTheirs = dir.File("theirs" + std::to_string(l.nFormat) + ".raw");
        const std::string szOurs = dir.File("ours" + std::to_string(l.nFormat) + ".raw");
        ASSERT_TRUE(RunTool("sox -D -t s16 -L -r 11025 -c 2 " + Quote(szSignal) + " " + szShape + Quote(szTheirs)));

        Use(l.nFormat, 11025, 2);
        LAudioFileDetails details;
        LSoundSourcePtr p = LAudioFile::OpenSource(szTheirs, nullptr, &details);
        ASSERT_FALSE(p->IsError());
        EXPECT_EQ(details.szFormat, "RAW");
        EXPECT_EQ(details.szEncoding, LVoxRawSettings::ListText(l.nFormat));
        EXPECT_EQ(p->GetSampleRate(), 11025);
        EXPECT_EQ(p->GetChannels(), 2);
        ASSERT_EQ(p->GetLength(), 5000);
        const std::vector<int32_t> vOurs = ReadAll(*p);

        // We read what sox reads, except where our µ-law levels deliberately differ.
        const std::vector<int16_t> vSox = ToolDecode("sox", szTheirs, szShape);
        ASSERT_EQ(vSox.size(), vOurs.size());
        for (size_t i = 0; i < vOurs.size(); ++i) {
            int32_t nExpected = vSox[i] * 16;
            if (l.nFormat == RawULaw)
                nExpected = LG711::ULawToSample(LG711::SampleToULaw(nExpected));
            if (l.nFormat == RawPcm8Unsigned || l.nFormat == RawPcm8Signed)
                nExpected = vSox[i] / 256 * 4096;
            ASSERT_EQ(vOurs[i], nExpected) << "sample " << i;
        }

        // Written back through the door in the layout it was read in: the same bytes.
        SaveProcess save(p.Get(), szOurs, details.encoding);
        p->SetPosition(0);
        ASSERT_EQ(save.Run(), LProgressDialog::ResultDone) << save.szError;
        EXPECT_EQ(ReadFileBytes(szOurs), ReadFileBytes(szTheirs));
    }
}

TEST_F(Headerless, ReaderLimitsAndTheSavedLayout)
{
    WriteFileBytes(dir.File("five.raw"), {1, 2, 3, 4, 5});
    for (int i = 0; i < 2; ++i) {
        LFile file;
        ASSERT_TRUE(file.Open(dir.File("five.raw"), LFile::ReadExisting));
        // No length given: the file's, less a trailing part frame.
        LSoundSourcePtr p = LMakeRawSource(i ? RawPcm16BE : RawPcm8Unsigned, std::move(file), 8000,
                                           LRawFileDataSoundSourceBase::kUnspecifiedLength, 2);
        EXPECT_EQ(p->GetLength(), i ? 1 : 2);
        p->SetPosition(-1);
        const std::vector<int32_t> v = ReadN(*p, 4);
        EXPECT_EQ(v[0], 0);
        EXPECT_EQ(v.back(), 0);
        EXPECT_EQ(v[2], i ? 0x0102 * 16 : (1 - 128) * 4096);
    }
    LFile unopened;
    EXPECT_TRUE(LRawFileDataSoundSource<LRawULaw>(std::move(unopened), 8000, 10, 1).IsError());
    LFile file;
    file.Open(dir.File("five.raw"), LFile::ReadExisting);
    EXPECT_TRUE(LRawFileDataSoundSource<LRawULaw>(std::move(file), 8000, 10, 0).IsError());

    // A ".vox" is written at the stored rate in one channel, a ".raw" in the stored channels.
    Use(RawPcm16LE, 16000, 2);
    std::vector<int32_t> v(8000 * 2, 160);
    SaveProcess vox(new LSRCMemory(v, 8000, 2), dir.File("out.vox"));
    ASSERT_EQ(vox.Run(), LProgressDialog::ResultDone) << vox.szError;
    EXPECT_EQ(ReadFileBytes(dir.File("out.vox")).size(), 16000u * 2);
    SaveProcess raw(new LSRCMemory(v, 8000, 2), dir.File("out.raw"), "s8");
    ASSERT_EQ(raw.Run(), LProgressDialog::ResultDone) << raw.szError;
    EXPECT_EQ(ReadFileBytes(dir.File("out.raw")).size(), 16000u * 2);
    Use(RawDialogicAdpcm, 8000, 2);
    SaveProcess adpcm(new LSRCMemory(v, 8000, 2), dir.File("adpcm.raw"));
    ASSERT_EQ(adpcm.Run(), LProgressDialog::ResultDone) << adpcm.szError;
    EXPECT_EQ(ReadFileBytes(dir.File("adpcm.raw")).size(), 4000u);
}

TEST_F(Headerless, EightBitSignedWritesRoundAndWrap)
{
    const std::vector<int32_t> v = {0, 2047, 2048, -2048, -2049, 127 * 4096, 128 * 4096 - 2049, 128 * 4096 - 2048};
    {
        LSoundSinkPtr p(new LRawFileDataSoundSinkBase(dir.File("s8.raw"), 8000, 1, RawPcm8Signed));
        p->Write(v.data(), static_cast<int32_t>(v.size()));
    }
    EXPECT_EQ(ReadFileBytes(dir.File("s8.raw")), (std::vector<uint8_t>{0, 0, 1, 0, 0xFF, 127, 127, 0x80}));
}

TEST_F(Headerless, PcmFilesOpenAsHeaderlessSixteenBit)
{
    // Whatever encoding is stored for ".raw", a ".pcm" file is 16-bit at the stored rate and channels.
    Use(RawDialogicAdpcm, 16000, 2);
    WriteFileBytes(dir.File("a.pcm"), {0x10, 0x00, 0x20, 0x00, 0xF0, 0xFF, 0x00, 0x80});
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("a.pcm"), &szError, &details);
    ASSERT_FALSE(p->IsError()) << szError;
    EXPECT_EQ(details.szFormat, "RAW");
    EXPECT_EQ(p->GetSampleRate(), 16000);
    EXPECT_EQ(p->GetChannels(), 2);
    EXPECT_EQ(ReadN(*p, 2), (std::vector<int32_t>{16 * 16, 32 * 16, -16 * 16, -32768 * 16}));
    // The big-endian 16-bit layout, when stored, is kept.
    Use(RawPcm16BE, 8000, 1);
    p = LAudioFile::OpenSource(dir.File("a.pcm"));
    EXPECT_EQ(ReadN(*p, 1), (std::vector<int32_t>{0x1000 * 16}));
    // The open dialog lists the extension.
    EXPECT_NE(LAudioFormat::AllPatterns(LAudioFormat::OpenTypes()).find("*.pcm"), std::string::npos);
}

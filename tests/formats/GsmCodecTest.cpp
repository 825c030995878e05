#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "formats/LGSMFrame.h"
#include "formats/LGSMParams.h"
#include "tests/formats/GsmSignals.h"

using namespace gsmsignals;
using testsupport::TempDir;

namespace {

// Whole frames, the last padded with zeros as toast pads it.
Bytes EncodeAll(const Samples& vIn)
{
    LGSMFrame codec;
    Samples v = vIn;
    v.resize((v.size() + 159) / 160 * 160, 0);
    Bytes vOut(v.size() / 160 * 33);
    for (size_t f = 0; f < v.size() / 160; ++f)
        codec.EncodeNormal(v.data() + 160 * f, vOut.data() + 33 * f);
    return vOut;
}

Samples DecodeAll(const Bytes& vFrames)
{
    LGSMFrame codec;
    Samples vOut(vFrames.size() / 33 * 160);
    for (size_t f = 0; f < vFrames.size() / 33; ++f)
        codec.DecodeNormal(vFrames.data() + 33 * f, vOut.data() + 160 * f);
    return vOut;
}

LGSMParams RandomParams(std::mt19937& rng)
{
    LGSMParams p;
    for (int i = 0; i < LGSMParams::kCount; ++i)
        p.aValue[i] = static_cast<int16_t>(rng() & ((1u << LGSMParams::Width(i)) - 1));
    return p;
}

Bytes RandomBytes(std::mt19937& rng, size_t n)
{
    Bytes v(n);
    for (uint8_t& b : v)
        b = static_cast<uint8_t>(rng());
    return v;
}

// The first index where two sequences differ, for a readable failure.
template <class V> std::string FirstDifference(const V& a, const V& b)
{
    if (a.size() != b.size())
        return "sizes " + std::to_string(a.size()) + " and " + std::to_string(b.size());
    const auto it = std::mismatch(a.begin(), a.end(), b.begin());
    if (it.first == a.end())
        return "none";
    return "at " + std::to_string(it.first - a.begin()) + ": " + std::to_string(*it.first) + " vs " +
           std::to_string(*it.second);
}

struct Signal
{
    std::string szName;
    Samples v;
};

std::vector<Signal> TestSignals(const TempDir& dir)
{
    std::vector<Signal> v;
    if (HaveSpeechTools()) {
        v.push_back({"speech en-us", Speech(dir, "en-us", "Please leave a message after the tone. Thank you for calling.")});
        v.push_back({"speech de", Speech(dir, "de", "Guten Morgen, wie geht es Ihnen heute?")});
        v.push_back({"speech fr+f3", Speech(dir, "fr+f3", "Bonjour, ceci est un message enregistr\xc3\xa9.")});
        v.push_back({"speech en+m7", Speech(dir, "en+m7", "Seven six five four three two one zero. Goodbye.")});
    }
    v.push_back({"silence", Samples(8000, 0)});
    v.push_back({"quiet noise", Noise(8000, 40, 1)});
    v.push_back({"full-scale noise", Noise(16000, 32767, 2)});
    // toast's lag search sums in single-precision floats, which round once correlations pass
    // 2^24; on loud strictly periodic input (a full-scale square) near-equal lags can then tie
    // differently from the exact integer sums. A chirp keeps clear of such ties.
    Samples vChirp(16000);
    for (size_t i = 0; i < vChirp.size(); ++i) {
        const double t = static_cast<double>(i) / 8000.0;
        vChirp[i] = static_cast<int16_t>(24000.0 * std::sin(2.0 * M_PI * (100.0 + 900.0 * t) * t));
    }
    v.push_back({"loud chirp", vChirp});
    return v;
}

} // namespace

TEST(GsmParams, FramePackingIsExactlyInvertible)
{
    std::mt19937 rng(7);
    for (int n = 0; n < 500; ++n) {
        const LGSMParams p = RandomParams(rng);
        uint8_t frame[33];
        LGSMPack(p, frame);
        EXPECT_EQ(frame[0] >> 4, 0xD);
        LGSMParams q;
        ASSERT_TRUE(LGSMUnpack(frame, q));
        ASSERT_EQ(p, q);

        Bytes vFrame = RandomBytes(rng, 33);
        vFrame[0] = static_cast<uint8_t>(0xD0 | (vFrame[0] & 0x0F));
        ASSERT_TRUE(LGSMUnpack(vFrame.data(), q));
        uint8_t again[33];
        LGSMPack(q, again);
        ASSERT_EQ(0, std::memcmp(again, vFrame.data(), 33));
    }
}

TEST(GsmParams, FrameStartsWithTheSignatureThenTheRatiosMostSignificantBitFirst)
{
    LGSMParams p;
    p.LARc(0) = 0x2A; // 101010
    p.LARc(1) = 0x15; // 010101
    p.xMc(3)[12] = 5; // the very last three bits
    uint8_t frame[33];
    LGSMPack(p, frame);
    EXPECT_EQ(frame[0], 0xDA);
    EXPECT_EQ(frame[1], 0x95);
    EXPECT_EQ(frame[32], 0x05);

    frame[0] = 0xCA;
    LGSMParams q;
    EXPECT_FALSE(LGSMUnpack(frame, q)) << "a frame without the signature is reported";
}

TEST(GsmParams, WavBlockPackingIsExactlyInvertible)
{
    std::mt19937 rng(11);
    for (int n = 0; n < 500; ++n) {
        const LGSMParams a = RandomParams(rng);
        const LGSMParams b = RandomParams(rng);
        uint8_t block[65];
        LGSMPackWavBlock(a, b, block);
        LGSMParams a2, b2;
        LGSMUnpackWavBlock(block, a2, b2);
        ASSERT_EQ(a, a2);
        ASSERT_EQ(b, b2);

        const Bytes vBlock = RandomBytes(rng, 65);
        LGSMUnpackWavBlock(vBlock.data(), a2, b2);
        LGSMPackWavBlock(a2, b2, block);
        ASSERT_EQ(0, std::memcmp(block, vBlock.data(), 65));
    }
}

TEST(GsmParams, WavBlockIsLeastSignificantBitFirstAndTheSecondFrameStartsMidByte)
{
    LGSMParams a, b;
    a.LARc(0) = 0x2A;
    a.LARc(1) = 0x15;
    b.LARc(0) = 0x3F;
    uint8_t block[65];
    LGSMPackWavBlock(a, b, block);
    EXPECT_EQ(block[0], 0x6A); // 01 101010: low bits of LARc(1) above all of LARc(0)
    EXPECT_EQ(block[1], 0x05);
    EXPECT_EQ(block[32], 0xF0); // 260 bits in: the upper nibble of byte 32
    EXPECT_EQ(block[33], 0x03);
}

TEST(GsmCodec, EncoderAndDecoderMatchToastAndUntoastBitForBit)
{
    if (!HaveToast())
        GTEST_SKIP() << "toast/untoast (libgsm-tools) are not installed";
    if (!HaveSpeechTools())
        std::printf("espeak-ng or sox missing: checking noise and silence only\n");
    TempDir dir;
    for (const Signal& sig : TestSignals(dir)) {
        SCOPED_TRACE(sig.szName);
        ASSERT_GE(sig.v.size(), 8000u) << "no signal was made";
        const Bytes vTheirs = Toast(dir, sig.v);
        ASSERT_FALSE(vTheirs.empty());
        const Bytes vOurs = EncodeAll(sig.v);
        EXPECT_EQ(vOurs, vTheirs) << "first difference " << FirstDifference(vOurs, vTheirs);

        const Samples vTheirPcm = Untoast(dir, vTheirs);
        const Samples vOurPcm = DecodeAll(vTheirs);
        EXPECT_EQ(vOurPcm, vTheirPcm) << "first difference " << FirstDifference(vOurPcm, vTheirPcm);
    }
}

TEST(GsmCodec, DecoderMatchesUntoastOnArbitraryFrames)
{
    if (!HaveToast())
        GTEST_SKIP() << "toast/untoast (libgsm-tools) are not installed";
    // Random parameters reach what speech rarely does: lags outside 40..120, the largest block
    // maxima, every grid.
    std::mt19937 rng(3);
    Bytes vFrames = RandomBytes(rng, 33 * 400);
    for (size_t i = 0; i < vFrames.size(); i += 33)
        vFrames[i] = static_cast<uint8_t>(0xD0 | (vFrames[i] & 0x0F));
    TempDir dir;
    const Samples vTheirs = Untoast(dir, vFrames);
    const Samples vOurs = DecodeAll(vFrames);
    EXPECT_EQ(vOurs, vTheirs) << "first difference " << FirstDifference(vOurs, vTheirs);
}

TEST(GsmCodec, WavBlocksMatchSoxGsmInWav)
{
    if (!HaveSpeechTools())
        GTEST_SKIP() << "espeak-ng or sox is not installed";
    TempDir dir;
    const Samples vSpeech = Speech(dir, "en-us", "One block holds two frames.");
    ASSERT_FALSE(vSpeech.empty());
    testsupport::WriteFileBytes(dir.File("in.raw"), ToBytes(vSpeech));
    if (testsupport::RunCommand("sox -r 8000 -c 1 -b 16 -e signed -t raw '" + dir.File("in.raw") +
                                "' -e gsm-full-rate '" + dir.File("sox.wav") + "' 2>/dev/null") != 0)
        GTEST_SKIP() << "this sox cannot write GSM in WAV";
    ASSERT_EQ(0, testsupport::RunCommand("sox '" + dir.File("sox.wav") + "' -t raw -e signed -b 16 '" +
                                         dir.File("sox.raw") + "'"));
    // sox writes a 60-byte header: RIFF, a 20-byte "fmt ", "fact", then "data".
    const Bytes vWav = testsupport::ReadFileBytes(dir.File("sox.wav"));
    ASSERT_GT(vWav.size(), 60u);
    ASSERT_EQ(0, std::memcmp(vWav.data() + 52, "data", 4));
    const size_t nData = vWav[56] | vWav[57] << 8 | vWav[58] << 16 | static_cast<size_t>(vWav[59]) << 24;
    ASSERT_LE(60 + nData, vWav.size());
    // sox counts the pad byte after an odd-sized block run in the data size.
    const Bytes vTheirs(vWav.begin() + 60, vWav.begin() + 60 + static_cast<std::ptrdiff_t>(nData / 65 * 65));

    LGSMFrame enc, dec;
    Samples v = vSpeech;
    v.resize((v.size() + 319) / 320 * 320, 0);
    Bytes vOurs(v.size() / 320 * 65);
    for (size_t n = 0; n < v.size() / 320; ++n)
        enc.EncodeWavBlock(v.data() + 320 * n, vOurs.data() + 65 * n);
    EXPECT_EQ(vOurs, vTheirs) << "first difference " << FirstDifference(vOurs, vTheirs);

    Samples vOurPcm(vTheirs.size() / 65 * 320);
    for (size_t n = 0; n < vTheirs.size() / 65; ++n)
        dec.DecodeWavBlock(vTheirs.data() + 65 * n, vOurPcm.data() + 320 * n);
    const Samples vTheirPcm = ToSamples(testsupport::ReadFileBytes(dir.File("sox.raw")));
    EXPECT_EQ(vOurPcm, vTheirPcm) << "first difference " << FirstDifference(vOurPcm, vTheirPcm);
}

TEST(GsmCodec, FrameWithoutSignatureDecodesAsSilenceAndLeavesTheStreamIntact)
{
    const Samples vNoise = Noise(480, 8000, 5);
    const Bytes vFrames = EncodeAll(vNoise);
    LGSMFrame plain, interrupted;
    int16_t a[160], b[160];
    for (int f = 0; f < 3; ++f) {
        ASSERT_TRUE(plain.DecodeNormal(vFrames.data() + 33 * f, a));
        if (f == 2) {
            uint8_t bad[33];
            std::memcpy(bad, vFrames.data() + 33 * f, 33);
            bad[0] &= 0x0F;
            EXPECT_FALSE(interrupted.DecodeNormal(bad, b));
            EXPECT_TRUE(std::all_of(b, b + 160, [](int16_t s) { return s == 0; }));
        }
        ASSERT_TRUE(interrupted.DecodeNormal(vFrames.data() + 33 * f, b));
        EXPECT_EQ(0, std::memcmp(a, b, sizeof(a))) << "frame " << f;
    }
}

TEST(GsmCodec, ResetStartsANewStream)
{
    const Samples vNoise = Noise(320, 12000, 9);
    LGSMFrame codec;
    uint8_t first[33], again[33];
    int16_t out1[160], out2[160];
    codec.EncodeNormal(vNoise.data(), first);
    codec.EncodeNormal(vNoise.data() + 160, again);
    codec.DecodeNormal(first, out1);
    codec.Reset();
    codec.EncodeNormal(vNoise.data(), again);
    codec.DecodeNormal(first, out2);
    EXPECT_EQ(0, std::memcmp(first, again, 33));
    EXPECT_EQ(0, std::memcmp(out1, out2, sizeof(out1)));
}

// The codec layer through its stream interface: what opens, buffer sizes, the block-align, end
// and start flags, and each codec's arithmetic on hand-made blocks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "formats/codec/LCodec.h"
#include "formats/codec/LCodecFloat.h"
#include "formats/codec/LCodecPCM.h"
#include "formats/codec/LCodecStream.h"

namespace {

LWaveFormatRecord Ima(uint32_t nRate, uint16_t nChans)
{
    LWaveFormatRecord r;
    LCodec::ByShortName("ima")->MakeRecord(nRate, nChans, r);
    return r;
}

LWaveFormatRecord MsAdpcm(uint16_t nChans, uint16_t nBlock)
{
    // The standard record with its table of seven coefficient pairs, at a block size of our own.
    LWaveFormatRecord r;
    LCodec::ByShortName("msadpcm")->MakeRecord(8000, nChans, r);
    std::vector<uint8_t> v = r.vBytes;
    v[12] = static_cast<uint8_t>(nBlock);
    v[13] = static_cast<uint8_t>(nBlock >> 8);
    r.Decode(v.data(), v.size());
    return r;
}

std::unique_ptr<LCodecStream> Decoder(const LWaveFormatRecord& r)
{
    std::unique_ptr<LCodecStream> p;
    EXPECT_TRUE(LCodecStream::Open(&p, r, LWaveFormatRecord::PCM16(r.nSamplesPerSec, r.nChannels), 0));
    return p;
}

// Decodes whole buffers; returns the samples produced.
std::vector<int16_t> Decode(LCodecStream& s, const std::vector<uint8_t>& vIn, uint32_t nFlags, uint32_t* pUsed = nullptr)
{
    std::vector<int16_t> vOut(16384);
    LCodecStreamHeader h;
    h.pbSrc = vIn.data();
    h.cbSrcLength = static_cast<uint32_t>(vIn.size());
    h.pbDst = reinterpret_cast<uint8_t*>(vOut.data());
    h.cbDstLength = static_cast<uint32_t>(vOut.size() * 2);
    EXPECT_TRUE(s.Convert(h, nFlags));
    if (pUsed)
        *pUsed = h.cbSrcLengthUsed;
    vOut.resize(h.cbDstLengthUsed / 2);
    return vOut;
}

} // namespace

TEST(CodecStream, OpensOnlyBetweenACodecAndPCM16OfTheSameShape)
{
    const LWaveFormatRecord ima = Ima(8000, 1);
    const LWaveFormatRecord pcm = LWaveFormatRecord::PCM16(8000, 1);
    for (uint32_t nFlags : {0u, LCodecStream::kOpenNonRealtime}) {
        EXPECT_TRUE(LCodecStream::Open(nullptr, ima, pcm, LCodecStream::kOpenQuery | nFlags));
        EXPECT_TRUE(LCodecStream::Open(nullptr, pcm, ima, LCodecStream::kOpenQuery | nFlags));
        EXPECT_FALSE(LCodecStream::Open(nullptr, ima, LWaveFormatRecord::PCM16(11025, 1), LCodecStream::kOpenQuery | nFlags));
        EXPECT_FALSE(LCodecStream::Open(nullptr, ima, LWaveFormatRecord::PCM16(8000, 2), LCodecStream::kOpenQuery | nFlags));
        EXPECT_FALSE(LCodecStream::Open(nullptr, pcm, pcm, LCodecStream::kOpenQuery | nFlags));
    }
    // A query hands out no stream.
    std::unique_ptr<LCodecStream> p;
    EXPECT_TRUE(LCodecStream::Open(&p, ima, pcm, LCodecStream::kOpenQuery));
    EXPECT_FALSE(p);
    const LWaveFormatRecord unknown = LWaveFormatRecord::Make(0x1234, 1, 8000, 8000, 1, 8);
    EXPECT_FALSE(LCodecStream::Open(&p, unknown, pcm, 0));
    // IMA of 3 bits, or a block that cannot hold its header, is not ours.
    LWaveFormatRecord bad = LWaveFormatRecord::Make(0x11, 1, 8000, 4000, 4, 4, {2, 0});
    EXPECT_FALSE(LCodec::ForRecord(bad));
    bad = LWaveFormatRecord::Make(0x11, 1, 8000, 4000, 256, 3, {2, 0});
    EXPECT_FALSE(LCodec::ForRecord(bad));
}

TEST(CodecStream, ExtensibleRecordsMapToTheirSubFormat)
{
    const LWaveFormatRecord wide = LCodecPCM::MakeWide(48000, 2, 24);
    EXPECT_EQ(wide.wFormatTag, LWaveFormatRecord::kTagExtensible);
    EXPECT_EQ(wide.EffectiveTag(), LWaveFormatRecord::kTagPCM);
    EXPECT_STREQ(LCodec::ForRecord(wide)->GetName(), "PCM");
    // The same record with the float sub-format.
    std::vector<uint8_t> v = LCodecPCM::MakeWide(48000, 2, 32).vBytes;
    v[24] = 3;
    LWaveFormatRecord extFloat;
    extFloat.Decode(v.data(), v.size());
    EXPECT_EQ(extFloat.EffectiveTag(), LWaveFormatRecord::kTagFloat);
    EXPECT_STREQ(LCodec::ForRecord(extFloat)->GetName(), "IEEE Float");
    // A sub-format that is not one of the standard family stays extensible, and unknown.
    v[30] = 0x77;
    extFloat.Decode(v.data(), v.size());
    EXPECT_EQ(extFloat.EffectiveTag(), LWaveFormatRecord::kTagExtensible);
    EXPECT_FALSE(LCodec::ForRecord(extFloat));
}

TEST(CodecStream, SizesFollowTheBlocks)
{
    // IMA mono at 8000 Hz: 256-byte blocks of 505 frames.
    auto p = Decoder(Ima(8000, 1));
    ASSERT_TRUE(p);
    uint32_t n = 0;
    EXPECT_TRUE(p->Size(256, n, LCodecStream::kSizeSource));
    EXPECT_EQ(n, 505u * 2);
    EXPECT_TRUE(p->Size(256 + 36, n, LCodecStream::kSizeSource)); // a part block of 1 + 64 frames
    EXPECT_EQ(n, (505u + 65) * 2);
    EXPECT_TRUE(p->Size(8192 * 2, n, LCodecStream::kSizeDestination));
    EXPECT_EQ(n, 16u * 256);
    EXPECT_TRUE(p->Size(1000, n, LCodecStream::kSizeDestination)); // less than one block of PCM
    EXPECT_EQ(n, 0u);

    std::unique_ptr<LCodecStream> pEnc;
    ASSERT_TRUE(LCodecStream::Open(&pEnc, LWaveFormatRecord::PCM16(8000, 1), Ima(8000, 1), 0));
    EXPECT_TRUE(pEnc->Size(2, n, LCodecStream::kSizeSource)); // one frame still needs a block
    EXPECT_EQ(n, 256u);
    EXPECT_TRUE(pEnc->Size(505 * 2 + 2, n, LCodecStream::kSizeSource));
    EXPECT_EQ(n, 512u);
    EXPECT_TRUE(pEnc->Size(511, n, LCodecStream::kSizeDestination));
    EXPECT_EQ(n, 505u * 2);
    EXPECT_FALSE(pEnc->Size(2, n, 7));
}

TEST(CodecStream, ImaDecodesByShiftsOfTheStep)
{
    // One mono block of 36 bytes: header (predictor 0, index 0), then 32 code bytes (64 frames).
    std::vector<uint8_t> v(36, 0);
    v[4] = 0xF7; // 7 then 15
    v[5] = 0x80; // 0 then 8
    auto p = Decoder(LWaveFormatRecord::Make(0x11, 1, 8000, 4000, 36, 4, {65, 0}));
    ASSERT_TRUE(p);
    const std::vector<int16_t> out = Decode(*p, v, LCodecStream::kConvertBlockAlign);
    ASSERT_EQ(out.size(), 65u);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 11);  // step 7: 7>>3 + 7 + 7>>1 + 7>>2 = 0 + 7 + 3 + 1
    EXPECT_EQ(out[2], -19); // index 8, step 16: 2 + 16 + 8 + 4 taken off
    EXPECT_EQ(out[3], -15); // index 16, step 34: 34>>3 = 4 added, index back to 15
    EXPECT_EQ(out[4], -18); // step 31: 31>>3 = 3 taken off
}

TEST(CodecStream, ImaStereoInterleavesGroupsOfEightPerChannel)
{
    std::vector<uint8_t> v(16, 0);
    v[0] = 100; // left starts at 100, right at -100
    v[4] = 0x9C;
    v[5] = 0xFF;
    std::memset(v.data() + 8, 0x44, 4); // left codes: all 4
    std::memset(v.data() + 12, 0xCC, 4); // right codes: all 12
    auto p = Decoder(LWaveFormatRecord::Make(0x11, 2, 8000, 8000, 16, 4, {9, 0}));
    ASSERT_TRUE(p);
    const std::vector<int16_t> out = Decode(*p, v, LCodecStream::kConvertBlockAlign);
    ASSERT_EQ(out.size(), 18u);
    EXPECT_EQ(out[0], 100);
    EXPECT_EQ(out[1], -100);
    for (int i = 1; i < 9; ++i) {
        EXPECT_GT(out[2 * i], out[2 * i - 2]) << i;     // left climbs
        EXPECT_LT(out[2 * i + 1], out[2 * i - 1]) << i; // right falls by the same steps
        EXPECT_EQ(out[2 * i] - 100, -100 - out[2 * i + 1]) << i;
    }
}

TEST(CodecStream, MsAdpcmPredictsWithTruncatingDivision)
{
    // Mono block of 7 + 4 bytes: predictor 3 (192, 64), step 16, sample 1 = -1, sample 2 = 0.
    const std::vector<uint8_t> v = {3, 16, 0, 0xFF, 0xFF, 0, 0, 0x01, 0xF0, 0x00, 0x00};
    auto p = Decoder(MsAdpcm(1, 11));
    ASSERT_TRUE(p);
    const std::vector<int16_t> out = Decode(*p, v, LCodecStream::kConvertBlockAlign);
    ASSERT_EQ(out.size(), 10u);
    EXPECT_EQ(out[0], 0);  // the older header sample comes first
    EXPECT_EQ(out[1], -1);
    EXPECT_EQ(out[2], 0);  // -192 / 256 is 0 toward zero (a shift would give -1)
    EXPECT_EQ(out[3], 16); // code 1 x step 16; the step adapts to 230 x 16 / 256, held at 16
    EXPECT_EQ(out[4], -4); // 16 x 192 / 256 = 12, then code -1 x step 16
}

TEST(CodecStream, BlockAlignLeavesThePartBlockAndEndDecodesIt)
{
    const LWaveFormatRecord r = LWaveFormatRecord::Make(0x11, 1, 8000, 4000, 36, 4, {65, 0});
    auto p = Decoder(r);
    std::vector<uint8_t> v(36 * 2 + 12, 0x11);
    for (size_t i : {0u, 36u, 72u})
        v[i + 2] = 10; // a valid index in each header
    uint32_t nUsed = 0;
    EXPECT_EQ(Decode(*p, v, LCodecStream::kConvertBlockAlign, &nUsed).size(), 2u * 65);
    EXPECT_EQ(nUsed, 72u);
    const std::vector<uint8_t> vRest(v.begin() + 72, v.end());
    EXPECT_EQ(Decode(*p, vRest, LCodecStream::kConvertBlockAlign, &nUsed).size(), 0u);
    EXPECT_EQ(nUsed, 0u);
    EXPECT_EQ(Decode(*p, vRest, LCodecStream::kConvertEnd, &nUsed).size(), 1u + 16);
    EXPECT_EQ(nUsed, 12u);
    // Too short for a header: used up, nothing produced.
    EXPECT_EQ(Decode(*p, std::vector<uint8_t>(3, 0), LCodecStream::kConvertEnd, &nUsed).size(), 0u);
    EXPECT_EQ(nUsed, 3u);
}

TEST(CodecStream, WidePCMAndFloatRoundAndSaturateTo16Bits)
{
    auto p24 = Decoder(LCodecPCM::MakeWide(8000, 1, 24));
    ASSERT_TRUE(p24);
    const std::vector<uint8_t> v24 = {0x7F, 0x34, 0x12, 0x80, 0x34, 0x12, 0xFF, 0xFF, 0x7F,
                                      0x00, 0x00, 0x80, 0x80, 0xFF, 0xFF};
    EXPECT_EQ(Decode(*p24, v24, LCodecStream::kConvertBlockAlign),
              (std::vector<int16_t>{0x1234, 0x1235, 32767, -32768, 0}));

    auto pFloat = Decoder(LCodecFloat::MakeFloat(8000, 1, 32));
    ASSERT_TRUE(pFloat);
    const float vf[] = {0.5f, -1.0f, 1.5f, -7.0f, std::numeric_limits<float>::quiet_NaN(), 1.6f / 32768, -1.4f / 32768};
    std::vector<uint8_t> vBytes(sizeof(vf));
    std::memcpy(vBytes.data(), vf, sizeof(vf));
    EXPECT_EQ(Decode(*pFloat, vBytes, LCodecStream::kConvertBlockAlign),
              (std::vector<int16_t>{16384, -32768, 32767, -32768, 0, 2, -1}));
}

TEST(CodecStream, EveryEncoderRoundTripsThroughItsDecoder)
{
    for (const LCodec* pCodec : LCodec::All()) {
        if (!pCodec->CanEncode())
            continue;
        int32_t nRate = 8000;
        uint8_t nChans = 2;
        pCodec->FitShape(nRate, nChans); // GSM holds one channel
        std::vector<int16_t> vIn(static_cast<size_t>(nChans) * 3000);
        for (size_t i = 0; i < vIn.size(); ++i)
            vIn[i] = static_cast<int16_t>(8000 * std::sin(i / nChans * 0.05 * (1 + (i % nChans))));
        LWaveFormatRecord r;
        ASSERT_TRUE(pCodec->MakeRecord(static_cast<uint32_t>(nRate), nChans, r)) << pCodec->GetName();
        std::unique_ptr<LCodecStream> pEnc;
        ASSERT_TRUE(LCodecStream::Open(&pEnc, LWaveFormatRecord::PCM16(r.nSamplesPerSec, nChans), r, 0))
            << pCodec->GetName();
        std::vector<uint8_t> vCoded(64 * 1024);
        LCodecStreamHeader h;
        h.pbSrc = reinterpret_cast<const uint8_t*>(vIn.data());
        h.cbSrcLength = static_cast<uint32_t>(vIn.size() * 2);
        h.pbDst = vCoded.data();
        h.cbDstLength = static_cast<uint32_t>(vCoded.size());
        ASSERT_TRUE(pEnc->Convert(h, LCodecStream::kConvertBlockAlign | LCodecStream::kConvertEnd));
        EXPECT_EQ(h.cbSrcLengthUsed, h.cbSrcLength) << pCodec->GetName();
        vCoded.resize(h.cbDstLengthUsed);
        auto pDec = Decoder(r);
        std::vector<int16_t> vOut = Decode(*pDec, vCoded, LCodecStream::kConvertEnd);
        ASSERT_GE(vOut.size(), vIn.size()) << pCodec->GetName();
        double fNoise = 0, fSignal = 0;
        for (size_t i = 0; i < vIn.size(); ++i) {
            fSignal += double(vIn[i]) * vIn[i];
            fNoise += double(vIn[i] - vOut[i]) * (vIn[i] - vOut[i]);
        }
        // GSM keeps how speech sounds rather than its waveform.
        const double fMin = std::string(pCodec->GetShortName()) == "gsm" ? 5 : 20;
        EXPECT_GT(fNoise ? 10 * std::log10(fSignal / fNoise) : 999, fMin) << pCodec->GetName();
    }
}

#include "formats/mp3/LMP3Decoder.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>

#include "core/LTrace.h"
#include "formats/mp3/LMP3TableData.h"
#include "formats/mp3/LMP3Tables.h"

// The Huffman decoding is built twice, the second time for processors with wider vector units,
// and the copy is chosen when the program starts; the filter banks run four lanes wide, or eight
// in a copy built for those processors and chosen when the stream is configured. Not under the
// thread checker: the start-up choice runs while the program is being loaded, before the
// checker's runtime exists, and crashes there.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) &&                     \
    !defined(__SANITIZE_THREAD__)
#define LMP3_WIDE_VECTORS __attribute__((target_clones("arch=x86-64-v3", "default")))
#define LMP3_WIDE_PATH 1
#define LMP3_WIDE_TARGET __attribute__((target("arch=x86-64-v3")))
#else
#define LMP3_WIDE_VECTORS
#endif

struct LMP3Decoder::BitReader
{
    const uint8_t* p;
    int nPos; // in bits

    // Up to 32 bits; the buffers carry padding so that a look past the end reads zeros.
    uint32_t Peek(int n) const
    {
        uint64_t w;
        std::memcpy(&w, p + (nPos >> 3), sizeof(w));
        if constexpr (std::endian::native == std::endian::little)
            w = __builtin_bswap64(w);
        return static_cast<uint32_t>((w << (nPos & 7)) >> (64 - n));
    }
    // 0 to 32 bits.
    uint32_t Get(int n)
    {
        uint64_t w;
        std::memcpy(&w, p + (nPos >> 3), sizeof(w));
        if constexpr (std::endian::native == std::endian::little)
            w = __builtin_bswap64(w);
        nPos += n;
        return static_cast<uint32_t>(((w << ((nPos - n) & 7)) >> 1) >> (63 - n));
    }
    // One Huffman value of a book.
    uint32_t Decode(int nBook)
    {
        const uint32_t* pHuff = MP3LT.aHuff;
        uint32_t nStart = MP3LT.aBookStart[nBook];
        int nWidth = MP3LT.aBookBits[nBook];
        for (;;) {
            const uint32_t e = pHuff[nStart + Peek(nWidth)];
            if (!(e & 0x80000000u)) {
                nPos += (e >> 8) & 31;
                return e & 0xFF;
            }
            nPos += nWidth;
            nWidth = (e >> 24) & 31;
            nStart = e & 0xFFFFFF;
        }
    }
};

namespace {
std::atomic<bool> g_bBaselineOnly{false};
} // namespace

void LMP3Decoder::SetBaselineOnly(bool bOn)
{
    g_bBaselineOnly = bOn;
}

void LMP3Decoder::Configure(int nRate, int nChans)
{
    nRateIndex = std::clamp(nRate, 0, 8);
    nOutChans = nChans == 1 ? 1 : 2;
    nVersion = nRateIndex / 3;
    nLongMixed = nVersion == 0 ? 8 : 6;
    pLong = LMP3Data::kLongBands[nRateIndex];
    pShort = LMP3Data::kShortBands[nRateIndex];
#ifdef LMP3_WIDE_PATH
    __builtin_cpu_init(); // in case a decoder is configured before the program's constructors ran
    bWide = !g_bBaselineOnly && __builtin_cpu_supports("x86-64-v3");
#endif
    BuildReorderMap();
    Reset();
}

void LMP3Decoder::BuildReorderMap()
{
    int i = 0;
    nReorderMixed = 0;
    for (int sfb = 0; sfb < 13; ++sfb) {
        const int nStart = pShort[sfb];
        const int nWidth = pShort[sfb + 1] - nStart;
        for (int w = 0; w < 3; ++w)
            for (int j = 0; j < nWidth; ++j) {
                if (i >= 576) {
                    LTRACE("LMP3Source::LMP3Source ReorderMap i >= 576");
                    nReorder = i;
                    return;
                }
                aReorderSrc[i] = static_cast<uint16_t>(3 * nStart + w * nWidth + j);
                aReorderDst[i] = static_cast<uint16_t>(3 * nStart + 3 * j + w);
                aReorderKeep[i] = aReorderSrc[i];
                ++i;
            }
        if (sfb == 2)
            nReorderMixed = i;
    }
    nReorder = i;
}

void LMP3Decoder::Reset()
{
    nReservoir = 0;
    std::memset(aReservoir, 0, sizeof(aReservoir));
    std::memset(aOverlap, 0, sizeof(aOverlap));
    std::memset(aHybrid, 0, sizeof(aHybrid));
    std::memset(aV, 0, sizeof(aV));
    std::memset(aSfL, 0, sizeof(aSfL));
    std::memset(aSfS, 0, sizeof(aSfS));
    aSlot[0] = aSlot[1] = 0;
}

bool LMP3Decoder::ReadSideInfo(const MP3Header& h, const uint8_t* pSide)
{
    uint8_t aPadded[48] = {};
    std::memcpy(aPadded, pSide, static_cast<size_t>(h.SideInfoBytes()));
    BitReader br{aPadded, 0};
    nChannels = h.IsMono() ? 1 : 2;
    nGranules = h.nVersion == 0 ? 2 : 1;
    if (h.nVersion == 0) {
        nMainDataBegin = static_cast<int>(br.Get(9));
        br.Get(nChannels == 1 ? 5 : 3);
        for (int ch = 0; ch < nChannels; ++ch)
            aScfsi[ch] = static_cast<int>(br.Get(4));
    } else {
        nMainDataBegin = static_cast<int>(br.Get(8));
        br.Get(nChannels == 1 ? 1 : 2);
        aScfsi[0] = aScfsi[1] = 0;
    }
    for (int gr = 0; gr < nGranules; ++gr)
        for (int ch = 0; ch < nChannels; ++ch) {
            Granule& g = aGr[gr][ch];
            g.nPart23 = static_cast<int>(br.Get(12));
            g.nBigValues = static_cast<int>(br.Get(9));
            g.nGlobalGain = static_cast<int>(br.Get(8));
            g.nSfCompress = static_cast<int>(br.Get(h.nVersion == 0 ? 4 : 9));
            const bool bSwitch = br.Get(1) != 0;
            if (bSwitch) {
                g.nBlockType = static_cast<int>(br.Get(2));
                g.bMixedFlag = br.Get(1) != 0;
                g.aTable[0] = static_cast<int>(br.Get(5));
                g.aTable[1] = static_cast<int>(br.Get(5));
                g.aTable[2] = 0;
                for (int w = 0; w < 3; ++w)
                    g.aSubGain[w] = static_cast<int>(br.Get(3));
                g.bShort = g.nBlockType == 2;
                g.bMixed = g.bShort && g.bMixedFlag;
                g.nRegion1 = g.bShort ? std::min(3 * pShort[3], 576) : pLong[8];
                g.nRegion2 = 576;
            } else {
                g.nBlockType = 0;
                g.bShort = g.bMixed = g.bMixedFlag = false;
                for (int t = 0; t < 3; ++t)
                    g.aTable[t] = static_cast<int>(br.Get(5));
                g.aSubGain[0] = g.aSubGain[1] = g.aSubGain[2] = 0;
                const int r0 = static_cast<int>(br.Get(4));
                const int r1 = static_cast<int>(br.Get(3));
                g.nRegion1 = pLong[std::min(r0 + 1, 22)];
                g.nRegion2 = pLong[std::min(r0 + r1 + 2, 22)];
            }
            g.bPreflag = h.nVersion == 0 ? br.Get(1) != 0 : false;
            g.nSfScale = static_cast<int>(br.Get(1));
            g.nCount1Table = static_cast<int>(br.Get(1));
        }
    return true;
}

void LMP3Decoder::ReadScaleFactors1(BitReader& br, int gr, int ch)
{
    const Granule& g = aGr[gr][ch];
    const int nSlen1 = LMP3Data::kSlen[0][g.nSfCompress];
    const int nSlen2 = LMP3Data::kSlen[1][g.nSfCompress];
    int* pL = aSfL[ch];
    if (g.bShort) {
        int nFirst = 0;
        if (g.bMixed) {
            for (int sfb = 0; sfb < 8; ++sfb)
                pL[sfb] = static_cast<int>(br.Get(nSlen1));
            nFirst = 3;
        }
        for (int sfb = nFirst; sfb < 12; ++sfb)
            for (int w = 0; w < 3; ++w)
                aSfS[ch][sfb][w] = static_cast<int>(br.Get(sfb < 6 ? nSlen1 : nSlen2));
        aSfS[ch][12][0] = aSfS[ch][12][1] = aSfS[ch][12][2] = 0;
        return;
    }
    static const int kGroups[5] = {0, 6, 11, 16, 21};
    for (int grp = 0; grp < 4; ++grp) {
        if (gr == 1 && (aScfsi[ch] & (8 >> grp)))
            continue; // kept from the first granule
        for (int sfb = kGroups[grp]; sfb < kGroups[grp + 1]; ++sfb)
            pL[sfb] = static_cast<int>(br.Get(grp < 2 ? nSlen1 : nSlen2));
    }
    pL[21] = 0;
}

namespace {

// The bit widths of the four partitions of a lower-sampling-frequency stream's scale factors and
// the partition scheme they select, from scale factor compress (halved for the intensity channel,
// whose dropped bit is the intensity scale).
struct LsfLayout
{
    int aSlen[4] = {0, 0, 0, 0};
    int nScheme = 0;
    bool bPreflag = false;
};

[[gnu::always_inline]] inline LsfLayout LsfLayoutOf(int sfc)
{
    LsfLayout lay;
    if (sfc < 400) {
        lay.aSlen[0] = (sfc >> 4) / 5;
        lay.aSlen[1] = (sfc >> 4) % 5;
        lay.aSlen[2] = (sfc & 15) >> 2;
        lay.aSlen[3] = sfc & 3;
        lay.nScheme = 0;
    } else if (sfc < 500) {
        sfc -= 400;
        lay.aSlen[0] = (sfc >> 2) / 5;
        lay.aSlen[1] = (sfc >> 2) % 5;
        lay.aSlen[2] = sfc & 3;
        lay.nScheme = 1;
    } else {
        sfc -= 500;
        lay.aSlen[0] = sfc / 3;
        lay.aSlen[1] = sfc % 3;
        lay.bPreflag = true;
        lay.nScheme = 2;
    }
    return lay;
}

[[gnu::always_inline]] inline LsfLayout LsfIntensityLayoutOf(int sfc)
{
    LsfLayout lay;
    sfc >>= 1;
    if (sfc < 180) {
        lay.aSlen[0] = sfc / 36;
        lay.aSlen[1] = (sfc % 36) / 6;
        lay.aSlen[2] = (sfc % 36) % 6;
        lay.nScheme = 3;
    } else if (sfc < 244) {
        sfc -= 180;
        lay.aSlen[0] = (sfc & 63) >> 4;
        lay.aSlen[1] = (sfc & 15) >> 2;
        lay.aSlen[2] = sfc & 3;
        lay.nScheme = 4;
    } else {
        sfc -= 244;
        lay.aSlen[0] = sfc / 3;
        lay.aSlen[1] = sfc % 3;
        lay.nScheme = 5;
    }
    return lay;
}

} // namespace

void LMP3Decoder::ReadScaleFactors2(BitReader& br, int ch, bool bIntensityRight)
{
    Granule& g = aGr[0][ch];
    const LsfLayout lay = bIntensityRight ? LsfIntensityLayoutOf(g.nSfCompress) : LsfLayoutOf(g.nSfCompress);
    g.bPreflag = lay.bPreflag;
    if (bIntensityRight)
        nIntensityScale = g.nSfCompress & 1;
    const int nBlock = g.bShort ? (g.bMixed ? 2 : 1) : 0;
    const uint8_t* pCount = LMP3Data::kLsfPartitions[lay.nScheme][nBlock];
    int aVal[40];
    int aMax[40];
    int n = 0;
    for (int part = 0; part < 4; ++part)
        for (int i = 0; i < pCount[part] && n < 40; ++i, ++n) {
            aVal[n] = static_cast<int>(br.Get(std::min(lay.aSlen[part], 15)));
            aMax[n] = (1 << std::min(lay.aSlen[part], 15)) - 1;
        }
    for (; n < 40; ++n)
        aVal[n] = aMax[n] = 0;
    StoreLsfScaleFactors(ch, nBlock, aVal, aMax);
}

void LMP3Decoder::StoreLsfScaleFactors(int ch, int nBlock, const int* pVal, const int* pMax)
{
    int k = 0;
    if (nBlock == 0) {
        for (int sfb = 0; sfb < 21; ++sfb, ++k) {
            aSfL[ch][sfb] = pVal[k];
            aMaxL[sfb] = pMax[k];
        }
        aSfL[ch][21] = 0; // never sent; intensity stereo takes band 20's position
        aMaxL[21] = aMaxL[20];
        return;
    }
    int nFirst = 0;
    if (nBlock == 2) {
        for (int sfb = 0; sfb < 6; ++sfb, ++k) {
            aSfL[ch][sfb] = pVal[k];
            aMaxL[sfb] = pMax[k];
        }
        nFirst = 3;
    }
    for (int sfb = nFirst; sfb < 12; ++sfb)
        for (int w = 0; w < 3; ++w, ++k) {
            aSfS[ch][sfb][w] = pVal[k];
            aMaxS[sfb][w] = pMax[k];
        }
    for (int w = 0; w < 3; ++w) {
        aSfS[ch][12][w] = 0;
        aMaxS[12][w] = aMaxS[11][w];
    }
}

void LMP3Decoder::BuildBandScales(const Granule& g, int ch)
{
    // Bands in the order their lines are sent, each with its end line and its gain.
    const int nShift = 1 + g.nSfScale;
    const int nBase = g.nGlobalGain - 210 + LMP3Tables::kGainOffset;
    auto Scale = [&](int nQuarter) { return MP3LT.fGain[std::clamp(nBase - nQuarter, 0, LMP3Tables::kGainSize - 1)]; };
    int nLongEnd = 576;
    int nFirstShort = 13;
    if (g.bShort) {
        nLongEnd = g.bMixed ? pLong[nLongMixed] : 0;
        nFirstShort = g.bMixed ? 3 : 0;
    }
    nBands = 0;
    for (int sfb = 0; sfb < 22 && pLong[sfb] < nLongEnd; ++sfb) {
        const int nSf = aSfL[ch][sfb] + (g.bPreflag ? LMP3Data::kPretab[sfb] : 0);
        aBandEnd[nBands] = static_cast<int16_t>(std::min<int>(pLong[sfb + 1], nLongEnd));
        aBandScale[nBands++] = Scale(nSf << nShift);
    }
    for (int sfb = nFirstShort; sfb < 13; ++sfb) {
        const int nWidth = pShort[sfb + 1] - pShort[sfb];
        for (int w = 0; w < 3; ++w) {
            aBandEnd[nBands] = static_cast<int16_t>(3 * pShort[sfb] + (w + 1) * nWidth);
            aBandScale[nBands++] = Scale((aSfS[ch][sfb][w] << nShift) + 8 * g.aSubGain[w]);
        }
    }
    aBandEnd[nBands] = 32767; // a guard past every line
    aBandScale[nBands] = 0.0f;
}

namespace {

// The set bits of a count1 quadruple: one per sign bit that follows it.
constexpr int kOnes[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};

// One code of a book read from the front of a 32-bit window, which holds every code whole (the
// longest takes 19 bits); nUsed gets the code's length.
[[gnu::always_inline]] inline uint32_t DecodeWindow(uint32_t w, int nBook, int& nUsed)
{
    const uint32_t* pHuff = MP3LT.aHuff;
    uint32_t nStart = MP3LT.aBookStart[nBook];
    int nWidth = MP3LT.aBookBits[nBook];
    int n = 0;
    for (;;) {
        const uint32_t e = pHuff[nStart + ((w << n) >> (32 - nWidth))];
        if (!(e & 0x80000000u)) {
            nUsed = n + static_cast<int>((e >> 8) & 31);
            return e & 0xFF;
        }
        n += nWidth;
        nWidth = static_cast<int>((e >> 24) & 31);
        nStart = e & 0xFFFFFF;
    }
}

// |v|^(4/3) times the band's gain, with the sign bit given apart.
[[gnu::always_inline]] inline float Requantise(uint32_t nMag, uint32_t nSign, float fScale)
{
    const float f = MP3LT.fPow43[nMag] * fScale;
    return std::bit_cast<float>(std::bit_cast<uint32_t>(f) ^ (nSign << 31));
}

} // namespace

// The bands the lines fall in, followed as the lines are decoded.
struct LMP3Decoder::BandCursor
{
    const int16_t* pEnd;
    const float* pScale;
    int nEnd;
    float fScale;

    [[gnu::always_inline]] void Reach(int i)
    {
        while (i >= nEnd) {
            nEnd = *++pEnd;
            fScale = *++pScale;
        }
    }
};

// The bits of the main data held in a register: each refill tops it up to at least 56 bits
// without a branch, and the load it needs does not wait on the code being decoded.
struct LMP3Decoder::BitCache
{
    const uint8_t* p; // the next bytes to load
    uint64_t nBuf;    // the next bits, from the top
    int nCount;       // bits of nBuf that are the stream's
    int nPos;         // in bits, as BitReader counts

    explicit BitCache(const BitReader& br) : p(br.p + (br.nPos >> 3)), nBuf(0), nCount(0), nPos(br.nPos)
    {
        Refill();
        nBuf <<= br.nPos & 7;
        nCount -= br.nPos & 7;
    }
    [[gnu::always_inline]] void Refill()
    {
        uint64_t w;
        std::memcpy(&w, p, sizeof(w));
        if constexpr (std::endian::native == std::endian::little)
            w = __builtin_bswap64(w);
        nBuf |= w >> nCount;
        p += (63 - nCount) >> 3;
        nCount |= 56;
    }
    [[gnu::always_inline]] void Skip(int n)
    {
        nBuf <<= n;
        nCount -= n;
        nPos += n;
    }
    // 1 to 32 bits.
    [[gnu::always_inline]] uint32_t Get(int n)
    {
        const uint32_t v = static_cast<uint32_t>(nBuf >> (64 - n));
        Skip(n);
        return v;
    }
};

// Requantises as it decodes, pair by pair; returns the next line.
LMP3_WIDE_VECTORS int LMP3Decoder::DecodeBigValues(BitCache& bits, int nEnd, const Granule& g, BandCursor& bcIn, float* xr)
{
    // Local copies stay in registers: the stores of lines could otherwise be taken to change them.
    BitCache c = bits;
    BandCursor bc = bcIn;
    const int nBig = g.nBigValues * 2;
    const int aRegionEnd[3] = {std::min(g.nRegion1, nBig), std::min(std::max(g.nRegion2, g.nRegion1), nBig), nBig};
    int i = 0;
    for (int r = 0; r < 3; ++r) {
        const int nBook = g.aTable[r];
        const int nLinBits = LMP3Data::kBooks[nBook].nLinBits;
        const int nRegionEnd = aRegionEnd[r];
        if (MP3LT.aBookBits[nBook] == 0) {
            for (; i < nRegionEnd; ++i)
                xr[i] = 0.0f;
            continue;
        }
        for (; i < nRegionEnd; i += 2) {
            uint32_t x = 0, y = 0, sx = 0, sy = 0;
            if (c.nPos <= nEnd) {
                // A pair takes at most 19 + 2 x (13 + 1) bits: one refill holds it.
                c.Refill();
                const uint32_t w = static_cast<uint32_t>(c.nBuf >> 32);
                int nUsed = 0;
                const uint32_t xy = DecodeWindow(w, nBook, nUsed);
                x = xy >> 4;
                y = xy & 15;
                if (nLinBits) {
                    c.Skip(nUsed);
                    if (x == 15)
                        x += c.Get(nLinBits);
                    sx = x ? c.Get(1) : 0;
                    if (y == 15)
                        y += c.Get(nLinBits);
                    sy = y ? c.Get(1) : 0;
                } else {
                    // Both sign bits are in the window already; signs are random, so no branches.
                    const uint32_t nRest = w << nUsed;
                    const uint32_t nx = x != 0, ny = y != 0;
                    sx = nx & (nRest >> 31);
                    sy = ny & (nRest >> (31 - nx));
                    c.Skip(nUsed + static_cast<int>(nx + ny));
                }
            }
            bc.Reach(i);
            if (i + 1 < bc.nEnd) {
                xr[i] = Requantise(x, sx, bc.fScale);
                xr[i + 1] = Requantise(y, sy, bc.fScale);
            } else {
                xr[i] = Requantise(x, sx, bc.fScale);
                bc.Reach(i + 1);
                xr[i + 1] = Requantise(y, sy, bc.fScale);
            }
        }
    }
    bits = c;
    bcIn = bc;
    return nBig;
}

// Huffman decoding and requantisation of one granule's channel into aXr; returns the lines
// decoded (those above are zero).
LMP3_WIDE_VECTORS int LMP3Decoder::DecodeSpectrum(BitReader& br, int nEnd, const Granule& g, int ch)
{
    float* xr = aXr[ch];
    BitCache c(br); // local copies stay in registers
    BandCursor bc{aBandEnd, aBandScale, aBandEnd[0], aBandScale[0]};
    int i = DecodeBigValues(c, nEnd, g, bc, xr);
    const int nBook = 32 + g.nCount1Table;
    while (i <= 572 && c.nPos < nEnd) {
        c.Refill();
        const uint32_t w = static_cast<uint32_t>(c.nBuf >> 32);
        int nUsed = 0;
        const uint32_t q = DecodeWindow(w, nBook, nUsed);
        const int nOnes = kOnes[q & 15];
        // A quadruple that runs past the granule's bits is not part of it.
        if (c.nPos + nUsed + nOnes > nEnd)
            break;
        c.Skip(nUsed + nOnes);
        uint32_t nRest = w << nUsed;
        for (int k = 0; k < 4; ++k) {
            const uint32_t v = (q >> (3 - k)) & 1;
            bc.Reach(i + k);
            xr[i + k] = Requantise(v, v & (nRest >> 31), bc.fScale);
            nRest <<= v;
        }
        i += 4;
    }
    br.nPos = c.nPos;
    const int nLines = i;
    for (; i < 576; ++i)
        xr[i] = 0.0f;
    return nLines;
}

void LMP3Decoder::IntensityLines(float* l, float* r, int nLines, int nPos, int nMax, bool bMs)
{
    if (nPos >= nMax) {
        if (bMs) {
            const float k = 0.70710678118654752f;
            for (int i = 0; i < nLines; ++i) {
                const float m = l[i], s = r[i];
                l[i] = (m + s) * k;
                r[i] = (m - s) * k;
            }
        }
        return;
    }
    float kl, kr;
    if (nVersion == 0) {
        kl = MP3LT.fIsLeft1[std::min(nPos, 6)];
        kr = MP3LT.fIsRight1[std::min(nPos, 6)];
    } else {
        kl = MP3LT.fIsLeft2[nIntensityScale][nPos & 31];
        kr = MP3LT.fIsRight2[nIntensityScale][nPos & 31];
    }
    for (int i = 0; i < nLines; ++i) {
        const float x = l[i];
        l[i] = x * kl;
        r[i] = x * kr;
    }
}

void LMP3Decoder::StereoLong(int nFirstBand, int nLastBand, bool bMs)
{
    const int nIllegal = nVersion == 0 ? 7 : 0;
    for (int sfb = nFirstBand; sfb < nLastBand; ++sfb) {
        const int nFrom = pLong[sfb];
        // The last band sends no position of its own: it repeats band 20's.
        // Band 21 sends no position: it repeats band 20's. At the lower sampling frequencies a
        // band 20 outside the intensity region leaves it at position 0.
        const bool bZero = sfb == 21 && nVersion != 0 && nFirstBand > 20;
        const int nPos = bZero ? 0 : aSfL[1][sfb < 21 ? sfb : 20];
        const int nMax = nVersion == 0 ? nIllegal : bZero ? 1 : aMaxL[sfb];
        IntensityLines(aXr[0] + nFrom, aXr[1] + nFrom, pLong[sfb + 1] - nFrom, nPos, nMax, bMs);
    }
}

void LMP3Decoder::StereoShortWindow(int w, int nFirstBand, bool bMs)
{
    for (int sfb = nFirstBand; sfb < 13; ++sfb) {
        const int nWidth = pShort[sfb + 1] - pShort[sfb];
        const int nFrom = 3 * pShort[sfb] + w * nWidth;
        const bool bZero = sfb == 12 && nVersion != 0 && nFirstBand > 11;
        const int nPos = bZero ? 0 : aSfS[1][sfb < 12 ? sfb : 11][w];
        const int nMax = nVersion == 0 ? 7 : bZero ? 1 : aMaxS[sfb][w];
        IntensityLines(aXr[0] + nFrom, aXr[1] + nFrom, nWidth, nPos, nMax, bMs);
    }
}

namespace {

// Mid/side to left/right over lines [nFrom, nTo).
[[gnu::always_inline]] inline void MidSide(float* l, float* r, int nFrom, int nTo)
{
    const float k = 0.70710678118654752f;
    for (int i = nFrom; i < nTo; ++i) {
        const float m = l[i], s = r[i];
        l[i] = (m + s) * k;
        r[i] = (m - s) * k;
    }
}

} // namespace

int LMP3Decoder::FirstIntensityBand(int nFromBand, int nToBand) const
{
    const float* r = aXr[1];
    int nFirst = nFromBand;
    for (int sfb = nToBand - 1; sfb >= nFromBand; --sfb) {
        bool bAny = false;
        for (int i = pLong[sfb]; i < pLong[sfb + 1] && !bAny; ++i)
            bAny = r[i] != 0.0f;
        if (bAny) {
            nFirst = sfb + 1;
            break;
        }
    }
    return nFirst;
}

int LMP3Decoder::FirstIntensityShortBand(int w, int nFirstShort) const
{
    const float* r = aXr[1];
    for (int sfb = 12; sfb >= nFirstShort; --sfb) {
        const int nWidth = pShort[sfb + 1] - pShort[sfb];
        const int nFrom = 3 * pShort[sfb] + w * nWidth;
        bool bAny = false;
        for (int i = nFrom; i < nFrom + nWidth && !bAny; ++i)
            bAny = r[i] != 0.0f;
        if (bAny)
            return sfb + 1;
    }
    return nFirstShort;
}

void LMP3Decoder::StereoShort(const Granule& gRight, bool bMs)
{
    float* l = aXr[0];
    float* r = aXr[1];
    bool bShortEmpty = true;
    const int nFirstShort = gRight.bMixed ? 3 : 0;
    for (int w = 0; w < 3; ++w) {
        const int nFirst = FirstIntensityShortBand(w, nFirstShort);
        if (nFirst != nFirstShort)
            bShortEmpty = false;
        if (bMs)
            for (int sfb = nFirstShort; sfb < nFirst; ++sfb) {
                const int nWidth = pShort[sfb + 1] - pShort[sfb];
                const int nFrom = 3 * pShort[sfb] + w * nWidth;
                MidSide(l, r, nFrom, nFrom + nWidth);
            }
        StereoShortWindow(w, nFirst, bMs);
    }
    if (gRight.bMixed) {
        if (bShortEmpty) {
            const int nFirst = FirstIntensityBand(0, nLongMixed);
            if (bMs)
                MidSide(l, r, 0, pLong[nFirst]);
            StereoLong(nFirst, nLongMixed, bMs);
        } else if (bMs) {
            MidSide(l, r, 0, pLong[nLongMixed]);
        }
    }
}

void LMP3Decoder::Stereo(const Granule& gRight, int nModeExt)
{
    const bool bMs = (nModeExt & 2) != 0;
    const bool bIs = (nModeExt & 1) != 0;
    if (!bIs) {
        const int nBoth = std::max(aNonZero[0], aNonZero[1]);
        if (bMs)
            MidSide(aXr[0], aXr[1], 0, nBoth);
        aNonZero[0] = aNonZero[1] = nBoth;
        return;
    }
    if (!gRight.bShort) {
        const int nFirst = FirstIntensityBand(0, 22);
        if (bMs)
            MidSide(aXr[0], aXr[1], 0, pLong[nFirst]);
        StereoLong(nFirst, 22, bMs);
    } else {
        StereoShort(gRight, bMs);
    }
    aNonZero[0] = aNonZero[1] = 576;
}

void LMP3Decoder::Reorder(const Granule& g, int ch)
{
    float* xr = aXr[ch];
    if (g.bMixed)
        for (int i = 0; i < nReorderMixed; ++i)
            aTmp[aReorderKeep[i]] = xr[aReorderKeep[i]];
    for (int i = g.bMixed ? nReorderMixed : 0; i < nReorder; ++i)
        aTmp[aReorderDst[i]] = xr[aReorderSrc[i]];
    std::memcpy(xr, aTmp, sizeof(float) * static_cast<size_t>(nReorder));
}

void LMP3Decoder::Antialias(const Granule& g, int ch)
{
    float* xr = aXr[ch];
    int nBounds = (aNonZero[ch] + 17) / 18;
    if (g.bShort)
        nBounds = g.bMixed ? 1 : 0;
    nBounds = std::min(nBounds, 31);
    for (int sb = 1; sb <= nBounds; ++sb) {
        float* pUp = xr + 18 * sb - 1;
        float* pDown = xr + 18 * sb;
        for (int i = 0; i < 8; ++i) {
            const float bu = pUp[-i], bd = pDown[i];
            pUp[-i] = bu * MP3LT.fAliasCs[i] - bd * MP3LT.fAliasCa[i];
            pDown[i] = bd * MP3LT.fAliasCs[i] + bu * MP3LT.fAliasCa[i];
        }
    }
}

namespace {

// Lanes of floats: four fill an SSE register and every processor of the family has them; eight
// fill an AVX one. Elsewhere the compiler makes of them what the processor offers.
using Lanes4 = float __attribute__((vector_size(16)));
using Lanes8 = float __attribute__((vector_size(32)));
using LaneIndex4 = int __attribute__((vector_size(16)));
using LaneIndex8 = int __attribute__((vector_size(32)));
template <class V>
constexpr int kLanesOf = static_cast<int>(sizeof(V) / sizeof(float));

// Lanes are copied in and out by pointer: passing them by value would tie the calls to one ABI.
template <class V>
[[gnu::always_inline]] inline void LoadLanes(V& v, const float* p)
{
    std::memcpy(&v, p, sizeof(v));
}

template <class V>
[[gnu::always_inline]] inline void StoreLanes(float* p, const V& v)
{
    std::memcpy(p, &v, sizeof(v));
}

#if defined(__clang__)
#define LMP3_SHUFFLE(Index, a, b, ...) __builtin_shufflevector(a, b, __VA_ARGS__)
#else
#define LMP3_SHUFFLE(Index, a, b, ...) __builtin_shuffle(a, b, Index{__VA_ARGS__})
#endif

// Rows of lanes become columns, by the interleaves a processor does in a few steps, so that
// data can change between lanes of subbands and lanes of time slots.
[[gnu::always_inline]] inline void Transpose(Lanes4* r)
{
    const Lanes4 t0 = LMP3_SHUFFLE(LaneIndex4, r[0], r[1], 0, 4, 1, 5);
    const Lanes4 t1 = LMP3_SHUFFLE(LaneIndex4, r[0], r[1], 2, 6, 3, 7);
    const Lanes4 t2 = LMP3_SHUFFLE(LaneIndex4, r[2], r[3], 0, 4, 1, 5);
    const Lanes4 t3 = LMP3_SHUFFLE(LaneIndex4, r[2], r[3], 2, 6, 3, 7);
    r[0] = LMP3_SHUFFLE(LaneIndex4, t0, t2, 0, 1, 4, 5);
    r[1] = LMP3_SHUFFLE(LaneIndex4, t0, t2, 2, 3, 6, 7);
    r[2] = LMP3_SHUFFLE(LaneIndex4, t1, t3, 0, 1, 4, 5);
    r[3] = LMP3_SHUFFLE(LaneIndex4, t1, t3, 2, 3, 6, 7);
}

#ifdef LMP3_WIDE_PATH
[[gnu::always_inline]] inline void Transpose(Lanes8* r)
{
    Lanes8 t[8], u[8];
    for (int i = 0; i < 8; i += 2) {
        t[i] = LMP3_SHUFFLE(LaneIndex8, r[i], r[i + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        t[i + 1] = LMP3_SHUFFLE(LaneIndex8, r[i], r[i + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    for (int i = 0; i < 8; i += 4)
        for (int j = 0; j < 2; ++j) {
            u[i + 2 * j] = LMP3_SHUFFLE(LaneIndex8, t[i + j], t[i + j + 2], 0, 1, 8, 9, 4, 5, 12, 13);
            u[i + 2 * j + 1] = LMP3_SHUFFLE(LaneIndex8, t[i + j], t[i + j + 2], 2, 3, 10, 11, 6, 7, 14, 15);
        }
    for (int i = 0; i < 4; ++i) {
        r[i] = LMP3_SHUFFLE(LaneIndex8, u[i], u[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        r[i + 4] = LMP3_SHUFFLE(LaneIndex8, u[i], u[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}
#endif

// The 18 distinct outputs of the 36-point IMDCT (outputs 0..8, then 18..26): an 18-point DCT-IV
// y4, taken as a DCT-II of the inputs scaled by 1 / 2cos, whose neighbour sums give y4; the
// DCT-II splits into two 9-point ones of the sums and the scaled differences. T is a float, or
// lanes of subbands taken together.
template <class T>
[[gnu::always_inline]] inline void Imdct36(const T* x, T* y)
{
    T g[9], h[9];
    for (int n = 0; n < 9; ++n) {
        const T a = x[n] * MP3LT.fImdctInv72[n];
        const T b = x[17 - n] * MP3LT.fImdctInv72[17 - n];
        g[n] = a + b;
        h[n] = (a - b) * MP3LT.fImdctInv36[n];
    }
    // The nine-point DCTs: cos(pi (17 - 2n) k / 18) = (-1)^k cos(pi (2n + 1) k / 18), so the even
    // outputs take the sums of mirrored inputs and the odd ones their differences.
    T gs[5], gd[4], hs[5], hd[4];
    for (int n = 0; n < 4; ++n) {
        gs[n] = g[n] + g[8 - n];
        gd[n] = g[n] - g[8 - n];
        hs[n] = h[n] + h[8 - n];
        hd[n] = h[n] - h[8 - n];
    }
    gs[4] = g[4];
    hs[4] = h[4];
    T G[9], H[10];
    // Outputs k0, k0 + 2, ... from the first nTerms of pg and ph.
    const auto Outputs = [&G, &H](const T* pg, const T* ph, int nTerms, int k0) {
        for (int k = k0; k < 9; k += 2) {
            T a = pg[0] * MP3LT.fImdctDct9[0][k];
            T b = ph[0] * MP3LT.fImdctDct9[0][k];
            for (int n = 1; n < nTerms; ++n) {
                a += pg[n] * MP3LT.fImdctDct9[n][k];
                b += ph[n] * MP3LT.fImdctDct9[n][k];
            }
            G[k] = a;
            H[k] = b;
        }
    };
    Outputs(gs, hs, 5, 0);
    Outputs(gd, hd, 4, 1);
    H[9] = T{};
    // y4[2m] = G[m] + H[m] + H[m + 1], y4[2m + 1] = H[m] + H[m + 1] + G[m + 1].
    T y4[18];
    for (int m = 0; m < 9; ++m) {
        const T t = H[m] + H[m + 1];
        y4[2 * m] = G[m] + t;
        y4[2 * m + 1] = m < 8 ? t + G[m + 1] : t;
    }
    for (int j = 0; j < 9; ++j) {
        y[j] = y4[9 + j];
        y[9 + j] = -y4[8 - j];
    }
}

// The long window over the IMDCT's outputs: the first half joins the overlap into aOut, the
// second half becomes the next overlap. y holds outputs 0..8 and 18..26; 9..17 and 27..35
// mirror them.
template <class T>
[[gnu::always_inline]] inline void WindowLong(const T* y, const float* pWin, T* pOver, T* aOut)
{
    for (int i = 0; i < 9; ++i) {
        const T a = y[i], b = y[9 + i];
        aOut[i] = a * pWin[i] + pOver[i];
        aOut[17 - i] = pOver[17 - i] - a * pWin[17 - i];
        pOver[i] = b * pWin[18 + i];
        pOver[17 - i] = b * pWin[35 - i];
    }
}

} // namespace

// Subbands of one long block type, one per lane: their lines are gathered into lanes, and the
// outputs are spread back to each subband's row.
template <class V>
[[gnu::always_inline]] inline void LMP3Decoder::HybridLanes(int nType, int ch, int sb0)
{
    constexpr int L = kLanesOf<V>;
    const float* xr = aXr[ch] + 18 * sb0;
    V x[18], y[18], over[18], out[18];
    for (int n0 = 0; n0 < 16; n0 += L) {
        for (int l = 0; l < L; ++l)
            LoadLanes(x[n0 + l], xr + 18 * l + n0);
        Transpose(x + n0);
    }
    for (int n = 16; n < 18; ++n) {
        float aColumn[L];
        for (int l = 0; l < L; ++l)
            aColumn[l] = xr[18 * l + n];
        LoadLanes(x[n], aColumn);
    }
    Imdct36(x, y);
    for (int t = 0; t < 18; ++t)
        LoadLanes(over[t], &aOverlap[ch][t][sb0]);
    WindowLong(y, MP3LT.fWindow[nType], over, out);
    // Odd subbands are frequency-inverted: their odd outputs change sign.
    V vFlip{};
    for (int l = 0; l < L; ++l)
        vFlip[l] = l & 1 ? -1.0f : 1.0f;
    for (int t = 0; t < 18; ++t) {
        StoreLanes(&aOverlap[ch][t][sb0], over[t]);
        if (t & 1)
            out[t] *= vFlip;
    }
    for (int t0 = 0; t0 < 16; t0 += L) {
        Transpose(out + t0);
        for (int l = 0; l < L; ++l)
            StoreLanes(&aHybrid[sb0 + l][t0], out[t0 + l]);
    }
    for (int t = 16; t < 18; ++t)
        for (int l = 0; l < L; ++l)
            aHybrid[sb0 + l][t] = out[t][l];
}

void LMP3Decoder::HybridOne(const Granule& g, int ch, int sb, bool bActive)
{
    float aOut[18];
    float aOver[18];
    for (int t = 0; t < 18; ++t)
        aOver[t] = aOverlap[ch][t][sb];
    if (!bActive) {
        for (int t = 0; t < 18; ++t) {
            aOut[t] = aOver[t];
            aOver[t] = 0.0f;
        }
    } else {
        const float* x = aXr[ch] + 18 * sb;
        // The flag gives the two lowest subbands the normal window in start and stop blocks as
        // well.
        const int nType = g.bMixedFlag && sb < 2 ? 0 : g.nBlockType;
        if (nType == 2 && g.bShort) {
            float z[36] = {};
            for (int w = 0; w < 3; ++w) {
                float y[12] = {};
                for (int k = 0; k < 6; ++k) {
                    const float fIn = x[3 * k + w];
                    for (int i = 0; i < 12; ++i)
                        y[i] += fIn * MP3LT.fImdct12[k][i];
                }
                for (int i = 0; i < 12; ++i)
                    z[6 + 6 * w + i] += y[i];
            }
            for (int t = 0; t < 18; ++t) {
                aOut[t] = z[t] + aOver[t];
                aOver[t] = z[t + 18];
            }
        } else {
            float y[18];
            Imdct36(x, y);
            WindowLong(y, MP3LT.fWindow[nType == 2 ? 0 : nType], aOver, aOut);
        }
    }
    if (sb & 1)
        for (int t = 1; t < 18; t += 2)
            aOut[t] = -aOut[t];
    for (int t = 0; t < 18; ++t) {
        aOverlap[ch][t][sb] = aOver[t];
        aHybrid[sb][t] = aOut[t];
    }
}

template <class V>
[[gnu::always_inline]] inline void LMP3Decoder::HybridBody(const Granule& g, int ch, int nActive)
{
    constexpr int L = kLanesOf<V>;
    // Subbands above the active ones hold zeros, so a group that starts below them may take
    // them along.
    const bool bUniformLong = !g.bShort && !g.bMixedFlag;
    for (int sb0 = 0; sb0 < 32; sb0 += L) {
        if (bUniformLong && sb0 < nActive)
            HybridLanes<V>(g.nBlockType, ch, sb0);
        else
            for (int sb = sb0; sb < sb0 + L; ++sb)
                HybridOne(g, ch, sb, sb < nActive);
    }
}

#ifdef LMP3_WIDE_PATH
LMP3_WIDE_TARGET void LMP3Decoder::HybridWide(const Granule& g, int ch, int nActive)
{
    HybridBody<Lanes8>(g, ch, nActive);
}
#endif

void LMP3Decoder::Hybrid(const Granule& g, int ch, int nActive)
{
#ifdef LMP3_WIDE_PATH
    if (bWide) {
        HybridWide(g, ch, nActive);
        return;
    }
#endif
    HybridBody<Lanes4>(g, ch, nActive);
}

namespace {

// X[k] = sum x[n] cos(pi (2n + 1) k / 2N), split into halves of the same kind: the sums give
// the even outputs, the differences (scaled by 1 / 2cos) the odd ones as neighbour pairs.
template <int N, class T>
[[gnu::always_inline]] inline void FastDct(const T* x, T* X, const float* pInv)
{
    if constexpr (N == 1) {
        X[0] = x[0];
    } else {
        T g[N / 2], h[N / 2], G[N / 2], H[N / 2];
        for (int n = 0; n < N / 2; ++n) {
            const T a = x[n], b = x[N - 1 - n];
            g[n] = a + b;
            h[n] = (a - b) * pInv[n];
        }
        FastDct<N / 2>(g, G, pInv + N / 2);
        FastDct<N / 2>(h, H, pInv + N / 2);
        for (int k = 0; k < N / 2 - 1; ++k) {
            X[2 * k] = G[k];
            X[2 * k + 1] = H[k] + H[k + 1];
        }
        X[N - 2] = G[N / 2 - 1];
        X[N - 1] = H[N / 2 - 1];
    }
}

} // namespace

// The 32-point DCTs of the granule's time slots, a lane's width of slots at a time.
template <class V>
[[gnu::always_inline]] inline void LMP3Decoder::SynthesisDct()
{
    constexpr int L = kLanesOf<V>;
    for (int t0 = 0; t0 < 18; t0 += L) {
        V x[32], X[32];
        for (int n = 0; n < 32; ++n)
            LoadLanes(x[n], &aHybrid[n][t0]);
        FastDct<32>(x, X, MP3LT.fDctInv);
        for (int k0 = 0; k0 < 32; k0 += L) {
            Transpose(X + k0);
            for (int l = 0; l < L; ++l)
                StoreLanes(&aDct[t0 + l][k0], X[k0 + l]);
        }
    }
}

// The 64 values a time slot adds to the synthesis history, from its DCT outputs.
LMP3_WIDE_VECTORS void LMP3Decoder::BuildHistory(float* V, int t) const
{
    const float* X = aDct[t];
    for (int j = 0; j < 16; ++j)
        V[j] = X[16 + j];
    V[16] = 0.0f;
    for (int j = 17; j < 32; ++j)
        V[j] = -X[48 - j];
    for (int j = 0; j < 16; ++j)
        V[32 + j] = -X[16 - j];
    for (int j = 16; j < 32; ++j)
        V[32 + j] = -X[j - 16];
}

// The window over the 16 newest slots of the history, from slot nSlot on, gives 32 samples.
LMP3_WIDE_VECTORS void LMP3Decoder::Window(int ch, int nSlot, int32_t* pDst, int nStride) const
{
    const float* pD = MP3LT.fSynth;
    float fAcc[32] = {};
    for (int i = 0; i < 8; ++i) {
        const float* pA = aV[ch][(nSlot + 2 * i) & (kHistorySlots - 1)];
        const float* pB = aV[ch][(nSlot + 2 * i + 1) & (kHistorySlots - 1)] + 32;
        const float* d0 = pD + 64 * i;
        const float* d1 = d0 + 32;
        for (int j = 0; j < 32; ++j)
            fAcc[j] += d0[j] * pA[j] + d1[j] * pB[j];
    }
    for (int j = 0; j < 32; ++j) {
        // Truncated toward zero; held inside the integer range only so that a hostile stream
        // cannot make the conversion undefined.
        const float f = std::min(std::max(fAcc[j], -2147483520.0f), 2147483520.0f);
        pDst[j * nStride] = static_cast<int32_t>(f);
    }
}

template <class V>
[[gnu::always_inline]] inline void LMP3Decoder::SynthesisBody(int ch, int32_t* pOut, int nStride)
{
    SynthesisDct<V>();
    // A group of slots enters the history before any is windowed, so that the window reads
    // values written a while ago rather than waiting on stores still in flight; the history
    // holds room for the group beside the 16 slots the window spans.
    for (int t0 = 0; t0 < 18; t0 += kHistoryGroup) {
        const int nEnd = std::min(t0 + kHistoryGroup, 18);
        int nSlot = aSlot[ch];
        for (int t = t0; t < nEnd; ++t) {
            nSlot = (nSlot + kHistorySlots - 1) & (kHistorySlots - 1);
            BuildHistory(aV[ch][nSlot], t);
        }
        for (int t = t0; t < nEnd; ++t) {
            aSlot[ch] = (aSlot[ch] + kHistorySlots - 1) & (kHistorySlots - 1);
            Window(ch, aSlot[ch], pOut + static_cast<size_t>(t) * 32 * nStride, nStride);
        }
    }
}

#ifdef LMP3_WIDE_PATH
LMP3_WIDE_TARGET void LMP3Decoder::SynthesisWide(int ch, int32_t* pOut, int nStride)
{
    SynthesisBody<Lanes8>(ch, pOut, nStride);
}
#endif

void LMP3Decoder::Synthesis(int ch, int32_t* pOut, int nStride)
{
#ifdef LMP3_WIDE_PATH
    if (bWide) {
        SynthesisWide(ch, pOut, nStride);
        return;
    }
#endif
    SynthesisBody<Lanes4>(ch, pOut, nStride);
}

bool LMP3Decoder::DecodeFrame(const MP3Header& h, const uint8_t* pData, int nBytes, int32_t* pOut)
{
    const int nSide = h.SideInfoBytes();
    if (nBytes < nSide || nBytes > kMaxFrameBytes)
        return false;
    ReadSideInfo(h, pData);
    const int nMain = nBytes - nSide;
    if (nReservoir > 511) {
        std::memmove(aReservoir, aReservoir + nReservoir - 511, 511);
        nReservoir = 511;
    }
    const bool bInReservoir = nMainDataBegin <= nReservoir;
    const int nFirst = nReservoir - nMainDataBegin;
    std::memcpy(aReservoir + nReservoir, pData + nSide, static_cast<size_t>(nMain));
    nReservoir += nMain;
    std::memset(aReservoir + nReservoir, 0, 64);
    if (!bInReservoir)
        return false;

    BitReader br{aReservoir, nFirst * 8};
    const int nEndBits = nReservoir * 8;
    const int nSamples = 576;
    for (int gr = 0; gr < nGranules; ++gr) {
        for (int ch = 0; ch < nChannels; ++ch) {
            const Granule& g = aGr[gr][ch];
            const int nStart = br.nPos;
            const int nEnd = std::min(nStart + g.nPart23, nEndBits);
            if (h.nVersion == 0)
                ReadScaleFactors1(br, gr, ch);
            else
                ReadScaleFactors2(br, ch, ch == 1 && h.nMode == 1 && (h.nModeExt & 1));
            if (g.nBigValues * 2 > 576) {
                LTRACE("LMP3Source::DecodeHuffmanData (si.big_values << 1) > 576");
                std::memset(aXr[ch], 0, sizeof(aXr[ch]));
                aNonZero[ch] = 0;
            } else {
                BuildBandScales(g, ch);
                aNonZero[ch] = DecodeSpectrum(br, nEnd, g, ch);
            }
            br.nPos = std::min(nStart + g.nPart23, nEndBits);
        }
        if (nChannels == 2 && h.nMode == 1)
            Stereo(aGr[gr][1], h.nModeExt);
        for (int ch = 0; ch < nChannels; ++ch) {
            const Granule& g = aGr[gr][ch];
            if (g.bShort)
                Reorder(g, ch);
            Antialias(g, ch);
            const int nActive = g.bShort ? 32 : std::min((aNonZero[ch] + 17) / 18 + 1, 32);
            Hybrid(g, ch, nActive);
            Synthesis(ch, pOut + static_cast<size_t>(gr) * nSamples * nOutChans + ch, nOutChans);
        }
    }
    return true;
}

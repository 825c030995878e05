#include "formats/LGSMParams.h"

#include <array>

namespace {

constexpr std::array<uint8_t, LGSMParams::kCount> MakeWidths()
{
    std::array<uint8_t, LGSMParams::kCount> a{6, 6, 5, 5, 4, 4, 3, 3};
    for (int j = 0; j < LGSMParams::kSubframes; ++j) {
        uint8_t* p = a.data() + 8 + LGSMParams::kPerSubframe * j;
        p[0] = 7; // Nc
        p[1] = 2; // bc
        p[2] = 2; // Mc
        p[3] = 6; // xmaxc
        for (int i = 0; i < LGSMParams::kPulses; ++i)
            p[4 + i] = 3;
    }
    return a;
}

constexpr std::array<uint8_t, LGSMParams::kCount> kWidths = MakeWidths();

constexpr int SumOfWidths()
{
    int n = 0;
    for (uint8_t w : kWidths)
        n += w;
    return n;
}
static_assert(SumOfWidths() == 260, "a frame codes 260 bits");
static_assert(4 + SumOfWidths() == 8 * kGSMFrameBytes, "signature and parameters fill the frame");
static_assert(2 * SumOfWidths() == 8 * kGSMWavBlockBytes, "two frames fill the block");

constexpr uint32_t Mask(int nWidth) { return (1u << nWidth) - 1; }

// Most significant bit first: the frame of ".gsm" files.
void PutMsbFirst(const LGSMParams& params, uint8_t*& p, uint32_t& nAcc, int& nBits)
{
    for (int i = 0; i < LGSMParams::kCount; ++i) {
        const int w = kWidths[i];
        nAcc = (nAcc << w) | (static_cast<uint32_t>(params.aValue[i]) & Mask(w));
        nBits += w;
        if (nBits >= 8) {
            nBits -= 8;
            *p++ = static_cast<uint8_t>(nAcc >> nBits);
        }
    }
}

void GetMsbFirst(LGSMParams& params, const uint8_t*& p, uint32_t& nAcc, int& nBits)
{
    for (int i = 0; i < LGSMParams::kCount; ++i) {
        const int w = kWidths[i];
        if (nBits < w) {
            nAcc = (nAcc << 8) | *p++;
            nBits += 8;
        }
        nBits -= w;
        params.aValue[i] = static_cast<int16_t>((nAcc >> nBits) & Mask(w));
    }
}

// Least significant bit first: the block of GSM in WAV.
void PutLsbFirst(const LGSMParams& params, uint8_t*& p, uint32_t& nAcc, int& nBits)
{
    for (int i = 0; i < LGSMParams::kCount; ++i) {
        const int w = kWidths[i];
        nAcc |= (static_cast<uint32_t>(params.aValue[i]) & Mask(w)) << nBits;
        nBits += w;
        if (nBits >= 8) {
            *p++ = static_cast<uint8_t>(nAcc);
            nAcc >>= 8;
            nBits -= 8;
        }
    }
}

void GetLsbFirst(LGSMParams& params, const uint8_t*& p, uint32_t& nAcc, int& nBits)
{
    for (int i = 0; i < LGSMParams::kCount; ++i) {
        const int w = kWidths[i];
        if (nBits < w) {
            nAcc |= static_cast<uint32_t>(*p++) << nBits;
            nBits += 8;
        }
        params.aValue[i] = static_cast<int16_t>(nAcc & Mask(w));
        nAcc >>= w;
        nBits -= w;
    }
}

} // namespace

int LGSMParams::Width(int nIndex) { return nIndex >= 0 && nIndex < kCount ? kWidths[nIndex] : 0; }

void LGSMPack(const LGSMParams& params, uint8_t* pFrame)
{
    uint32_t nAcc = kGSMSignature;
    int nBits = 4;
    PutMsbFirst(params, pFrame, nAcc, nBits);
}

bool LGSMUnpack(const uint8_t* pFrame, LGSMParams& params)
{
    const bool bSigned = (pFrame[0] >> 4) == kGSMSignature;
    uint32_t nAcc = *pFrame++;
    int nBits = 4;
    GetMsbFirst(params, pFrame, nAcc, nBits);
    return bSigned;
}

void LGSMPackWavBlock(const LGSMParams& first, const LGSMParams& second, uint8_t* pBlock)
{
    uint32_t nAcc = 0;
    int nBits = 0;
    PutLsbFirst(first, pBlock, nAcc, nBits);
    PutLsbFirst(second, pBlock, nAcc, nBits);
}

void LGSMUnpackWavBlock(const uint8_t* pBlock, LGSMParams& first, LGSMParams& second)
{
    uint32_t nAcc = 0;
    int nBits = 0;
    GetLsbFirst(first, pBlock, nAcc, nBits);
    GetLsbFirst(second, pBlock, nAcc, nBits);
}

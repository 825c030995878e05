#include "formats/LGSMShared.h"

#include "formats/LGSMArith.h"

using namespace gsmarith;

namespace gsmshared {

namespace {

// Offsets, smallest codes and inverse slopes of the eight log-area ratio quantizers.
constexpr int16_t kB[kOrder] = {0, 0, 2048, -2560, 94, -1792, -341, -1144};
constexpr int16_t kMIC[kOrder] = {-32, -32, -16, -16, -8, -8, -4, -4};
constexpr int16_t kINVA[kOrder] = {13107, 13107, 13107, 13107, 19223, 17476, 31454, 29708};

// The normalized mantissas of the block maximum.
constexpr int16_t kFAC[8] = {18431, 20479, 22527, 24575, 26623, 28671, 30719, 32767};

constexpr int kStretchStarts[5] = {0, 13, 27, 40, kFrameSamples};

// A log-area ratio to a reflection coefficient: a three-piece line on its magnitude.
int16_t LarToReflection(int16_t LARp)
{
    int16_t temp = Abs(LARp);
    if (temp < 11059)
        temp = static_cast<int16_t>(temp << 1);
    else if (temp < 20070)
        temp = static_cast<int16_t>(temp + 11059);
    else
        temp = Add(static_cast<int16_t>(temp >> 2), 26112);
    return LARp < 0 ? static_cast<int16_t>(-temp) : temp;
}

} // namespace

void DecodeLARs(const int16_t* pLARc, int16_t* pLARpp)
{
    for (int i = 0; i < kOrder; ++i) {
        int16_t temp1 = Wrap(Add(pLARc[i], kMIC[i]) << 10);
        const int16_t temp2 = static_cast<int16_t>(kB[i] << 1);
        temp1 = Sub(temp1, temp2);
        temp1 = MultR(kINVA[i], temp1);
        pLARpp[i] = Add(temp1, temp1);
    }
}

int StretchStart(int nStretch) { return kStretchStarts[nStretch]; }

void InterpolatedReflection(const int16_t* pPrev, const int16_t* pCur, int nStretch, int16_t* pRp)
{
    for (int i = 0; i < kOrder; ++i) {
        const int16_t prev = pPrev[i];
        const int16_t cur = pCur[i];
        int16_t LARp;
        switch (nStretch) {
        case 0: // three quarters of the old, one of the new
            LARp = Add(Add(static_cast<int16_t>(prev >> 2), static_cast<int16_t>(cur >> 2)),
                       static_cast<int16_t>(prev >> 1));
            break;
        case 1: // halfway
            LARp = Add(static_cast<int16_t>(prev >> 1), static_cast<int16_t>(cur >> 1));
            break;
        case 2: // one quarter of the old, three of the new
            LARp = Add(Add(static_cast<int16_t>(prev >> 2), static_cast<int16_t>(cur >> 2)),
                       static_cast<int16_t>(cur >> 1));
            break;
        default:
            LARp = cur;
            break;
        }
        pRp[i] = LarToReflection(LARp);
    }
}

void XmaxcToExpMant(int16_t xmaxc, int16_t& exp, int16_t& mant)
{
    int16_t e = 0;
    if (xmaxc > 15)
        e = static_cast<int16_t>((xmaxc >> 3) - 1);
    int16_t m = static_cast<int16_t>(xmaxc - (e << 3));
    if (m == 0) {
        e = -4;
        m = 7;
    } else {
        while (m <= 7) {
            m = static_cast<int16_t>(m << 1 | 1);
            --e;
        }
        m = static_cast<int16_t>(m - 8);
    }
    exp = e;
    mant = m;
}

void InverseQuantize(const int16_t* pXMc, int16_t exp, int16_t mant, int16_t* pXMp)
{
    const int16_t temp1 = kFAC[mant];
    const int16_t temp2 = Sub(6, exp);
    // Half a step of the final shift, for rounding; nothing when there is no shift.
    const int16_t temp3 = temp2 > 0 ? static_cast<int16_t>(1 << (temp2 - 1)) : 0;
    for (int i = 0; i < 13; ++i) {
        int16_t temp = static_cast<int16_t>((pXMc[i] << 1) - 7); // back to a signed level
        temp = static_cast<int16_t>(temp << 12);
        temp = MultR(temp1, temp);
        temp = Add(temp, temp3);
        pXMp[i] = static_cast<int16_t>(temp >> temp2);
    }
}

void PlaceOnGrid(int16_t Mc, const int16_t* pXMp, int16_t* pEp)
{
    for (int k = 0; k < kSubSamples; ++k)
        pEp[k] = 0;
    for (int i = 0; i < 13; ++i)
        pEp[Mc + 3 * i] = pXMp[i];
}

} // namespace gsmshared

#include "formats/LGSMEncoder.h"

#include <algorithm>
#include <cstring>

#include "formats/LGSMArith.h"

using namespace gsmarith;
using namespace gsmshared;

namespace {

// Slopes, offsets and code ranges of the eight log-area ratio quantizers.
constexpr int16_t kA[kOrder] = {20480, 20480, 20480, 20480, 13964, 15360, 8534, 9036};
constexpr int16_t kB[kOrder] = {0, 0, 2048, -2560, 94, -1792, -341, -1144};
constexpr int16_t kMIC[kOrder] = {-32, -32, -16, -16, -8, -8, -4, -4};
constexpr int16_t kMAC[kOrder] = {31, 31, 15, 15, 7, 7, 3, 3};

// Decision levels of the long-term gain.
constexpr int16_t kDLB[3] = {6554, 16384, 26214};

// The weighting filter's impulse response, centred on its sixth tap.
constexpr int16_t kH[11] = {-134, -374, 0, 2054, 5741, 8192, 5741, 2054, 0, -374, -134};

// Inverse mantissas of the block maximum.
constexpr int16_t kNRFAC[8] = {29128, 26215, 23832, 21846, 20165, 18725, 17476, 16384};

// Autocorrelation at lags 0 to 8 of a frame scaled so that no sum can overflow; the frame is
// scaled back afterwards, losing the bits the scaling dropped, as the reference does.
void Autocorrelation(int16_t* pS, int32_t* pACF)
{
    int16_t smax = 0;
    for (int k = 0; k < kFrameSamples; ++k)
        smax = std::max(smax, Abs(pS[k]));
    const int scalauto = smax == 0 ? 0 : 4 - Norm(int32_t{smax} << 16);
    if (scalauto > 0) {
        const int16_t factor = static_cast<int16_t>(16384 >> (scalauto - 1));
        for (int k = 0; k < kFrameSamples; ++k)
            pS[k] = MultR(pS[k], factor);
    }
    // Scaled samples are at most 2^11, so 160 products and the doubling stay within 31 bits.
    for (int k = 0; k <= kOrder; ++k) {
        int32_t nSum = 0;
        for (int i = k; i < kFrameSamples; ++i)
            nSum += int32_t{pS[i]} * pS[i - k];
        pACF[k] = nSum << 1;
    }
    if (scalauto > 0)
        for (int k = 0; k < kFrameSamples; ++k)
            pS[k] = Wrap(pS[k] << scalauto);
}

// Reflection coefficients by the Schur recursion.
void Reflection(const int32_t* pL_ACF, int16_t* pR)
{
    if (pL_ACF[0] == 0) {
        std::fill(pR, pR + kOrder, 0);
        return;
    }
    const int temp0 = Norm(pL_ACF[0]);
    int16_t P[kOrder + 1];
    int16_t K[kOrder + 1];
    for (int i = 0; i <= kOrder; ++i)
        P[i] = K[i] = static_cast<int16_t>(static_cast<int32_t>(static_cast<uint32_t>(pL_ACF[i]) << temp0) >> 16);
    for (int n = 1; n <= kOrder; ++n) {
        const int16_t temp = Abs(P[1]);
        if (P[0] < temp) {
            std::fill(pR + n - 1, pR + kOrder, 0);
            return;
        }
        int16_t r = Div(temp, P[0]);
        if (P[1] > 0)
            r = static_cast<int16_t>(-r);
        pR[n - 1] = r;
        if (n == kOrder)
            return;
        P[0] = Add(P[0], MultR(P[1], r));
        for (int m = 1; m <= kOrder - n; ++m) {
            P[m] = Add(P[m + 1], MultR(K[m], r));
            K[m] = Add(K[m], MultR(P[m + 1], r));
        }
    }
}

// Reflection coefficients to log-area ratios (a three-piece line), quantized to their codes.
void QuantizeLARs(const int16_t* pR, int16_t* pLARc)
{
    for (int i = 0; i < kOrder; ++i) {
        int16_t temp = Abs(pR[i]);
        if (temp < 22118)
            temp = static_cast<int16_t>(temp >> 1);
        else if (temp < 31130)
            temp = static_cast<int16_t>(temp - 11059);
        else
            temp = static_cast<int16_t>((temp - 26112) << 2);
        const int16_t LAR = pR[i] < 0 ? static_cast<int16_t>(-temp) : temp;

        temp = Mult(kA[i], LAR);
        temp = Add(temp, kB[i]);
        temp = Add(temp, 256); // rounding
        const int16_t code = static_cast<int16_t>(std::clamp<int16_t>(static_cast<int16_t>(temp >> 9), kMIC[i], kMAC[i]));
        pLARc[i] = static_cast<int16_t>(code - kMIC[i]);
    }
}

// The lag and coded gain of the long-term predictor for one subframe of residual d, searched
// in the reconstructed residual that precedes pDp.
void LongTermParameters(const int16_t* pD, const int16_t* pDp, int16_t& Nc, int16_t& bc)
{
    int16_t dmax = 0;
    for (int k = 0; k < kSubSamples; ++k)
        dmax = std::max(dmax, Abs(pD[k]));
    const int temp = dmax == 0 ? 0 : Norm(int32_t{dmax} << 16);
    const int scal = temp > 6 ? 0 : 6 - temp;

    // Scaled to at most 9 bits, so each correlation fits 31 bits.
    int16_t wt[kSubSamples];
    for (int k = 0; k < kSubSamples; ++k)
        wt[k] = static_cast<int16_t>(pD[k] >> scal);

    int32_t L_max = 0;
    int16_t nBestLag = kMinLag;
    for (int lambda = kMinLag; lambda <= kMaxLag; ++lambda) {
        const int16_t* pPast = pDp - lambda;
        int32_t L_result = 0;
        for (int k = 0; k < kSubSamples; ++k)
            L_result += int32_t{wt[k]} * pPast[k];
        if (L_result > L_max) {
            nBestLag = static_cast<int16_t>(lambda);
            L_max = L_result;
        }
    }
    Nc = nBestLag;
    L_max = (L_max << 1) >> (6 - scal);

    int32_t L_power = 0;
    for (int k = 0; k < kSubSamples; ++k) {
        const int32_t v = pDp[k - nBestLag] >> 3;
        L_power += v * v;
    }
    L_power <<= 1;

    if (L_max <= 0) {
        bc = 0;
        return;
    }
    if (L_max >= L_power) {
        bc = 3;
        return;
    }
    const int nShift = Norm(L_power);
    const int16_t R = static_cast<int16_t>((L_max << nShift) >> 16);
    const int16_t S = static_cast<int16_t>((L_power << nShift) >> 16);
    int16_t b = 0;
    while (b < 3 && R > Mult(S, kDLB[b]))
        ++b;
    bc = b;
}

// The weighting filter over a subframe of long-term residual; pE has five zeros on each side.
void Weight(const int16_t* pE, int16_t* pX)
{
    for (int k = 0; k < kSubSamples; ++k) {
        int32_t L_result = 4096; // rounding
        for (int i = 0; i < 11; ++i)
            L_result += int32_t{pE[k + i]} * kH[i];
        pX[k] = Saturate(L_result >> 13);
    }
}

// The grid of every third sample with the most energy; ties go to the earlier grid.
int16_t SelectGrid(const int16_t* pX)
{
    int32_t EM = 0;
    int16_t Mc = 0;
    for (int m = 0; m < 4; ++m) {
        int32_t L_result = 0;
        for (int i = 0; i < 13; ++i) {
            const int32_t v = pX[m + 3 * i] >> 2;
            L_result += v * v;
        }
        if (L_result > EM) {
            Mc = static_cast<int16_t>(m);
            EM = L_result;
        }
    }
    return Mc;
}

// Adaptive PCM: the block maximum to its 6-bit code, then each pulse to 3 bits relative to it.
void QuantizePulses(const int16_t* pXM, int16_t& xmaxc, int16_t* pXMc, int16_t& exp, int16_t& mant)
{
    int16_t xmax = 0;
    for (int i = 0; i < 13; ++i)
        xmax = std::max(xmax, Abs(pXM[i]));

    int16_t e = 0;
    int16_t temp = static_cast<int16_t>(xmax >> 9);
    bool bDone = false;
    for (int i = 0; i < 6; ++i) {
        bDone = bDone || temp <= 0;
        temp = static_cast<int16_t>(temp >> 1);
        if (!bDone)
            ++e;
    }
    xmaxc = Add(static_cast<int16_t>(xmax >> (e + 5)), static_cast<int16_t>(e << 3));

    XmaxcToExpMant(xmaxc, exp, mant);
    const int nShift = 6 - exp;
    const int16_t factor = kNRFAC[mant];
    for (int i = 0; i < 13; ++i) {
        int16_t v = Wrap(pXM[i] << nShift);
        v = Mult(v, factor);
        pXMc[i] = static_cast<int16_t>((v >> 12) + 4); // levels 0 to 7
    }
}

} // namespace

void LGSMEncoder::Encode(const int16_t* pSamples, LGSMParams& params)
{
    int16_t s[kFrameSamples];
    Preprocess(pSamples, s);

    int32_t L_ACF[kOrder + 1];
    int16_t r[kOrder];
    Autocorrelation(s, L_ACF);
    Reflection(L_ACF, r);
    QuantizeLARs(r, &params.LARc(0));

    ShortTermAnalysis(&params.LARc(0), s);
    for (int j = 0; j < LGSMParams::kSubframes; ++j)
        EncodeSubframe(j, s + j * kSubSamples, params);
    std::memmove(dp0, dp0 + kFrameSamples, kHistory * sizeof(dp0[0]));
}

// Down to 13 bits, the offset removed by a first-order high-pass, then pre-emphasis.
void LGSMEncoder::Preprocess(const int16_t* pIn, int16_t* pOut)
{
    for (int k = 0; k < kFrameSamples; ++k) {
        const int16_t so = static_cast<int16_t>((pIn[k] >> 3) << 2);
        const int16_t s1 = Sub(so, z1);
        z1 = so;

        // L_z2 x 32735 / 32768 as a 16 x 15-bit product, plus s1 x 2^15.
        int32_t L_s2 = int32_t{s1} << 15;
        const int16_t msp = static_cast<int16_t>(L_z2 >> 15);
        const int16_t lsp = static_cast<int16_t>(L_z2 - (int32_t{msp} << 15));
        L_s2 += MultR(lsp, 32735);
        L_z2 = LAdd(int32_t{msp} * 32735, L_s2);

        const int32_t L_temp = LAdd(L_z2, 16384);
        const int16_t emphasis = MultR(mp, -28180);
        mp = Wrap(L_temp >> 15);
        pOut[k] = Add(mp, emphasis);
    }
}

// Turns the frame into its short-term residual, the filter following the ratios as they move
// from the previous frame's to this one's.
void LGSMEncoder::ShortTermAnalysis(const int16_t* pLARc, int16_t* pS)
{
    const int16_t* pPrev = LARpp[nLARppCur];
    nLARppCur ^= 1;
    int16_t* pCur = LARpp[nLARppCur];
    DecodeLARs(pLARc, pCur);

    int16_t rp[kOrder];
    for (int nStretch = 0; nStretch < 4; ++nStretch) {
        InterpolatedReflection(pPrev, pCur, nStretch, rp);
        for (int k = StretchStart(nStretch); k < StretchStart(nStretch + 1); ++k) {
            int16_t di = pS[k];
            int16_t sav = di;
            for (int i = 0; i < kOrder; ++i) {
                const int16_t ui = u[i];
                u[i] = sav;
                sav = Add(ui, MultR(rp[i], di));
                di = Add(di, MultR(rp[i], ui));
            }
            pS[k] = di;
        }
    }
}

// Long-term prediction and the regular-pulse excitation of one subframe, then the residual the
// decoder will rebuild from them.
void LGSMEncoder::EncodeSubframe(int j, const int16_t* pD, LGSMParams& params)
{
    int16_t* pDp = dp0 + kHistory + j * kSubSamples;
    int16_t Nc = 0;
    int16_t bc = 0;
    LongTermParameters(pD, pDp, Nc, bc);
    params.Nc(j) = Nc;
    params.bc(j) = bc;

    int16_t dpp[kSubSamples];
    int16_t e[kSubSamples + 10] = {}; // five zeros either side for the weighting filter
    for (int k = 0; k < kSubSamples; ++k) {
        dpp[k] = MultR(kQLB[bc], pDp[k - Nc]);
        e[5 + k] = Sub(pD[k], dpp[k]);
    }

    int16_t x[kSubSamples];
    Weight(e, x);
    const int16_t Mc = SelectGrid(x);
    params.Mc(j) = Mc;
    int16_t xM[13];
    for (int i = 0; i < 13; ++i)
        xM[i] = x[Mc + 3 * i];

    int16_t exp = 0;
    int16_t mant = 0;
    QuantizePulses(xM, params.xmaxc(j), params.xMc(j), exp, mant);
    int16_t xMp[13];
    InverseQuantize(params.xMc(j), exp, mant, xMp);
    int16_t ep[kSubSamples];
    PlaceOnGrid(Mc, xMp, ep);
    for (int k = 0; k < kSubSamples; ++k)
        pDp[k] = Add(ep[k], dpp[k]);
}

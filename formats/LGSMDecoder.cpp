#include "formats/LGSMDecoder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "formats/LGSMArith.h"

using namespace gsmarith;
using namespace gsmshared;

void LGSMDecoder::Decode(const LGSMParams& params, int16_t* pSamples)
{
    for (int j = 0; j < LGSMParams::kSubframes; ++j)
        LongTermSynthesis(j, params, drp0 + kHistory + j * kSubSamples);
    ShortTermSynthesis(params.aValue, drp0 + kHistory, pSamples); // the ratios come first
    Postprocess(pSamples);
    std::memmove(drp0, drp0 + kFrameSamples, kHistory * sizeof(drp0[0]));
}

// The excitation of subframe j plus the long-term prediction from the residual before it.
void LGSMDecoder::LongTermSynthesis(int j, const LGSMParams& params, int16_t* pDrp)
{
    // Only the fields that index tables are masked: other values out of range decode to noise,
    // never out of bounds.
    int16_t exp = 0;
    int16_t mant = 0;
    XmaxcToExpMant(static_cast<int16_t>(params.xmaxc(j) & 63), exp, mant);
    int16_t xMp[13];
    InverseQuantize(params.xMc(j), exp, mant, xMp);
    int16_t erp[kSubSamples];
    PlaceOnGrid(static_cast<int16_t>(params.Mc(j) & 3), xMp, erp);

    const int16_t Ncr = params.Nc(j);
    const int16_t Nr = Ncr < kMinLag || Ncr > kMaxLag ? nrp : Ncr;
    nrp = Nr;
    const int16_t brp = kQLB[params.bc(j) & 3];
    for (int k = 0; k < kSubSamples; ++k)
        pDrp[k] = Add(erp[k], MultR(brp, pDrp[k - Nr]));
}

void LGSMDecoder::ShortTermSynthesis(const int16_t* pLARc, const int16_t* pWt, int16_t* pOut)
{
    const int16_t* pPrev = LARpp[nLARppCur];
    nLARppCur ^= 1;
    int16_t* pCur = LARpp[nLARppCur];
    DecodeLARs(pLARc, pCur);

    // The filter memory in 32-bit locals, so that stores to the output need not be read back
    // and no operand needs widening.
    int32_t vv[kOrder + 1];
    std::copy(std::begin(v), std::end(v), vv);
    for (int nStretch = 0; nStretch < 4; ++nStretch) {
        int16_t rrp16[kOrder];
        InterpolatedReflection(pPrev, pCur, nStretch, rrp16);
        int32_t rrp[kOrder];
        std::copy(std::begin(rrp16), std::end(rrp16), rrp);
        for (int k = StretchStart(nStretch); k < StretchStart(nStretch + 1); ++k) {
            int32_t sri = pWt[k];
            for (int i = kOrder - 1; i >= 0; --i) {
                sri = SaturateWide(sri - MultRWideNotMin(rrp[i], vv[i]));
                vv[i + 1] = SaturateWide(vv[i] + MultRWideNotMin(rrp[i], sri));
            }
            vv[0] = sri;
            pOut[k] = static_cast<int16_t>(sri);
        }
    }
    for (int i = 0; i <= kOrder; ++i)
        v[i] = static_cast<int16_t>(vv[i]);
}

// De-emphasis, back to 16 bits, and the low three bits cleared.
void LGSMDecoder::Postprocess(int16_t* pS)
{
    int32_t m = msr;
    for (int k = 0; k < kFrameSamples; ++k) {
        m = SaturateWide(pS[k] + MultRWideNotMin(28180, m));
        pS[k] = static_cast<int16_t>(SaturateWide(m + m) & ~7);
    }
    msr = static_cast<int16_t>(m);
}

#include "formats/LGSMDecoder.h"

#include <algorithm>
#include <cstring>

#include "formats/LGSMArith.h"

using namespace gsmarith;
using namespace gsmshared;

void LGSMDecoder::Decode(const LGSMParams& paramsIn, int16_t* pSamples)
{
    LGSMParams params;
    for (int i = 0; i < LGSMParams::kCount; ++i)
        params.aValue[i] = static_cast<int16_t>(paramsIn.aValue[i] & ((1 << LGSMParams::Width(i)) - 1));

    for (int j = 0; j < LGSMParams::kSubframes; ++j)
        LongTermSynthesis(j, params, drp0 + kHistory + j * kSubSamples);
    ShortTermSynthesis(&params.LARc(0), drp0 + kHistory, pSamples);
    Postprocess(pSamples);
    std::memmove(drp0, drp0 + kFrameSamples, kHistory * sizeof(drp0[0]));
}

// The excitation of subframe j plus the long-term prediction from the residual before it.
void LGSMDecoder::LongTermSynthesis(int j, const LGSMParams& params, int16_t* pDrp)
{
    int16_t exp = 0;
    int16_t mant = 0;
    XmaxcToExpMant(params.xmaxc(j), exp, mant);
    int16_t xMp[13];
    InverseQuantize(params.xMc(j), exp, mant, xMp);
    int16_t erp[kSubSamples];
    PlaceOnGrid(params.Mc(j), xMp, erp);

    const int16_t Ncr = params.Nc(j);
    const int16_t Nr = Ncr < kMinLag || Ncr > kMaxLag ? nrp : Ncr;
    nrp = Nr;
    const int16_t brp = kQLB[params.bc(j)];
    for (int k = 0; k < kSubSamples; ++k)
        pDrp[k] = Add(erp[k], MultR(brp, pDrp[k - Nr]));
}

void LGSMDecoder::ShortTermSynthesis(const int16_t* pLARc, const int16_t* pWt, int16_t* pOut)
{
    const int16_t* pPrev = LARpp[nLARppCur];
    nLARppCur ^= 1;
    int16_t* pCur = LARpp[nLARppCur];
    DecodeLARs(pLARc, pCur);

    int16_t rrp[kOrder];
    for (int nStretch = 0; nStretch < 4; ++nStretch) {
        InterpolatedReflection(pPrev, pCur, nStretch, rrp);
        for (int k = StretchStart(nStretch); k < StretchStart(nStretch + 1); ++k) {
            int16_t sri = pWt[k];
            for (int i = kOrder - 1; i >= 0; --i) {
                sri = Sub(sri, MultR(rrp[i], v[i]));
                v[i + 1] = Add(v[i], MultR(rrp[i], sri));
            }
            pOut[k] = v[0] = sri;
        }
    }
}

// De-emphasis, back to 16 bits, and the low three bits cleared.
void LGSMDecoder::Postprocess(int16_t* pS)
{
    for (int k = 0; k < kFrameSamples; ++k) {
        msr = Add(pS[k], MultR(msr, 28180));
        pS[k] = static_cast<int16_t>(Add(msr, msr) & ~7);
    }
}

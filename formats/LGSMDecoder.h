// The GSM full-rate decoder: 76 parameters in, 160 samples out, with the memory that carries
// from frame to frame. Nothing is allocated per frame.
#pragma once

#include <cstdint>

#include "formats/LGSMParams.h"
#include "formats/LGSMShared.h"

class LGSMDecoder
{
public:
    void Reset() { *this = LGSMDecoder(); }

    // Samples come out 16-bit with the low three bits clear (13 significant bits). Any parameter
    // values are taken; those outside their widths are masked.
    void Decode(const LGSMParams& params, int16_t* pSamples);

private:
    static constexpr int kHistory = gsmshared::kMaxLag;

    void LongTermSynthesis(int j, const LGSMParams& params, int16_t* pDrp);
    void ShortTermSynthesis(const int16_t* pLARc, const int16_t* pWt, int16_t* pOut);
    void Postprocess(int16_t* pS);

    // The reconstructed short-term residual: 120 past samples, then this frame's 160.
    int16_t drp0[kHistory + gsmshared::kFrameSamples] = {};
    int16_t nrp = gsmshared::kMinLag; // the last valid lag, used in place of an invalid one
    // Short-term synthesis filter memory and the previous frame's log-area ratios.
    int16_t v[gsmshared::kOrder + 1] = {};
    int16_t LARpp[2][gsmshared::kOrder] = {};
    int nLARppCur = 0;
    int16_t msr = 0; // de-emphasis memory
};

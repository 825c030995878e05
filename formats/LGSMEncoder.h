// The GSM full-rate encoder: 160 samples in, 76 parameters out, with the memory that carries
// from frame to frame. Nothing is allocated per frame.
#pragma once

#include <cstdint>

#include "formats/LGSMParams.h"
#include "formats/LGSMShared.h"

class LGSMEncoder
{
public:
    void Reset() { *this = LGSMEncoder(); }

    // Samples are 16-bit; only their top 13 bits count.
    void Encode(const int16_t* pSamples, LGSMParams& params);

private:
    static constexpr int kHistory = gsmshared::kMaxLag;

    void Preprocess(const int16_t* pIn, int16_t* pOut);
    void ShortTermAnalysis(const int16_t* pLARc, int16_t* pS);
    void EncodeSubframe(int j, const int16_t* pD, LGSMParams& params);

    // Preprocessing: offset compensation and pre-emphasis memory.
    int16_t z1 = 0;
    int32_t L_z2 = 0;
    int16_t mp = 0;
    // Short-term analysis filter memory and the previous frame's log-area ratios.
    int16_t u[gsmshared::kOrder] = {};
    int16_t LARpp[2][gsmshared::kOrder] = {};
    int nLARppCur = 0;
    // The reconstructed short-term residual: 120 past samples, then this frame's 160.
    int16_t dp0[kHistory + gsmshared::kFrameSamples] = {};
};

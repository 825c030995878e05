#include "dsp/effects/LSRCLowCut.h"

#include <algorithm>
#include <cmath>

#include "core/LFixed.h"

LSRCLowCut::LSRCLowCut(LSoundSourceBase* pIn, int32_t nCutoffHz)
    : LSRCEffectBase(pIn), vAcc(nChans, 0), nCoef(Coefficient(nCutoffHz, nSampleRate))
{
}

int32_t LSRCLowCut::Coefficient(int32_t nCutoffHz, int32_t nRate)
{
    if (nRate < 1)
        return 0;
    return static_cast<int32_t>(std::lround((1.0 - std::exp(-6.283185307 * nCutoffHz / nRate)) * 256.0));
}

void LSRCLowCut::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    const int32_t a = nCoef;
    const size_t nStep = nChans;
    if (nStep == 2) {
        // Both channels in one walk over the block: each keeps its own accumulator, as below.
        int32_t accL = vAcc[0], accR = vAcc[1];
        for (int32_t i = 0; i < 2 * nFrames; i += 2) {
            const int32_t xL = LWrapAdd(pBuffer[i], -(accL >> 8));
            const int32_t xR = LWrapAdd(pBuffer[i + 1], -(accR >> 8));
            accL = LWrapAdd(accL, LWrapMul(xL, a));
            accR = LWrapAdd(accR, LWrapMul(xR, a));
            pBuffer[i] = xL;
            pBuffer[i + 1] = xR;
        }
        vAcc[0] = accL;
        vAcc[1] = accR;
        return;
    }
    for (size_t c = 0; c < nStep; ++c) {
        int32_t acc = vAcc[c];
        int32_t* p = pBuffer + c;
        for (int32_t i = 0; i < nFrames; ++i, p += nStep) {
            const int32_t x = LWrapAdd(*p, -(acc >> 8));
            acc = LWrapAdd(acc, LWrapMul(x, a));
            *p = x;
        }
        vAcc[c] = acc;
    }
}

void LSRCLowCut::SetPosition(int32_t sPosition)
{
    std::fill(vAcc.begin(), vAcc.end(), 0);
    pInput->SetPosition(sPosition);
}

#include "dsp/LSRCHighPassIIR2.h"

#include <algorithm>
#include <cmath>

#include "core/LTrace.h"

LSRCHighPassIIR2::LSRCHighPassIIR2(LSoundSourceBase* pIn, int32_t nCutoffHz)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      vMemory(pIn->GetChannels())
{
    if (pIn->IsError()) {
        LTRACE("LSRCHighPassIIR2::LSRCHighPassIIR2 input error");
        SetError();
    }
    // Bilinear-transform Butterworth section (Q = 1/sqrt 2).
    const double fCutoff = std::clamp<double>(nCutoffHz, 1.0, 0.49 * nSampleRate);
    const double w = 2.0 * M_PI * fCutoff / nSampleRate;
    const double fAlpha = std::sin(w) / std::sqrt(2.0);
    const double fCos = std::cos(w);
    const double a0 = 1.0 + fAlpha;
    fB0 = (1.0 + fCos) / 2.0 / a0;
    fB1 = -(1.0 + fCos) / a0;
    fB2 = fB0;
    fA1 = -2.0 * fCos / a0;
    fA2 = (1.0 - fAlpha) / a0;
}

void LSRCHighPassIIR2::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        return;
    }
    pInput->Read(pBuffer, nFrames);
    for (uint8_t c = 0; c < nChans; ++c) {
        Memory m = vMemory[c];
        int32_t* p = pBuffer + c;
        for (int32_t i = 0; i < nFrames; ++i, p += nChans) {
            const double x = *p;
            const double y = fB0 * x + fB1 * m.fX1 + fB2 * m.fX2 - fA1 * m.fY1 - fA2 * m.fY2;
            m.fX2 = m.fX1;
            m.fX1 = x;
            m.fY2 = m.fY1;
            m.fY1 = y;
            *p = static_cast<int32_t>(std::lrint(std::clamp(y, -2147483648.0, 2147483647.0)));
        }
        vMemory[c] = m;
    }
}

void LSRCHighPassIIR2::SetPosition(int32_t sPosition)
{
    pInput->SetPosition(sPosition);
    std::fill(vMemory.begin(), vMemory.end(), Memory{});
}

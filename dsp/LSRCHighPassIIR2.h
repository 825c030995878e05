// Second-order (12 dB per octave) Butterworth high-pass over a source, one filter per channel.
#pragma once

#include <cstdint>
#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCHighPassIIR2 : public LSoundSourceBase
{
public:
    // A cut-off outside 1 Hz .. just below the Nyquist frequency is moved inside it.
    LSRCHighPassIIR2(LSoundSourceBase* pInput, int32_t nCutoffHz);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return pInput->GetLength(); }
    // Passes the seek on and forgets the filter's memory.
    void SetPosition(int32_t sPosition) override;

private:
    struct Memory
    {
        double fX1 = 0, fX2 = 0, fY1 = 0, fY2 = 0;
    };

    LSoundSourcePtr pInput;
    double fB0 = 1, fB1 = 0, fB2 = 0, fA1 = 0, fA2 = 0;
    std::vector<Memory> vMemory;
};

// A constant gain (8.24) over an input: what a document's cut gain does to the audio it reads, as
// a stage, so that amplify and normalize in a chain of stages give the samples the document gives.
#pragma once

#include "core/LSoundSourceBase.h"

class LSRCGain : public LSoundSourceBase
{
public:
    LSRCGain(LSoundSourceBase* pInput, int32_t nGain);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return pInput->GetLength(); }
    // Holds no state, so it seeks wherever its input can.
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // A gain scaled by a percentage the way a cut's gain is, 100 % and below 0 % leaving it as it is.
    static int32_t Scaled(int32_t nGain, int32_t nPercent);

private:
    LSoundSourcePtr pInput;
    int32_t nGain;
};

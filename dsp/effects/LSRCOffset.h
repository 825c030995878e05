// Subtracts a constant from every sample of each channel: the second pass of DC offset correction
// as a stage (the offsets come from LDCOffsetCorrection::Measure).
#pragma once

#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCOffset : public LSoundSourceBase
{
public:
    LSRCOffset(LSoundSourceBase* pInput, std::vector<int32_t> vOffset);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return pInput->GetLength(); }
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

private:
    LSoundSourcePtr pInput;
    std::vector<int32_t> vNegOffset; // one per channel, negated
};

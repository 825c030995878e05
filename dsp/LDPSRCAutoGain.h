// The second pass of the automatic gain control: reads the first pass's copy back and applies
// the planned gain, gliding linearly from each block's gain to the next one's.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"
#include "dsp/LDPAutoGain.h"

class LDPSRCAutoGain : public LSoundSourceBase
{
public:
    // Latches the error when the copy cannot be opened.
    explicit LDPSRCAutoGain(std::shared_ptr<const LDPAutoGain::Plan> pPlan);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return pPlan->nLength; }
    void SetPosition(int32_t sNewPosition) override { sPosition = sNewPosition; }

private:
    int32_t GainAt(int64_t sFrame) const;

    std::shared_ptr<const LDPAutoGain::Plan> pPlan;
    LFile file;
    int32_t sPosition = 0;
};

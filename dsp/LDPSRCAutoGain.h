// The second pass of the automatic gain control: reads the first pass's copy back and applies
// the planned gain, gliding linearly from block to block.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "dsp/LDPAutoGain.h"

class LDPSRCAutoGain : public LSoundSourceBase
{
public:
    LDPSRCAutoGain(std::shared_ptr<const LDPAutoGain::Plan> pPlan);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override;
    void SetPosition(int32_t sNewPosition) override;

private:
    std::shared_ptr<const LDPAutoGain::Plan> pPlan;
    std::vector<int32_t> vRaw;
    int32_t sPosition = 0;
};

// A look-ahead peak limiter: keeps a source whose samples may exceed a limit inside it,
// changing gain smoothly block by block.
#pragma once

#include <memory>
#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCPeakLimit : public LSoundSourceBase
{
public:
    LSRCPeakLimit(LSoundSourceBase* pInput, int32_t nLimit);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    int32_t GetLength() override { return pInput->GetLength(); }
    void SetPosition(int32_t sPosition) override;

private:
    struct Impl;
    LSoundSourcePtr pInput;
    std::shared_ptr<Impl> pImpl;
};

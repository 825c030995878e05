// The first frames of another source, as a source of its own: the part of a file that is
// really there when its header claims more.
#pragma once

#include "core/LSoundSourceBase.h"

class LSRCLimitLength : public LSoundSourceBase
{
public:
    LSRCLimitLength(LSoundSourceBase* pInput, int32_t sLength);

    // Frames past the limit read as zeros, whatever the input holds there.
    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

private:
    LSoundSourcePtr pInput;
    int32_t sLength;
};

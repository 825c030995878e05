// Channel conversion for the pump: 2 to 1 keeps the left channel only (the right is dropped,
// not mixed), 1 to 2 writes each sample to both channels.
#pragma once

#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCConvertChannels : public LSoundSourceBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    LSRCConvertChannels(LSoundSourceBase* pInput, uint8_t nTargetChans);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return pInput->GetLength(); }
    int32_t GetLengthInFile() override { return pInput->GetLengthInFile(); }
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // True for the pairs a converter exists for.
    static bool CanConvert(uint8_t nFrom, uint8_t nTo) { return (nFrom == 2 && nTo == 1) || (nFrom == 1 && nTo == 2); }

private:
    LSoundSourcePtr pInput;
    std::vector<int32_t> vBuffer;
};

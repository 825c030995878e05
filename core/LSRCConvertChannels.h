// Channel conversion for the pump: 2 to 1 mixes the two channels ((L + R) / 2, halves rounded
// up as the writers round), so nothing of either side is lost; 1 to 2 writes each sample to both
// channels.
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
    // One mono sample from a left and a right one. Taken in 64 bits: samples past full scale
    // (headroom for gain) never overflow the sum.
    static constexpr int32_t Mix(int32_t nLeft, int32_t nRight)
    {
        return static_cast<int32_t>((static_cast<int64_t>(nLeft) + nRight + 1) >> 1);
    }

private:
    LSoundSourcePtr pInput;
    std::vector<int32_t> vBuffer;
};

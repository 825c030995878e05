// The reader of 8-bit PCM sample data.
#pragma once

#include "formats/LSRCPCMFileBase.h"

class LSRCPCMFile8 : public LSRCPCMFileBase
{
public:
    LSRCPCMFile8(LFile&& file, int64_t nDataBytes, int32_t nSampleRate, uint8_t nChans)
        : LSRCPCMFileBase(std::move(file), nDataBytes, nSampleRate, nChans, 1)
    {
    }

protected:
    void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const override;
};

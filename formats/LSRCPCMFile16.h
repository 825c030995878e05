// The reader of 16-bit PCM sample data.
#pragma once

#include "formats/LSRCPCMFileBase.h"

class LSRCPCMFile16 : public LSRCPCMFileBase
{
public:
    LSRCPCMFile16(LFile&& file, int64_t nDataBytes, int32_t nSampleRate, uint8_t nChans)
        : LSRCPCMFileBase(std::move(file), nDataBytes, nSampleRate, nChans, 2)
    {
    }

protected:
    void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const override;
};

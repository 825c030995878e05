// The writer of 8-bit PCM WAV files.
#pragma once

#include "formats/LSNKPCMFileBase.h"

class LSNKPCMFile8 : public LSNKPCMFileBase
{
public:
    LSNKPCMFile8(const std::string& szPath, int32_t nSampleRate, int32_t sStartFrame, uint8_t nChans)
        : LSNKPCMFileBase(szPath, nSampleRate, sStartFrame, nChans, 1)
    {
    }

protected:
    void Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const override;
};

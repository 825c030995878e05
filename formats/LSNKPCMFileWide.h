// The writer of WAV files of samples wider than 16 bits: 24- or 32-bit PCM and 32- or 64-bit
// IEEE float, in the layout of the format record given (plain or extensible).
#pragma once

#include "formats/LRawWideSamples.h"
#include "formats/LSNKPCMFileBase.h"

class LSNKPCMFileWide : public LSNKPCMFileBase
{
public:
    // The sample layout of a record, when this writer takes it.
    static bool LayoutOf(const LWaveFormatRecord& record, LWideSample& kind);

    // The record must be one LayoutOf takes.
    LSNKPCMFileWide(const std::string& szPath, const LWaveFormatRecord& record);

protected:
    void Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const override;

private:
    LWideFromSamplesFn pfnConvert;
};

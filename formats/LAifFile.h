// AIFF files (".aif", ".aiff") and AIFF-C files (".aifc") of uncompressed or G.711 samples:
// a FORM chunk with COMM and SSND, then the samples handed to a headerless reader.
#pragma once

#include <string>

#include "core/LSoundSourceBase.h"
#include "formats/LRawFileDataSoundSinkBase.h"

class LAifFile
{
public:
    // What a file holds, for showing to people.
    struct Info
    {
        bool bAifc = false;
        std::string szCompression; // "NONE", "sowt", "ulaw", "alaw"
        int32_t nSampleBits = 0;
    };

    // Never null: on failure a latched silent source, the reason in *pszError.
    static LSoundSourcePtr OpenSource(const std::string& szFileName, std::string* pszError = nullptr,
                                      Info* pInfo = nullptr);

    // The 80-bit extended form of a whole number of hertz, exact, and back (rounded; 0 when not
    // a rate from 1 Hz to 1 MHz).
    static void RateToExtended(uint32_t nRate, uint8_t (&aExt)[10]);
    static uint32_t ExtendedToRate(const uint8_t* pExt);
};

// Writes FORM, COMM and SSND for nDataBytes of samples of nSampleBits bits; 54 bytes.
bool WriteHeaderAIFF(LFile& file, uint8_t nChans, int32_t nSampleRate, int32_t nSampleBits, int64_t nDataBytes);

// Writes an AIFF file of 16-bit (RawPcm16BE), 24- or 32-bit (RawPcm24BE, RawPcm32BE) or 8-bit
// signed (RawPcm8Signed) samples.
class LSNKAifFile : public LRawFileDataSoundSinkBase
{
public:
    static constexpr int64_t kHeaderBytes = 54;

    LSNKAifFile(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int32_t nEncoding);
    ~LSNKAifFile() override;

protected:
    bool WriteHeader(LFile& file, int64_t nDataBytes) override;

private:
    int32_t nSampleBits;
};

// Sun/NeXT AU (".au", ".snd") files: a big-endian header, then headerless samples.
#pragma once

#include <string>

#include "core/LSoundSourceBase.h"
#include "formats/LRawFileDataSoundSinkBase.h"

class LAuFile
{
public:
    static constexpr int64_t kHeaderBytes = 24;
    // The encodings read and written: G.711 µ-law, 8-, 16-, 24- and 32-bit linear, 32- and 64-bit
    // float, G.711 A-law.
    static constexpr uint32_t kULaw = 1, kLinear8 = 2, kLinear16 = 3, kLinear24 = 4, kLinear32 = 5, kFloat = 6,
                              kDouble = 7, kALaw = 27;

    // Samples start at the header's data offset, so an annotation after the 24 bytes is skipped;
    // an offset below 24 or past the end of the file is taken as 24. Never null: on failure a
    // latched silent source, the reason in *pszError. *pnEncoding receives the header's encoding.
    static LSoundSourcePtr OpenSource(const std::string& szFileName, std::string* pszError = nullptr,
                                      uint32_t* pnEncoding = nullptr);
};

// Writes an AU file with a 24-byte header: 16-, 24- or 32-bit linear, float, µ-law or A-law
// (RawPcm16BE, RawPcm24BE, RawPcm32BE, RawFloat32BE, RawULaw, RawALaw). The data size stays "unknown" until the sink closes.
class LSNKAuFile : public LRawFileDataSoundSinkBase
{
public:
    LSNKAuFile(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int32_t nEncoding);
    ~LSNKAuFile() override;

protected:
    bool WriteHeader(LFile& file, int64_t nDataBytes) override;

private:
    uint32_t nAuEncoding;
};

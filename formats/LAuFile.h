// Sun/NeXT AU (".au", ".snd") files: a big-endian header, then headerless samples.
#pragma once

#include <string>

#include "core/LSoundSourceBase.h"
#include "formats/LRawFileDataSoundSinkBase.h"

class LAuFile
{
public:
    static constexpr int64_t kHeaderBytes = 24;
    // The encodings read and written: G.711 µ-law, 8-bit linear, 16-bit linear, G.711 A-law.
    static constexpr uint32_t kULaw = 1, kLinear8 = 2, kLinear16 = 3, kALaw = 27;

    // Samples are taken from byte 24 on whatever the header's data offset says, so a longer
    // header (an annotation) is read as the first samples. Never null: on failure a latched
    // silent source, the reason in *pszError. *pnEncoding receives the header's encoding.
    static LSoundSourcePtr OpenSource(const std::string& szFileName, std::string* pszError = nullptr,
                                      uint32_t* pnEncoding = nullptr);
};

// Writes an AU file with a 24-byte header: 16-bit linear, µ-law or A-law (RawPcm16BE, RawULaw,
// RawALaw). The data size stays "unknown" until the sink closes.
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

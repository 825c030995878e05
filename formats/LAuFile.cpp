#include "formats/LAuFile.h"

#include <cstring>

#include "core/LTrace.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LVoxRawSettings.h"

namespace {

constexpr uint32_t kUnknownSize = 0xFFFFFFFF;

uint32_t GetBE32(const uint8_t* p)
{
    return (static_cast<uint32_t>(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3];
}

void PutBE32(uint8_t* p, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(n >> (24 - 8 * i));
}

LSoundSourcePtr Fail(std::string* pszError, const std::string& szReason)
{
    if (pszError)
        *pszError = szReason;
    return LSoundSourcePtr(new LSRCSilence);
}

int32_t RawEncodingOf(uint32_t nAuEncoding)
{
    switch (nAuEncoding) {
    case LAuFile::kULaw: return RawULaw;
    case LAuFile::kLinear8: return RawPcm8Signed;
    case LAuFile::kLinear16: return RawPcm16BE;
    case LAuFile::kALaw: return RawALaw;
    case LAuFile::kLinear24: return RawPcm24BE;
    case LAuFile::kLinear32: return RawPcm32BE;
    case LAuFile::kFloat: return RawFloat32BE;
    case LAuFile::kDouble: return RawFloat64BE;
    default: return -1;
    }
}

uint32_t AuEncodingOf(int32_t nRawEncoding)
{
    switch (nRawEncoding) {
    case RawULaw: return LAuFile::kULaw;
    case RawALaw: return LAuFile::kALaw;
    case RawPcm24BE: return LAuFile::kLinear24;
    case RawPcm32BE: return LAuFile::kLinear32;
    case RawFloat32BE: return LAuFile::kFloat;
    case RawFloat64BE: return LAuFile::kDouble;
    default: return LAuFile::kLinear16;
    }
}

} // namespace

LSoundSourcePtr LAuFile::OpenSource(const std::string& szFileName, std::string* pszError, uint32_t* pnEncoding)
{
    LFile file;
    if (!file.Open(szFileName, LFile::ReadExisting)) {
        LTRACE("LAuFile::OpenSource unable to open the file");
        return Fail(pszError, "cannot open the file");
    }
    uint8_t header[kHeaderBytes];
    if (file.Read(header, kHeaderBytes) != kHeaderBytes) {
        LTRACE("LAuFile::OpenSource unable to read the first 24 bytes so failed");
        return Fail(pszError, "not an AU file: shorter than its 24-byte header");
    }
    if (std::memcmp(header, ".snd", 4) != 0) {
        LTRACE("LAuFile::OpenSource auHeader.magic_Hdr != AUMAGICHEADER");
        return Fail(pszError, "not an AU file: no .snd signature");
    }
    const uint32_t nDataSize = GetBE32(header + 8);
    const uint32_t nEncoding = GetBE32(header + 12);
    const uint32_t nRate = GetBE32(header + 16);
    const uint32_t nChans = GetBE32(header + 20);
    if (pnEncoding)
        *pnEncoding = nEncoding;
    const int32_t nRaw = RawEncodingOf(nEncoding);
    if (nRaw < 0) {
        LTRACE("LAuFile::OpenSource unsupported au encoding format = %u", nEncoding);
        return Fail(pszError, "AU encoding " + std::to_string(nEncoding) + " is not supported");
    }
    if (nRate < 1 || nRate > 196000) {
        LTRACE("LAuFile::OpenSource bad sample rate %u", nRate);
        return Fail(pszError, "the AU file's sample rate " + std::to_string(nRate) + " Hz is out of range");
    }
    if (nChans < 1 || nChans > 255) {
        LTRACE("LAuFile::OpenSource bad channel count %u", nChans);
        return Fail(pszError, "the AU file's channel count " + std::to_string(nChans) + " is out of range");
    }
    // Other programs put an annotation between the header and the samples.
    const uint32_t nOffset = GetBE32(header + 4);
    if (nOffset > kHeaderBytes && static_cast<int64_t>(nOffset) <= file.Size() && file.Seek(nOffset) != nOffset) {
        LTRACE("LAuFile::OpenSource cannot seek to the data offset %u", nOffset);
        return Fail(pszError, "cannot read the AU file's samples");
    }
    const int64_t nDataBytes = nDataSize == kUnknownSize ? LRawFileDataSoundSourceBase::kUnspecifiedLength : nDataSize;
    return LMakeRawSource(nRaw, std::move(file), static_cast<int32_t>(nRate), nDataBytes, static_cast<uint8_t>(nChans));
}

LSNKAuFile::LSNKAuFile(const std::string& szPath, int32_t nRate, uint8_t nChannels, int32_t nEncoding)
    : LRawFileDataSoundSinkBase(szPath, nRate, nChannels, nEncoding, LAuFile::kHeaderBytes),
      nAuEncoding(AuEncodingOf(nEncoding))
{
    StartHeader();
}

LSNKAuFile::~LSNKAuFile()
{
    Complete();
}

bool LSNKAuFile::WriteHeader(LFile& file, int64_t nDataBytes)
{
    uint8_t header[LAuFile::kHeaderBytes];
    std::memcpy(header, ".snd", 4);
    PutBE32(header + 4, LAuFile::kHeaderBytes);
    PutBE32(header + 8, nDataBytes < 0 || nDataBytes >= kUnknownSize ? kUnknownSize : static_cast<uint32_t>(nDataBytes));
    PutBE32(header + 12, nAuEncoding);
    PutBE32(header + 16, static_cast<uint32_t>(GetSampleRate()));
    PutBE32(header + 20, GetChannels());
    return file.Write(header, LAuFile::kHeaderBytes) == LAuFile::kHeaderBytes;
}

#include "formats/LWaveFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "formats/LSNKACMFile.h"
#include "formats/LSNKPCMFile16.h"
#include "formats/LSNKPCMFile8.h"
#include "formats/LSRCACMWave.h"
#include "formats/LSRCPCMFile16.h"
#include "formats/LSRCPCMFile8.h"

namespace {

constexpr int32_t kMaxChannels = 255;
constexpr uint32_t kMaxSampleRate = 196000;

uint32_t Get32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

bool Fail(std::string* pszReason, const char* szTrace, const std::string& szUser)
{
    LTRACE("LWaveFile::OpenSource %s", szTrace);
    if (pszReason)
        *pszReason = szUser;
    return false;
}

// Steps over top-level chunks until the RIFF WAVE chunk; the pointer then stands inside it.
bool FindRiffWave(LFile& file, std::string* pszReason)
{
    while (true) {
        uint8_t head[12];
        if (file.Read(head, 12) < 12)
            return Fail(pszReason, "No RIFF WAVE chunk found", "not a WAV file: no RIFF WAVE chunk found");
        if (!std::memcmp(head, "RIFF", 4) && !std::memcmp(head + 8, "WAVE", 4))
            return true;
        const uint32_t nSize = (Get32(head + 4) + 1) & ~1u;
        if (nSize <= 4)
            return Fail(pszReason, "chunk too short!", "not a WAV file: damaged chunk ahead of the RIFF WAVE chunk");
        if (file.Seek(nSize - 4, LFile::FromCurrent) < 0)
            return Fail(pszReason, "No RIFF WAVE chunk found", "not a WAV file: no RIFF WAVE chunk found");
    }
}

// Steps over sub-chunks until the one named szId; the pointer then stands at its contents.
bool FindSubchunk(LFile& file, const char* szId, uint32_t& nSize, std::string* pszReason)
{
    while (true) {
        uint8_t head[8];
        if (file.Read(head, 8) < 8) {
            const bool bFmt = szId[0] == 'f';
            return Fail(pszReason, bFmt ? "'fmt ' subchunk not found!" : "'data' subchunk not found!",
                        std::string("damaged WAV file: no '") + szId + "' chunk");
        }
        nSize = Get32(head + 4);
        if (!std::memcmp(head, szId, 4))
            return true;
        const uint32_t nSkip = ((nSize + 1) / 2) * 2;
        if (static_cast<int32_t>(nSkip) < 0)
            return Fail(pszReason, "subchunk too short (< 0)!", "damaged WAV file: a chunk size is out of range");
        if (file.Seek(nSkip, LFile::FromCurrent) < 0)
            return Fail(pszReason, "subchunk seek failed", "damaged WAV file: a chunk size is out of range");
    }
}

bool ReadFormat(LFile& file, uint32_t nSize, LWaveFormatRecord& record, std::string* pszReason)
{
    if (nSize < 16 || nSize > LWaveFormatRecord::kMaxBytes)
        return Fail(pszReason, "fmt too short or too long!",
                    "damaged WAV file: format chunk of " + std::to_string(nSize) + " bytes");
    uint8_t bytes[LWaveFormatRecord::kMaxBytes];
    if (file.Read(bytes, nSize) != nSize || !record.Decode(bytes, nSize))
        return Fail(pszReason, "fmt error!", "damaged WAV file: format chunk cut short");
    return true;
}

bool CheckFormat(const LWaveFormatRecord& record, std::string* pszReason)
{
    if (record.nChannels >= 1 && record.nChannels <= kMaxChannels && record.nSamplesPerSec >= 1 &&
        record.nSamplesPerSec <= kMaxSampleRate)
        return true;
    return Fail(pszReason, "nChannels or nSamplesPerSec is invalid",
                "unsupported WAV file: " + std::to_string(record.nChannels) + " channels at " +
                    std::to_string(record.nSamplesPerSec) + " Hz");
}

// Every record the PCM readers cannot take goes to the codec-layer reader.
LSoundSourcePtr OpenCompressedReader(LFile&& file, const LWaveFormatRecord& record, uint32_t nDataSize,
                                     std::string* pszReason)
{
    LSoundSourcePtr pSource(new LSRCACMWave(std::move(file), record, nDataSize));
    if (pSource->IsError())
        Fail(pszReason, "no codec for this format", LWaveFile::DescribeEncoding(record) + " WAV files are not supported");
    return pSource;
}

LSoundSourcePtr ChooseReader(LFile&& file, const LWaveFormatRecord& record, uint32_t nDataSize,
                             std::string* pszReason)
{
    const int32_t nRate = static_cast<int32_t>(record.nSamplesPerSec);
    const uint8_t nChans = static_cast<uint8_t>(record.nChannels);
    if (!record.IsPCM() || record.wBitsPerSample > 16)
        return OpenCompressedReader(std::move(file), record, nDataSize, pszReason);
    // A PCM record that claims 0 bits is read as 8-bit.
    if (record.wBitsPerSample > 8)
        return LSoundSourcePtr(new LSRCPCMFile16(std::move(file), nDataSize, nRate, nChans));
    return LSoundSourcePtr(new LSRCPCMFile8(std::move(file), nDataSize, nRate, nChans));
}

} // namespace

LSoundSourcePtr LWaveFile::OpenSource(const std::string& szPath, std::string* pszReason, LWaveFormatRecord* pRecord)
{
    LFile file;
    errno = 0;
    if (!file.Open(szPath, LFile::ReadExisting)) {
        LTRACE("LWaveFile::OpenSource Unable to Open File: %s", szPath.c_str());
        if (pszReason)
            *pszReason = errno ? std::string("cannot open the file: ") + std::strerror(errno)
                               : std::string("cannot open the file: not a regular file");
        return LSoundSourcePtr(new LSRCSilence);
    }
    LWaveFormatRecord record;
    uint32_t nFmtSize = 0;
    uint32_t nDataSize = 0;
    if (!FindRiffWave(file, pszReason) || !FindSubchunk(file, "fmt ", nFmtSize, pszReason) ||
        !ReadFormat(file, nFmtSize, record, pszReason))
        return LSoundSourcePtr(new LSRCSilence);
    if (pRecord)
        *pRecord = record;
    if (!FindSubchunk(file, "data", nDataSize, pszReason) || !CheckFormat(record, pszReason))
        return LSoundSourcePtr(new LSRCSilence);
    return ChooseReader(std::move(file), record, nDataSize, pszReason);
}

LSoundSinkPtr LWaveFile::OpenSink(const std::string& szPath, const LWaveFormatRecord& record)
{
    if (record.wFormatTag == LWaveFormatRecord::kTagPCM && record.nChannels <= kMaxChannels)
        return OpenSinkPCM(szPath, static_cast<int32_t>(record.nSamplesPerSec), 0, record.wBitsPerSample,
                           static_cast<uint8_t>(record.nChannels));
    return LSoundSinkPtr(new LSNKACMFile(szPath, record));
}

LSoundSinkPtr LWaveFile::OpenSinkPCM(const std::string& szPath, int32_t nSampleRate, int32_t sStartFrame,
                                     int nBitsPerSample, uint8_t nChans)
{
    if (nBitsPerSample > 16) {
        LTRACE("LWaveFile::OpenSinkPCM BitsPerSample too large - use BUILD_SUPPORT_32BITSAMPLEFORMATS");
        return LSoundSinkPtr();
    }
    if (nBitsPerSample < 1) {
        LTRACE("LWaveFile::OpenSinkPCM BitsPerSample < 1");
        return LSoundSinkPtr();
    }
    if (nBitsPerSample <= 8)
        return LSoundSinkPtr(new LSNKPCMFile8(szPath, nSampleRate, sStartFrame, nChans));
    return LSoundSinkPtr(new LSNKPCMFile16(szPath, nSampleRate, sStartFrame, nChans));
}

std::string LWaveFile::DescribeEncoding(const LWaveFormatRecord& record)
{
    if (record.IsPCM())
        return "PCM " + std::to_string(record.wBitsPerSample) + "-bit";
    switch (record.EffectiveTag()) {
    case 0x0002: return "MS ADPCM";
    case 0x0003: return "IEEE float " + std::to_string(record.wBitsPerSample) + "-bit";
    case 0x0006: return "A-law";
    case 0x0007: return "mu-law";
    case 0x0011: return "IMA ADPCM";
    case 0x0031: return "GSM 6.10";
    case 0x0055: return "MPEG layer 3";
    }
    char sz[32];
    std::snprintf(sz, sizeof(sz), "format 0x%04X", record.wFormatTag);
    return sz;
}

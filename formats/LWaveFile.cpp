#include "formats/LWaveFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "formats/LSNKACMFile.h"
#include "formats/LSNKPCMFile16.h"
#include "formats/LSNKPCMFile8.h"
#include "formats/LSNKPCMFileWide.h"
#include "formats/LSRCACMWave.h"
#include "formats/LSRCPCMFile16.h"
#include "formats/LSRCPCMFile8.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LVoxRawSettings.h"
#include "formats/codec/LCodec.h"

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

// What the chunk walk learns besides the format: the sizes that RF64 keeps in its ds64 chunk and
// the true frame count of a "fact" chunk.
struct LWaveChunks
{
    uint32_t nRiffSize = 0;
    bool bRF64 = false;
    bool bDs64 = false;
    uint64_t nDs64Data = 0;
    bool bFact = false;
    uint32_t nFactFrames = 0;
};

uint64_t Get64(const uint8_t* p)
{
    return static_cast<uint64_t>(Get32(p)) | (static_cast<uint64_t>(Get32(p + 4)) << 32);
}

// Steps over top-level chunks until the RIFF (or RF64, BW64) WAVE chunk; the pointer then stands inside it.
bool FindRiffWave(LFile& file, LWaveChunks& chunks, std::string* pszReason)
{
    while (true) {
        uint8_t head[12];
        if (file.Read(head, 12) < 12)
            return Fail(pszReason, "No RIFF WAVE chunk found", "not a WAV file: no RIFF WAVE chunk found");
        chunks.bRF64 = !std::memcmp(head, "RF64", 4) || !std::memcmp(head, "BW64", 4);
        if ((chunks.bRF64 || !std::memcmp(head, "RIFF", 4)) && !std::memcmp(head + 8, "WAVE", 4)) {
            chunks.nRiffSize = Get32(head + 4);
            return true;
        }
        const uint32_t nSize = (Get32(head + 4) + 1) & ~1u;
        if (nSize <= 4)
            return Fail(pszReason, "chunk too short!", "not a WAV file: damaged chunk ahead of the RIFF WAVE chunk");
        if (file.Seek(nSize - 4, LFile::FromCurrent) < 0)
            return Fail(pszReason, "No RIFF WAVE chunk found", "not a WAV file: no RIFF WAVE chunk found");
    }
}

// Reads the head of a ds64 or fact chunk met on the way; returns the bytes read.
uint32_t NoteChunk(LFile& file, const uint8_t* pHead, uint32_t nSize, LWaveChunks& chunks)
{
    uint8_t body[24];
    if (!std::memcmp(pHead, "ds64", 4) && nSize >= 24 && file.Read(body, 24) == 24) {
        chunks.bDs64 = true;
        chunks.nDs64Data = Get64(body + 8);
        return 24;
    }
    if (!std::memcmp(pHead, "fact", 4) && nSize >= 4 && file.Read(body, 4) == 4) {
        chunks.bFact = true;
        chunks.nFactFrames = Get32(body);
        return 4;
    }
    return 0;
}

// Steps over sub-chunks until the one named szId; the pointer then stands at its contents.
bool FindSubchunk(LFile& file, const char* szId, uint32_t& nSize, LWaveChunks& chunks, std::string* pszReason)
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
        const uint32_t nRead = NoteChunk(file, head, nSize, chunks);
        if (file.Seek(nSkip - nRead, LFile::FromCurrent) < 0)
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

// The bytes of samples, or -1 when they run to the end of the file. A size of all ones is the
// mark of a file still being written, and so is 0 in a file whose RIFF size does not close it
// there (a recorder that never came back to fill the sizes in). RF64 keeps the true size in ds64.
int64_t DataBytes(LFile& file, uint32_t nDataSize, const LWaveChunks& chunks)
{
    if (nDataSize == 0xFFFFFFFF && chunks.bRF64 && chunks.bDs64)
        return static_cast<int64_t>(std::min<uint64_t>(chunks.nDs64Data, INT64_MAX));
    if (nDataSize == 0xFFFFFFFF)
        return -1;
    if (nDataSize == 0 && static_cast<int64_t>(chunks.nRiffSize) + 8 != file.Size())
        return -1;
    return nDataSize;
}

// Why a record that is neither plain PCM nor a codec's could not be read.
std::string RefusalOf(const LWaveFormatRecord& record)
{
    if ((record.IsPCM() && record.wBitsPerSample > 16) || record.EffectiveTag() == LWaveFormatRecord::kTagFloat)
        return "damaged WAV file: blocks of " + std::to_string(record.nBlockAlign) + " bytes do not hold " +
               std::to_string(record.nChannels) + " channels of " + LWaveFile::DescribeEncoding(record);
    for (const LCodec* p : LCodec::All()) {
        const std::string sz = p->WhyRefused(record);
        if (!sz.empty())
            return sz;
    }
    return LWaveFile::DescribeEncoding(record) + " WAV files are not supported";
}

// Every record the PCM readers cannot take goes to the codec-layer reader.
LSoundSourcePtr OpenCompressedReader(LFile&& file, const LWaveFormatRecord& record, int64_t nDataBytes,
                                     const LWaveChunks& chunks, std::string* pszReason)
{
    const uint32_t nSize = nDataBytes < 0 ? LSRCACMWave::kStreamingSize
                                          : static_cast<uint32_t>(std::min<int64_t>(nDataBytes, 0xFFFFFFFE));
    const int64_t nFact = chunks.bFact ? int64_t{chunks.nFactFrames} : -1;
    LSoundSourcePtr pSource(new LSRCACMWave(std::move(file), record, nSize, nFact));
    if (pSource->IsError())
        Fail(pszReason, "no codec for this format", RefusalOf(record));
    return pSource;
}

LSoundSourcePtr ChooseReader(LFile&& file, const LWaveFormatRecord& record, int64_t nDataBytes,
                             const LWaveChunks& chunks, std::string* pszReason)
{
    const int32_t nRate = static_cast<int32_t>(record.nSamplesPerSec);
    const uint8_t nChans = static_cast<uint8_t>(record.nChannels);
    LWideSample kind;
    if (LSNKPCMFileWide::LayoutOf(record, kind))
        return LMakeRawSource(LRawWideEncoding(kind, false), std::move(file), nRate, nDataBytes, nChans);
    if (!record.IsPCM() || record.wBitsPerSample > 16)
        return OpenCompressedReader(std::move(file), record, nDataBytes, chunks, pszReason);
    // A PCM record that claims 0 bits is read as 8-bit.
    if (record.wBitsPerSample > 8)
        return LSoundSourcePtr(new LSRCPCMFile16(std::move(file), nDataBytes, nRate, nChans));
    return LSoundSourcePtr(new LSRCPCMFile8(std::move(file), nDataBytes, nRate, nChans));
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
    LWaveChunks chunks;
    uint32_t nFmtSize = 0;
    uint32_t nDataSize = 0;
    if (!FindRiffWave(file, chunks, pszReason) || !FindSubchunk(file, "fmt ", nFmtSize, chunks, pszReason) ||
        !ReadFormat(file, nFmtSize, record, pszReason))
        return LSoundSourcePtr(new LSRCSilence);
    if (pRecord)
        *pRecord = record;
    if (!FindSubchunk(file, "data", nDataSize, chunks, pszReason) || !CheckFormat(record, pszReason))
        return LSoundSourcePtr(new LSRCSilence);
    return ChooseReader(std::move(file), record, DataBytes(file, nDataSize, chunks), chunks, pszReason);
}

LSoundSinkPtr LWaveFile::OpenSink(const std::string& szPath, const LWaveFormatRecord& record)
{
    LWideSample kind;
    if (record.nChannels <= kMaxChannels && LSNKPCMFileWide::LayoutOf(record, kind))
        return LSoundSinkPtr(new LSNKPCMFileWide(szPath, record));
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

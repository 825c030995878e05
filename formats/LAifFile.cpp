#include "formats/LAifFile.h"

#include <cstring>

#include "core/LTrace.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LVoxRawSettings.h"

namespace {

constexpr int64_t kFormHeaderBytes = 12;
constexpr int64_t kCommBytes = 18;
constexpr int64_t kCommBytesAifc = 22; // the compression type follows; its name is skipped

uint32_t GetBE32(const uint8_t* p)
{
    return (static_cast<uint32_t>(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3];
}

uint16_t GetBE16(const uint8_t* p) { return static_cast<uint16_t>((p[0] << 8) | p[1]); }

void PutBE32(uint8_t* p, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(n >> (24 - 8 * i));
}

void PutBE16(uint8_t* p, uint32_t n)
{
    p[0] = static_cast<uint8_t>(n >> 8);
    p[1] = static_cast<uint8_t>(n);
}

LSoundSourcePtr Fail(std::string* pszError, const std::string& szReason)
{
    if (pszError)
        *pszError = szReason;
    return LSoundSourcePtr(new LSRCSilence);
}

// Walks the chunks after the FORM header to the one named szId; its size, or -1. The file
// pointer is left at the chunk's data.
int64_t AIFFFindChunk(LFile& file, const char* szId)
{
    if (file.Seek(kFormHeaderBytes) != kFormHeaderBytes)
        return -1;
    for (;;) {
        uint8_t chunk[8];
        if (file.Read(chunk, 8) != 8) {
            LTRACE("AIFFFindChunk end of file reached before chunk found");
            return -1;
        }
        const uint32_t nSize = GetBE32(chunk + 4);
        if (nSize >= 0x80000000u) {
            LTRACE("AIFFFindChunk pChunk->ckSize < 0");
            return -1;
        }
        if (std::memcmp(chunk, szId, 4) == 0)
            return nSize;
        // Chunks are padded to an even length.
        const int64_t nSkip = static_cast<int64_t>(nSize) + (nSize & 1);
        const int64_t nHere = file.Tell();
        if (nHere < 0 || file.Seek(nHere + nSkip) != nHere + nSkip)
            return -1;
    }
}

bool SameId(const uint8_t* p, const char* szId) { return std::memcmp(p, szId, 4) == 0; }

// The headerless encoding of an AIFF-C compression type and sample size; -1 when not read.
// Samples of 17 to 32 bits are left-justified in 3 or 4 bytes.
int32_t RawEncodingOf(const uint8_t* pType, int32_t nBits)
{
    const bool bBig = SameId(pType, "NONE") || SameId(pType, "twos");
    if (bBig || SameId(pType, "sowt")) {
        if (nBits == 16)
            return bBig ? RawPcm16BE : RawPcm16LE;
        if (nBits == 8)
            return RawPcm8Signed;
        if (nBits > 16 && nBits <= 32)
            return LRawWideEncoding(nBits <= 24 ? LWideSample::Pcm24 : LWideSample::Pcm32, bBig);
        return -1;
    }
    if (SameId(pType, "fl32") || SameId(pType, "FL32"))
        return RawFloat32BE;
    if (SameId(pType, "fl64") || SameId(pType, "FL64"))
        return RawFloat64BE;
    if (SameId(pType, "ulaw") || SameId(pType, "ULAW"))
        return RawULaw;
    if (SameId(pType, "alaw") || SameId(pType, "ALAW"))
        return RawALaw;
    return -1;
}

// The four characters of a type as text, non-printing ones shown as '?'.
std::string TypeText(const uint8_t* pType)
{
    std::string sz;
    for (int i = 0; i < 4; ++i)
        sz += (pType[i] >= 0x20 && pType[i] < 0x7F) ? static_cast<char>(pType[i]) : '?';
    return sz;
}

// What the COMM chunk says.
struct CommChunk
{
    bool bAifc = false;
    uint16_t nChans = 0;
    int32_t nBits = 0;
    uint32_t nRate = 0;
    uint8_t aType[4] = {'N', 'O', 'N', 'E'}; // a plain AIFF file sends no compression type
};

// The FORM header; false, with the reason, when the file is neither AIFF nor AIFF-C.
bool ReadFormHeader(LFile& file, bool& bAifc, std::string& szReason)
{
    uint8_t form[kFormHeaderBytes];
    if (file.Read(form, kFormHeaderBytes) != kFormHeaderBytes) {
        LTRACE("AIFFOpenHeader unable to read the first 12 bytes so failed");
        szReason = "not an AIFF file: shorter than its FORM header";
        return false;
    }
    bAifc = SameId(form + 8, "AIFC");
    if (!SameId(form, "FORM") || !(SameId(form + 8, "AIFF") || bAifc)) {
        LTRACE("AIFFOpenHeader FORM header not found");
        szReason = "not an AIFF file: no FORM AIFF header";
        return false;
    }
    return true;
}

// Finds and reads the COMM chunk into c (whose bAifc is set); false, with the reason, when it is
// missing, of the wrong size or cut short.
bool ReadCommChunk(LFile& file, CommChunk& c, std::string& szReason)
{
    const int64_t nCommSize = AIFFFindChunk(file, "COMM");
    if (nCommSize < 0) {
        LTRACE("AIFFOpenHeader COMM header not found");
        szReason = "not an AIFF file: no COMM chunk";
        return false;
    }
    uint8_t comm[kCommBytesAifc] = {};
    const int64_t nCommWanted = c.bAifc ? kCommBytesAifc : kCommBytes;
    if (c.bAifc ? nCommSize < kCommBytesAifc : nCommSize != kCommBytes) {
        LTRACE("AIFFOpenHeader COMM header does not contain 18 bytes");
        szReason = "the AIFF file's COMM chunk is " + std::to_string(nCommSize) + " bytes, not " +
                   (c.bAifc ? std::string("at least 22") : std::string("18"));
        return false;
    }
    if (file.Read(comm, nCommWanted) != nCommWanted) {
        LTRACE("AIFFOpenHeader COMM header does not contain 18 bytes");
        szReason = "damaged AIFF file: it ends inside its COMM chunk";
        return false;
    }
    c.nChans = GetBE16(comm);
    c.nBits = GetBE16(comm + 6);
    c.nRate = LAifFile::ExtendedToRate(comm + 8);
    if (c.bAifc)
        std::memcpy(c.aType, comm + 18, sizeof(c.aType));
    return true;
}

// The headerless encoding the samples are read with; -1, with the reason, when the rate, the
// channel count or the sample format is not one read here.
int32_t SampleEncodingOf(const CommChunk& c, std::string& szReason)
{
    if (c.nRate < 1 || c.nRate > 196000) {
        LTRACE("LAifFile::OpenSource sample rate out of range");
        szReason = "the AIFF file's sample rate is out of range";
        return -1;
    }
    if (c.nChans < 1 || c.nChans > 255) {
        LTRACE("LAifFile::OpenSource bad channel count %u", static_cast<unsigned>(c.nChans));
        szReason = "the AIFF file's channel count " + std::to_string(c.nChans) + " is out of range";
        return -1;
    }
    const int32_t nRaw = RawEncodingOf(c.aType, c.nBits);
    if (nRaw < 0) {
        if (RawEncodingOf(c.aType, 16) >= 0) {
            LTRACE("LAifFile::OpenSource Does not support %d bit samples", static_cast<int>(c.nBits));
            szReason = "AIFF files of " + std::to_string(c.nBits) + "-bit samples are not supported";
            return -1;
        }
        LTRACE("LAifFile::OpenSource unsupported compression %s", TypeText(c.aType).c_str());
        szReason = "AIFF-C compression '" + TypeText(c.aType) + "' is not supported";
    }
    return nRaw;
}

// Leaves the file at the first sample of the SSND chunk and gives the bytes of samples; false,
// with the reason, when there is no such chunk or its offset lies beyond it.
bool SeekSamples(LFile& file, int64_t& nDataBytes, std::string& szReason)
{
    const int64_t nSsndSize = AIFFFindChunk(file, "SSND");
    uint8_t ssnd[8];
    if (nSsndSize < 8 || file.Read(ssnd, 8) != 8) {
        LTRACE("AIFFOpenHeader SSND header not found");
        szReason = "not an AIFF file: no SSND chunk";
        return false;
    }
    // The offset puts the first sample further in (block-aligned data).
    const int64_t nOffset = GetBE32(ssnd);
    nDataBytes = nSsndSize - 8 - nOffset;
    const int64_t nHere = file.Tell();
    if (nDataBytes < 0 || nHere < 0 || file.Seek(nHere + nOffset) != nHere + nOffset) {
        LTRACE("LAifFile::OpenSource SSND offset beyond the chunk");
        szReason = "the AIFF file's SSND offset lies beyond its data";
        return false;
    }
    return true;
}

} // namespace

void LAifFile::RateToExtended(uint32_t nRate, uint8_t (&aExt)[10])
{
    std::memset(aExt, 0, sizeof(aExt));
    if (nRate == 0)
        return;
    int nTop = 31;
    while (!(nRate & (1u << nTop)))
        --nTop;
    const uint32_t nExponent = 16383 + nTop;
    const uint64_t nMantissa = static_cast<uint64_t>(nRate) << (63 - nTop);
    PutBE16(aExt, nExponent);
    for (int i = 0; i < 8; ++i)
        aExt[2 + i] = static_cast<uint8_t>(nMantissa >> (56 - 8 * i));
}

uint32_t LAifFile::ExtendedToRate(const uint8_t* pExt)
{
    if (pExt[0] & 0x80)
        return 0;
    const int nExponent = GetBE16(pExt) - 16383;
    if (nExponent < 0 || nExponent > 19)
        return 0;
    uint64_t nMantissa = 0;
    for (int i = 0; i < 8; ++i)
        nMantissa = (nMantissa << 8) | pExt[2 + i];
    const int nShift = 63 - nExponent; // 44 or more
    const uint64_t nRounded = (nMantissa >> nShift) + ((nMantissa >> (nShift - 1)) & 1);
    return nRounded > 1000000 ? 0 : static_cast<uint32_t>(nRounded);
}

LSoundSourcePtr LAifFile::OpenSource(const std::string& szFileName, std::string* pszError, Info* pInfo)
{
    LFile file;
    if (!file.Open(szFileName, LFile::ReadExisting)) {
        LTRACE("LAifFile::OpenSource unable to open the file");
        return Fail(pszError, "cannot open the file");
    }
    std::string szReason;
    CommChunk comm;
    if (!ReadFormHeader(file, comm.bAifc, szReason) || !ReadCommChunk(file, comm, szReason))
        return Fail(pszError, szReason);
    if (pInfo) {
        pInfo->bAifc = comm.bAifc;
        pInfo->szCompression = TypeText(comm.aType);
        pInfo->nSampleBits = comm.nBits;
    }
    const int32_t nRaw = SampleEncodingOf(comm, szReason);
    int64_t nDataBytes = 0;
    if (nRaw < 0 || !SeekSamples(file, nDataBytes, szReason))
        return Fail(pszError, szReason);
    return LMakeRawSource(nRaw, std::move(file), static_cast<int32_t>(comm.nRate), nDataBytes,
                          static_cast<uint8_t>(comm.nChans));
}

bool WriteHeaderAIFF(LFile& file, uint8_t nChans, int32_t nSampleRate, int32_t nSampleBits, int64_t nDataBytes)
{
    // Sizes that do not fit are written as the largest that does.
    const int64_t nMaxData = 0x7FFFFFFF - (LSNKAifFile::kHeaderBytes - 8) - 1;
    if (nDataBytes < 0)
        nDataBytes = 0;
    if (nDataBytes > nMaxData)
        nDataBytes = nMaxData;
    const int64_t nFrameBytes = static_cast<int64_t>(nChans) * (nSampleBits / 8);
    const int64_t nPad = nDataBytes & 1;
    uint8_t h[LSNKAifFile::kHeaderBytes];
    std::memcpy(h, "FORM", 4);
    PutBE32(h + 4, static_cast<uint32_t>(LSNKAifFile::kHeaderBytes - 8 + nDataBytes + nPad));
    std::memcpy(h + 8, "AIFFCOMM", 8);
    PutBE32(h + 16, kCommBytes);
    PutBE16(h + 20, nChans);
    PutBE32(h + 22, static_cast<uint32_t>(nFrameBytes > 0 ? nDataBytes / nFrameBytes : 0));
    PutBE16(h + 26, static_cast<uint32_t>(nSampleBits));
    uint8_t aRate[10];
    LAifFile::RateToExtended(static_cast<uint32_t>(nSampleRate), aRate);
    std::memcpy(h + 28, aRate, 10);
    std::memcpy(h + 38, "SSND", 4);
    PutBE32(h + 42, static_cast<uint32_t>(8 + nDataBytes));
    PutBE32(h + 46, 0);
    PutBE32(h + 50, 0);
    return file.Write(h, sizeof(h)) == static_cast<int64_t>(sizeof(h));
}

namespace {
// The encodings an AIFF file holds, and their sample sizes.
int32_t AiffEncoding(int32_t nEncoding)
{
    return nEncoding == RawPcm8Signed || nEncoding == RawPcm24BE || nEncoding == RawPcm32BE ? nEncoding : RawPcm16BE;
}
int32_t BitsOf(int32_t nEncoding)
{
    return 8 * LVoxRawSettings::ElementSize(AiffEncoding(nEncoding));
}
} // namespace

LSNKAifFile::LSNKAifFile(const std::string& szPath, int32_t nRate, uint8_t nChannels, int32_t nEncoding)
    : LRawFileDataSoundSinkBase(szPath, nRate, nChannels, AiffEncoding(nEncoding), kHeaderBytes),
      nSampleBits(BitsOf(nEncoding))
{
    StartHeader();
}

LSNKAifFile::~LSNKAifFile()
{
    Complete();
}

bool LSNKAifFile::WriteHeader(LFile& file, int64_t nDataBytes)
{
    if (nDataBytes > 0 && (nDataBytes & 1)) {
        // The chunk is padded to an even length.
        const uint8_t nZero = 0;
        if (file.Seek(kHeaderBytes + nDataBytes) < 0 || file.Write(&nZero, 1) != 1 || file.Seek(0) != 0)
            return false;
    }
    return WriteHeaderAIFF(file, GetChannels(), GetSampleRate(), nSampleBits, nDataBytes);
}

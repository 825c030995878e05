#include "formats/LAifFormat.h"

#include <cerrno>
#include <cstring>

#include "formats/LAifFile.h"
#include "formats/LVoxRawSettings.h"

bool LAifFormat::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    return nBytes >= 12 && !std::memcmp(pHead, "FORM", 4) &&
           (!std::memcmp(pHead + 8, "AIFF", 4) || !std::memcmp(pHead + 8, "AIFC", 4));
}

namespace {
// The encoding that writes a file back as it was read, where AIFF holds it.
const char* EncodingName(const std::string& szType, int32_t nBits)
{
    if (szType == "fl32" || szType == "FL32" || szType == "fl64" || szType == "FL64")
        return "float";
    if (szType != "NONE" && szType != "twos" && szType != "sowt")
        return "pcm16";
    return nBits == 8 ? "pcm8" : nBits > 24 ? "pcm32" : nBits > 16 ? "pcm24" : "pcm16";
}
} // namespace

LSoundSourcePtr LAifFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                       LAudioFileDetails* pDetails) const
{
    LAifFile::Info info;
    LSoundSourcePtr pSource = LAifFile::OpenSource(szPath, pszError, &info);
    if (pDetails && !pSource->IsError()) {
        pDetails->szFormat = info.bAifc ? "AIFF-C" : GetName();
        const std::string& szType = info.szCompression;
        if (szType == "ulaw" || szType == "ULAW")
            pDetails->szEncoding = "G.711 u-law";
        else if (szType == "alaw" || szType == "ALAW")
            pDetails->szEncoding = "G.711 A-law";
        else if (szType == "fl32" || szType == "FL32" || szType == "fl64" || szType == "FL64")
            pDetails->szEncoding = "IEEE float " + std::to_string(szType[2] == '3' ? 32 : 64) + "-bit";
        else
            pDetails->szEncoding = "PCM " + std::to_string(info.nSampleBits) + "-bit" +
                                   (szType == "sowt" ? " little-endian" : "");
        pDetails->encoding = LAudioEncoding::Named(EncodingName(szType, info.nSampleBits));
    }
    return pSource;
}

LSoundSinkPtr LAifFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError) const
{
    errno = 0;
    const std::string& sz = encoding.szName;
    const int32_t nRaw = sz == "pcm8" ? RawPcm8Signed : sz == "pcm24" ? RawPcm24BE : sz == "pcm32" ? RawPcm32BE : RawPcm16BE;
    LSoundSinkPtr pSink(new LSNKAifFile(szPath, nSampleRate, nChans, nRaw));
    if (pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}

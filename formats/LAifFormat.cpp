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
        else
            pDetails->szEncoding = "PCM " + std::to_string(info.nSampleBits) + "-bit" +
                                   (szType == "sowt" ? " little-endian" : "");
        const bool b8 = info.nSampleBits == 8 && szType != "ulaw" && szType != "ULAW" && szType != "alaw" &&
                        szType != "ALAW";
        pDetails->encoding = LAudioEncoding::Named(b8 ? "pcm8" : "pcm16");
    }
    return pSource;
}

LSoundSinkPtr LAifFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError) const
{
    errno = 0;
    LSoundSinkPtr pSink(
        new LSNKAifFile(szPath, nSampleRate, nChans, encoding.szName == "pcm8" ? RawPcm8Signed : RawPcm16BE));
    if (pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}

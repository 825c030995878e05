#include "formats/LAuFormat.h"

#include <cerrno>
#include <cstring>

#include "formats/LAuFile.h"
#include "formats/LVoxRawSettings.h"

bool LAuFormat::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    return nBytes >= 4 && !std::memcmp(pHead, ".snd", 4);
}

LSoundSourcePtr LAuFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                      LAudioFileDetails* pDetails) const
{
    uint32_t nEncoding = 0;
    LSoundSourcePtr pSource = LAuFile::OpenSource(szPath, pszError, &nEncoding);
    if (pDetails && !pSource->IsError()) {
        pDetails->szFormat = GetName();
        switch (nEncoding) {
        case LAuFile::kULaw:
            pDetails->szEncoding = "G.711 u-law";
            pDetails->encoding = LAudioEncoding::Named("ulaw");
            break;
        case LAuFile::kALaw:
            pDetails->szEncoding = "G.711 A-law";
            pDetails->encoding = LAudioEncoding::Named("alaw");
            break;
        case LAuFile::kLinear8:
            pDetails->szEncoding = "PCM 8-bit";
            pDetails->encoding = LAudioEncoding::Named("pcm16");
            break;
        case LAuFile::kLinear24:
        case LAuFile::kLinear32:
            pDetails->szEncoding = nEncoding == LAuFile::kLinear24 ? "PCM 24-bit" : "PCM 32-bit";
            pDetails->encoding = LAudioEncoding::Named(nEncoding == LAuFile::kLinear24 ? "pcm24" : "pcm32");
            break;
        case LAuFile::kFloat:
        case LAuFile::kDouble:
            pDetails->szEncoding = nEncoding == LAuFile::kFloat ? "IEEE float 32-bit" : "IEEE float 64-bit";
            pDetails->encoding = LAudioEncoding::Named("float");
            break;
        default:
            pDetails->szEncoding = "PCM 16-bit";
            pDetails->encoding = LAudioEncoding::Named("pcm16");
            break;
        }
    }
    return pSource;
}

LSoundSinkPtr LAuFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                  const LAudioEncoding& encoding, std::string* pszError) const
{
    const std::string& sz = encoding.szName;
    const int32_t nRaw = sz == "ulaw"    ? RawULaw
                         : sz == "alaw"  ? RawALaw
                         : sz == "pcm24" ? RawPcm24BE
                         : sz == "pcm32" ? RawPcm32BE
                         : sz == "float" ? RawFloat32BE
                                         : RawPcm16BE;
    errno = 0;
    LSoundSinkPtr pSink(new LSNKAuFile(szPath, nSampleRate, nChans, nRaw));
    if (pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}

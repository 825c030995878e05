#include "formats/LWaveFormat.h"

#include <cerrno>
#include <cstring>

#include "formats/LWaveFile.h"

bool LWaveFormat::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    return nBytes >= 12 && !std::memcmp(pHead, "RIFF", 4) && !std::memcmp(pHead + 8, "WAVE", 4);
}

LSoundSourcePtr LWaveFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                        LAudioFileDetails* pDetails) const
{
    LWaveFormatRecord record;
    LSoundSourcePtr pSource = LWaveFile::OpenSource(szPath, pszError, &record);
    if (pDetails && !pSource->IsError()) {
        pDetails->szFormat = GetName();
        pDetails->szEncoding = LWaveFile::DescribeEncoding(record);
        // PCM of up to 8 bits saves back as 8-bit; everything else as 16-bit.
        pDetails->encoding = LAudioEncoding::Named(record.IsPCM() && record.wBitsPerSample <= 8 ? "pcm8" : "pcm16");
    }
    return pSource;
}

LSoundSinkPtr LWaveFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                    const LAudioEncoding& encoding, std::string* pszError) const
{
    const int nBits = encoding.szName == "pcm8" ? 8 : 16;
    errno = 0;
    LSoundSinkPtr pSink = LWaveFile::OpenSinkPCM(szPath, nSampleRate, 0, nBits, nChans);
    if (!pSink || pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}

#include "formats/LGSMFormat.h"

#include <cerrno>
#include <cstring>

#include "core/LFile.h"
#include "formats/LGSMFileSink.h"
#include "formats/LGSMFileSource.h"

namespace {

void SetReason(std::string* pszError, const std::string& szText)
{
    if (pszError)
        *pszError = szText;
}

std::string OpenFailure(const char* szWhat)
{
    const int nErr = errno;
    return nErr ? std::string(szWhat) + ": " + std::strerror(nErr) : std::string(szWhat);
}

// The first frame must be whole and signed; later damage reads as silence.
bool LooksLikeGsm(const std::string& szPath, std::string* pszError)
{
    LFile file;
    errno = 0;
    if (!file.Open(szPath, LFile::ReadExisting)) {
        SetReason(pszError, OpenFailure("cannot open the file"));
        return false;
    }
    uint8_t head[kGSMFrameBytes];
    if (file.Read(head, kGSMFrameBytes) < static_cast<int64_t>(kGSMFrameBytes)) {
        SetReason(pszError, "not a GSM file: shorter than one 33-byte frame");
        return false;
    }
    if ((head[0] >> 4) != kGSMSignature) {
        SetReason(pszError, "not a GSM file: the first frame lacks the GSM signature");
        return false;
    }
    return true;
}

} // namespace

void LGSMFormat::FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const
{
    nSampleRate = LGSMFileSink::kSampleRate;
    nChans = 1;
}

LSoundSourcePtr LGSMFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                       LAudioFileDetails* pDetails) const
{
    if (!LooksLikeGsm(szPath, pszError))
        return LSoundSourcePtr(new LSRCSilence);
    errno = 0;
    LSoundSourcePtr pSource(new LGSMFileSource(szPath));
    if (pSource->IsError()) {
        SetReason(pszError, OpenFailure("cannot open the file"));
        return pSource;
    }
    if (pDetails) {
        pDetails->szFormat = GetName();
        pDetails->szEncoding = "06.10 full rate";
        pDetails->encoding = LAudioEncoding::Named("gsm");
    }
    return pSource;
}

LSoundSinkPtr LGSMFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError) const
{
    if (nSampleRate != LGSMFileSink::kSampleRate || nChans != 1) {
        SetReason(pszError, "GSM files hold 8000 Hz mono only (asked for " + std::to_string(nSampleRate) + " Hz, " +
                                std::to_string(nChans) + (nChans == 1 ? " channel)" : " channels)"));
        return LSoundSinkPtr();
    }
    errno = 0;
    LSoundSinkPtr pSink(new LGSMFileSink(szPath));
    if (pSink->IsError()) {
        SetReason(pszError, OpenFailure("cannot write the file"));
        return LSoundSinkPtr();
    }
    return pSink;
}

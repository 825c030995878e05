#include "formats/LAudioFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "core/LFile.h"
#include "core/LPRSourceToSink.h"
#include "core/LSRCConvertChannels.h"
#include "core/LTrace.h"
#include "formats/LAudioFormat.h"

namespace {

constexpr int32_t kMaxSampleRate = 196000;

void SetReason(std::string* pszError, const std::string& szText)
{
    if (pszError)
        *pszError = szText;
}

std::string KnownFormats()
{
    std::string sz;
    for (const LAudioFormat* p : LAudioFormat::All())
        sz += std::string(sz.empty() ? "" : ", ") + p->GetListedName();
    return sz;
}

// Reads the first bytes for the content check; false (with the reason) when there are none.
bool ReadHead(const std::string& szPath, uint8_t* pHead, size_t& nBytes, std::string* pszError)
{
    LFile file;
    errno = 0;
    if (!file.Open(szPath, LFile::ReadExisting)) {
        SetReason(pszError, errno ? std::string("cannot open the file: ") + std::strerror(errno)
                                  : std::string("cannot open the file: not a regular file"));
        return false;
    }
    nBytes = static_cast<size_t>(file.Read(pHead, LAudioFormat::kHeadBytes));
    if (nBytes == 0) {
        SetReason(pszError, "the file is empty");
        return false;
    }
    return true;
}

// A name beside the target, in the same folder so that the final rename never crosses devices.
bool PartPathFor(const std::string& szPath, std::string& szPart)
{
    static std::atomic<int> nCounter{0};
    const std::string szName = "." + LFile::FileNameOf(szPath) + "." + std::to_string(::getpid()) + "-" +
                               std::to_string(++nCounter) + ".part";
    return LFile::FilePathCat(szPart, LFile::FolderOf(szPath), szName);
}

// Writers are chosen by the extension alone: the file does not exist yet.
const LAudioFormat* FormatToWrite(const std::string& szPath, std::string* pszError)
{
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(szPath);
    if (!pFormat) {
        const std::string szExt = LFile::ExtensionOf(szPath);
        SetReason(pszError, (szExt.empty() ? std::string("no file extension to choose the format by")
                                           : "unknown file type '" + szExt + "'") +
                                " (known: " + KnownFormats() + ")");
    }
    return pFormat;
}

// Plain sample widths mean the same in every format that has them.
bool IsPlainWidth(const std::string& szName)
{
    for (const char* sz : {"pcm8", "pcm16", "pcm24", "pcm32", "float", "float64"})
        if (szName == sz)
            return true;
    return false;
}

bool CheckSinkShape(const LAudioFormat& format, int32_t nSampleRate, uint8_t nChans, std::string* pszError)
{
    if (nSampleRate < 1 || nSampleRate > kMaxSampleRate) {
        SetReason(pszError, "sample rate " + std::to_string(nSampleRate) + " Hz is out of range (1 to 196000)");
        return false;
    }
    if (nChans == 0) {
        SetReason(pszError, "a file needs at least one channel");
        return false;
    }
    if (!format.CanWrite()) {
        SetReason(pszError, std::string(format.GetName()) + " files can be read but not written");
        return false;
    }
    return true;
}

std::string SystemReason(const char* szWhat)
{
    const int nErr = LFile::GetLastError();
    return std::string(szWhat) + ": " + (nErr ? std::strerror(nErr) : "unknown reason");
}

// The new file reaches the disk before it takes the old one's name, and the folder after, so
// that a crash or a full disk at any moment leaves either the old file or the new one whole.
bool SyncPart(const std::string& szPart, std::string* pszError)
{
    LFile file;
    if (!file.Open(szPart, LFile::ReadExisting)) {
        LFile::ClearLastError();
        SetReason(pszError, std::string("cannot flush the file: ") + std::strerror(errno));
        return false;
    }
    if (!file.Sync()) {
        SetReason(pszError, SystemReason("cannot flush the file to the disk"));
        return false;
    }
    return true;
}

int32_t FinishSave(int32_t nResult, LSoundSinkPtr& pSink, const std::string& szPart, const std::string& szPath,
                   std::string* pszError)
{
    // Every writer finishes here, where its failure is seen, not in its destructor: the last
    // frames and the closing header, the close, an encoder's exit.
    const bool bWritten = pSink->Complete() && !pSink->IsError();
    const std::string szSinkError = pSink->GetErrorText();
    pSink.Reset();
    if (nResult == LProgressReport::ResultCancelled) {
        SetReason(pszError, "cancelled");
    } else if (!bWritten) {
        SetReason(pszError, szSinkError.empty() ? SystemReason("writing the file failed")
                                                : "writing the file failed: " + szSinkError);
        nResult = LProgressReport::ResultError;
    } else if (nResult == LProgressReport::ResultDone && !LFile::Exists(szPart)) {
        // A writer that runs another program (an encoder) may learn only at the end that it failed.
        SetReason(pszError, "the file was not written (the encoder failed)");
        nResult = LProgressReport::ResultError;
    } else if (nResult != LProgressReport::ResultDone) {
        SetReason(pszError, "the sound could not be read");
    }
    if (nResult == LProgressReport::ResultDone && !SyncPart(szPart, pszError))
        nResult = LProgressReport::ResultError;
    if (nResult == LProgressReport::ResultDone && !LFile::Rename(szPart, szPath)) {
        SetReason(pszError, SystemReason("cannot replace the file"));
        nResult = LProgressReport::ResultError;
    }
    if (nResult != LProgressReport::ResultDone) {
        LFile::Delete(szPart);
        return nResult;
    }
    if (!LFile::SyncFolder(LFile::FolderOf(szPath))) {
        // The new file is in place but may not survive a crash: the document stays unsaved.
        SetReason(pszError, SystemReason("the file was written but its folder could not be flushed"));
        return LProgressReport::ResultError;
    }
    return nResult;
}

} // namespace

LAudioEncoding LAudioFile::EncodingFor(const LAudioFormat& format, const LAudioEncoding& encoding)
{
    if (format.CanWrite(encoding))
        return encoding;
    // A 24-bit AIFF saved as WAV stays 24-bit; an MP3 saved as WAV gets WAV's default.
    const LAudioEncoding width = LAudioEncoding::Named(encoding.szName);
    if (IsPlainWidth(encoding.szName) && format.CanWrite(width))
        return width;
    return LAudioEncoding();
}

LSoundSourcePtr LAudioFile::OpenSource(const std::string& szPath, std::string* pszError)
{
    return OpenSource(szPath, pszError, nullptr);
}

LSoundSourcePtr LAudioFile::OpenSource(const std::string& szPath, std::string* pszError, LAudioFileDetails* pDetails)
{
    uint8_t head[LAudioFormat::kHeadBytes];
    size_t nHead = 0;
    if (!ReadHead(szPath, head, nHead, pszError))
        return LSoundSourcePtr(new LSRCSilence);
    // The contents decide first; the extension covers formats without a signature.
    const LAudioFormat* pFormat = LAudioFormat::ByContent(head, nHead);
    if (!pFormat)
        pFormat = LAudioFormat::ByExtension(szPath);
    if (!pFormat) {
        LTRACE("LAudioFile::OpenSource unknown format: %s", szPath.c_str());
        SetReason(pszError, "not a known audio file format (known: " + KnownFormats() + ")");
        return LSoundSourcePtr(new LSRCSilence);
    }
    std::string szReason;
    LSoundSourcePtr pSource = pFormat->OpenSource(szPath, &szReason, pDetails);
    if (pDetails)
        pDetails->encoding.szFormat = pFormat->GetName();
    if (pSource->IsError())
        SetReason(pszError, szReason.empty() ? std::string("cannot read the file") : szReason);
    return pSource;
}

LSoundSinkPtr LAudioFile::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError)
{
    const LAudioFormat* pFormat = FormatToWrite(szPath, pszError);
    if (!pFormat || !CheckSinkShape(*pFormat, nSampleRate, nChans, pszError))
        return LSoundSinkPtr();
    return pFormat->OpenSink(szPath, nSampleRate, nChans, EncodingFor(*pFormat, encoding), pszError);
}

int32_t LAudioFile::Save(LProgressReport& dlg, const std::string& szTitle, LSoundSourceBase* pSource,
                         const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                         const LAudioEncoding& encoding, std::string* pszError)
{
    LSoundSourcePtr pHold(pSource);
    LFile::ClearLastError();
    if (!pSource || pSource->IsError()) {
        SetReason(pszError, "the sound to save cannot be read");
        return LProgressReport::ResultError;
    }
    const LAudioFormat* pFormat = FormatToWrite(szPath, pszError);
    if (!pFormat)
        return LProgressReport::ResultError;
    const LAudioEncoding use = EncodingFor(*pFormat, encoding);
    pFormat->FitShape(use, nSampleRate, nChans);
    if (!CheckSinkShape(*pFormat, nSampleRate, nChans, pszError))
        return LProgressReport::ResultError;
    if (pSource->GetChannels() != nChans && !LSRCConvertChannels::CanConvert(pSource->GetChannels(), nChans)) {
        SetReason(pszError, "cannot convert " + std::to_string(pSource->GetChannels()) + " channels to " +
                                std::to_string(nChans));
        return LProgressReport::ResultError;
    }
    std::string szPart;
    if (!PartPathFor(szPath, szPart)) {
        SetReason(pszError, "the path is too long");
        return LProgressReport::ResultError;
    }
    LSoundSinkPtr pSink = pFormat->OpenSink(szPart, nSampleRate, nChans, use, pszError);
    if (!pSink) {
        LFile::Delete(szPart);
        return LProgressReport::ResultError;
    }
    // Frames at the sink's rate; a little more than the converters give is no harm.
    const int64_t nSourceRate = std::max(pSource->GetSampleRate(), 1);
    pSink->ExpectFrames(static_cast<int64_t>(pSource->GetLength()) * nSampleRate / nSourceRate + 1);
    const int32_t nResult = LPRSourceToSink::Pump(dlg, szTitle, pSource, pSink.Get());
    return FinishSave(nResult, pSink, szPart, szPath, pszError);
}

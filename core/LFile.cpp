#include "core/LFile.h"

#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/LTrace.h"

namespace {
thread_local int nLastError = 0;

// Disarmed unless a test arms it; one relaxed load on the write path otherwise.
std::atomic<bool> bFaultArmed{false};
std::atomic<int64_t> nFaultCalls{0};
std::atomic<int64_t> nFaultAt{0};
std::atomic<int> nFaultKind{LFile::FaultFail};

enum class FaultOutcome
{
    None,
    Fail,
    Short,
};

FaultOutcome CountFaultCall()
{
    if (!bFaultArmed.load(std::memory_order_relaxed))
        return FaultOutcome::None;
    const int64_t nCall = ++nFaultCalls;
    if (nCall != nFaultAt.load())
        return FaultOutcome::None;
    return nFaultKind.load() == LFile::FaultShortWrite ? FaultOutcome::Short : FaultOutcome::Fail;
}

bool Failed(int nErrno)
{
    nLastError = nErrno;
    errno = nErrno;
    return false;
}
} // namespace

int LFile::GetLastError()
{
    return nLastError;
}

void LFile::ClearLastError()
{
    nLastError = 0;
}

void LFile::InjectFault(int64_t nCall, Fault fault)
{
    nFaultCalls = 0;
    nFaultAt = nCall;
    nFaultKind = fault;
    bFaultArmed = true;
}

void LFile::ClearFault()
{
    bFaultArmed = false;
    nFaultAt = 0;
}

int64_t LFile::GetFaultCalls()
{
    return nFaultCalls.load();
}

int64_t LFile::FaultAllows(int64_t nBytes)
{
    switch (CountFaultCall()) {
    case FaultOutcome::Fail: return 0;
    // A short write stands for a disk that fills up in the middle of the call.
    case FaultOutcome::Short: return nBytes / 2;
    case FaultOutcome::None: break;
    }
    return nBytes;
}

LFile& LFile::operator=(LFile&& other) noexcept
{
    if (this != &other) {
        Close();
        hFile = other.hFile;
        other.hFile = -1;
    }
    return *this;
}

bool LFile::Open(const std::string& szPath, OpenMode mode)
{
    Close();
    if (szPath.empty() || szPath.size() >= kMaxPath)
        return false;
    int flags = 0;
    switch (mode) {
    case ReadExisting: flags = O_RDONLY; break;
    case ReadWriteExisting: flags = O_RDWR; break;
    case ReadWriteKeep: flags = O_RDWR | O_CREAT; break;
    case ReadWriteCreate: flags = O_RDWR | O_CREAT | O_TRUNC; break;
    case CreateNew: flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW; break;
    }
#ifdef O_CLOEXEC
    flags |= O_CLOEXEC;
#endif
    do {
        hFile = ::open(szPath.c_str(), flags, 0644);
    } while (hFile < 0 && errno == EINTR);
    if (hFile < 0)
        return false;
    struct stat st;
    // A folder opens for reading on POSIX; it is no file for us.
    if (::fstat(hFile, &st) != 0 || S_ISDIR(st.st_mode)) {
        Close();
        return false;
    }
    return true;
}

bool LFile::Close()
{
    if (hFile < 0)
        return true;
    const int r = ::close(hFile);
    hFile = -1;
    // After EINTR the descriptor is gone all the same and nothing says the data was lost.
    return r == 0 || errno == EINTR || Failed(errno);
}

int64_t LFile::Read(void* pBuffer, int64_t nBytes)
{
    if (hFile < 0 || nBytes <= 0)
        return 0;
    int64_t nDone = 0;
    auto* p = static_cast<char*>(pBuffer);
    while (nDone < nBytes) {
        ssize_t n = ::read(hFile, p + nDone, static_cast<size_t>(nBytes - nDone));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        nDone += n;
    }
    return nDone;
}

int64_t LFile::Write(const void* pBuffer, int64_t nBytes)
{
    if (hFile < 0) {
        Failed(EBADF);
        return 0;
    }
    if (nBytes <= 0)
        return 0;
    const int64_t nAllowed = FaultAllows(nBytes);
    if (nAllowed == 0) {
        Failed(ENOSPC);
        return 0;
    }
    int64_t nDone = 0;
    int nErr = 0;
    auto* p = static_cast<const char*>(pBuffer);
    while (nDone < nAllowed) {
        ssize_t n = ::write(hFile, p + nDone, static_cast<size_t>(nAllowed - nDone));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            nErr = errno;
        if (n <= 0)
            break;
        nDone += n;
    }
    // write() delivering less without a reason means the device is full.
    if (nDone < nBytes)
        Failed(nErr ? nErr : ENOSPC);
    return nDone;
}

bool LFile::Sync()
{
    if (hFile < 0)
        return Failed(EBADF);
    if (CountFaultCall() != FaultOutcome::None)
        return Failed(EIO);
    while (::fsync(hFile) != 0) {
        if (errno != EINTR)
            return Failed(errno);
    }
    return true;
}

bool LFile::SyncFolder(const std::string& szFolderPath)
{
    if (CountFaultCall() != FaultOutcome::None)
        return Failed(EIO);
    const std::string szFolder = szFolderPath.empty() ? std::string(".") : szFolderPath;
    int fd = -1;
    do {
        fd = ::open(szFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return Failed(errno);
    int r = 0;
    do {
        r = ::fsync(fd);
    } while (r != 0 && errno == EINTR);
    const int nErr = errno;
    ::close(fd);
    // Some file systems cannot flush a folder; their renames are as durable as they get.
    if (r != 0 && nErr != EINVAL && nErr != EROFS)
        return Failed(nErr);
    return true;
}

int64_t LFile::Seek(int64_t nOffset, SeekFrom from)
{
    if (hFile < 0)
        return -1;
    int whence = from == FromBegin ? SEEK_SET : from == FromCurrent ? SEEK_CUR : SEEK_END;
    off_t r = ::lseek(hFile, static_cast<off_t>(nOffset), whence);
    return r < 0 ? -1 : static_cast<int64_t>(r);
}

int64_t LFile::Tell()
{
    return Seek(0, FromCurrent);
}

int64_t LFile::Size()
{
    if (hFile < 0)
        return 0;
    struct stat st;
    if (::fstat(hFile, &st) != 0)
        return 0;
    return static_cast<int64_t>(st.st_size);
}

bool LFile::Truncate()
{
    int64_t nPos = Tell();
    return nPos >= 0 && ::ftruncate(hFile, static_cast<off_t>(nPos)) == 0;
}

bool LFile::Exists(const std::string& szPath)
{
    struct stat st;
    return !szPath.empty() && ::stat(szPath.c_str(), &st) == 0;
}

bool LFile::Delete(const std::string& szPath)
{
    return ::unlink(szPath.c_str()) == 0;
}

bool LFile::Rename(const std::string& szFrom, const std::string& szTo)
{
    if (CountFaultCall() != FaultOutcome::None)
        return Failed(EIO);
    if (std::rename(szFrom.c_str(), szTo.c_str()) != 0)
        return Failed(errno);
    return true;
}

static size_t ExtensionDot(const std::string& szPath)
{
    size_t nSlash = szPath.find_last_of("/\\");
    size_t nDot = szPath.find_last_of('.');
    if (nDot == std::string::npos || (nSlash != std::string::npos && nDot < nSlash))
        return std::string::npos;
    return nDot;
}

bool LFile::ApplyNewFileExtension(std::string& szPath, const std::string& szExt)
{
    size_t nDot = ExtensionDot(szPath);
    std::string szNew = (nDot == std::string::npos ? szPath : szPath.substr(0, nDot)) + szExt;
    if (szNew.size() >= kMaxPath) {
        LTRACE("LFile::_ApplyNewFileExtension path too long");
        return false;
    }
    szPath = szNew;
    return true;
}

bool LFile::FilePathCat(std::string& szOut, const std::string& szFolderPath, const std::string& szName)
{
    std::string szNew = szFolderPath;
    if (!szNew.empty() && szNew.back() != '/' && szNew.back() != '\\')
        szNew += '/';
    szNew += szName;
    if (szNew.size() >= kMaxPath) {
        LTRACE("LFile::FilePathCat szFolderPath too long");
        return false;
    }
    szOut = szNew;
    return true;
}

std::string LFile::FileNameOf(const std::string& szPath)
{
    size_t nSlash = szPath.find_last_of("/\\");
    return nSlash == std::string::npos ? szPath : szPath.substr(nSlash + 1);
}

std::string LFile::FolderOf(const std::string& szPath)
{
    size_t nSlash = szPath.find_last_of("/\\");
    return nSlash == std::string::npos ? std::string() : szPath.substr(0, nSlash + 1);
}

std::string LFile::ExtensionOf(const std::string& szPath)
{
    size_t nDot = ExtensionDot(szPath);
    if (nDot == std::string::npos)
        return std::string();
    std::string szExt = szPath.substr(nDot);
    for (char& c : szExt)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return szExt;
}

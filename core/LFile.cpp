#include "core/LFile.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/LTrace.h"

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

void LFile::Close()
{
    if (hFile >= 0) {
        ::close(hFile);
        hFile = -1;
    }
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
    if (hFile < 0 || nBytes <= 0)
        return 0;
    int64_t nDone = 0;
    auto* p = static_cast<const char*>(pBuffer);
    while (nDone < nBytes) {
        ssize_t n = ::write(hFile, p + nDone, static_cast<size_t>(nBytes - nDone));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        nDone += n;
    }
    return nDone;
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
    return std::rename(szFrom.c_str(), szTo.c_str()) == 0;
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

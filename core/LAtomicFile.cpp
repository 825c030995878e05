#include "core/LAtomicFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <system_error>

#include "core/LFile.h"
#include "core/LTrace.h"

namespace LAtomicFile {

namespace {

void SetReason(std::string* pszError, const std::string& sz)
{
    if (pszError)
        *pszError = sz;
}

std::string SystemReason(const char* szWhat, int nErr)
{
    return std::string(szWhat) + ": " + (nErr ? std::strerror(nErr) : "unknown reason");
}

// A name nobody can guess beforehand, so no one can place a file or a link there first.
std::string RandomPartName(const std::string& szPath)
{
    std::random_device random;
    const uint64_t nRandom = static_cast<uint64_t>(random()) << 32 | random();
    char szHex[17];
    std::snprintf(szHex, sizeof szHex, "%016llx", static_cast<unsigned long long>(nRandom));
    return "." + LFile::FileNameOf(szPath) + "." + szHex + ".part";
}

bool CreatePart(const std::string& szPath, LFile& file, std::string& szPart, std::string* pszError)
{
    int nErr = 0;
    for (int nTry = 0; nTry < 16; ++nTry) {
        if (!LFile::FilePathCat(szPart, LFile::FolderOf(szPath), RandomPartName(szPath))) {
            SetReason(pszError, "the path is too long");
            return false;
        }
        errno = 0;
        if (file.Open(szPart, LFile::CreateNew))
            return true;
        nErr = errno;
        if (nErr != EEXIST)
            break;
    }
    LTRACE("LAtomicFile::Write cannot create %s", szPart.c_str());
    SetReason(pszError, SystemReason("cannot create the file", nErr));
    return false;
}

bool MakeFolderOf(const std::string& szPath, std::string* pszError)
{
    const std::string szFolder = LFile::FolderOf(szPath);
    std::error_code ec;
    if (szFolder.empty() || std::filesystem::is_directory(szFolder, ec))
        return true;
    std::filesystem::create_directories(szFolder, ec);
    if (ec) {
        LTRACE("LAtomicFile::Write cannot make %s", szFolder.c_str());
        SetReason(pszError, "cannot make the folder " + szFolder + ": " + ec.message());
        return false;
    }
    return true;
}

// The new file keeps the old one's permissions: a private list stays private.
void KeepMode(const std::string& szPath, const std::string& szPart)
{
    struct stat st;
    if (::stat(szPath.c_str(), &st) == 0)
        ::chmod(szPart.c_str(), st.st_mode & 07777);
}

bool WritePart(LFile& file, const std::vector<uint8_t>& vBytes, std::string* pszError)
{
    const int64_t nSize = static_cast<int64_t>(vBytes.size());
    if (nSize && file.Write(vBytes.data(), nSize) != nSize) {
        SetReason(pszError, SystemReason("writing the file failed", LFile::GetLastError()));
        return false;
    }
    if (!file.Sync()) {
        SetReason(pszError, SystemReason("cannot flush the file to the disk", LFile::GetLastError()));
        return false;
    }
    if (!file.Close()) {
        SetReason(pszError, SystemReason("closing the file failed", LFile::GetLastError()));
        return false;
    }
    return true;
}

} // namespace

bool Write(const std::string& szPath, const std::vector<uint8_t>& vBytes, std::string* pszError, Folder folder)
{
    LFile::ClearLastError();
    if (szPath.empty()) {
        SetReason(pszError, "no file name");
        return false;
    }
    if (folder == MakeFolder && !MakeFolderOf(szPath, pszError))
        return false;
    LFile file;
    std::string szPart;
    if (!CreatePart(szPath, file, szPart, pszError))
        return false;
    KeepMode(szPath, szPart);
    if (!WritePart(file, vBytes, pszError)) {
        LTRACE("LAtomicFile::Write %s", szPart.c_str());
        file.Close();
        LFile::Delete(szPart);
        return false;
    }
    if (!LFile::Rename(szPart, szPath)) {
        LTRACE("LAtomicFile::Write cannot rename %s", szPart.c_str());
        SetReason(pszError, SystemReason("cannot replace the file", LFile::GetLastError()));
        LFile::Delete(szPart);
        return false;
    }
    if (!LFile::SyncFolder(LFile::FolderOf(szPath))) {
        SetReason(pszError, SystemReason("the file was written but its folder could not be flushed",
                                         LFile::GetLastError()));
        return false;
    }
    return true;
}

} // namespace LAtomicFile

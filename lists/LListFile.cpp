#include "lists/LListFile.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "core/LTrace.h"

namespace LListFile {

LListLoad Open(const std::string& szPath, LFile& file)
{
    return file.Open(szPath, LFile::ReadExisting) ? LListLoad::Loaded : LListLoad::Missing;
}

LListLoad ReadVersion(LByteReader& in, const char* szWho)
{
    uint8_t nVersion = 0xFF;
    if (!in.U8(nVersion) || nVersion != kVersion) {
        LTRACE("%s bad version", szWho);
        return LListLoad::BadVersion;
    }
    return LListLoad::Loaded;
}

LListLoad Damaged(size_t nRecord, const std::string& szWhy, std::string* pszWhy)
{
    const std::string sz = "record " + std::to_string(nRecord) + ": " + szWhy;
    LTRACE("LListFile::Damaged %s", sz.c_str());
    if (pszWhy)
        *pszWhy = sz;
    return LListLoad::Damaged;
}

std::string DamagedMessage(const std::string& szPath, const std::string& szWhy)
{
    return "The file \"" + szPath + "\" is damaged and was not loaded:\n" + szWhy + ".";
}

std::string SaveFailedMessage(const std::string& szPath, const std::string& szWhy)
{
    return "Unable to save \"" + szPath + "\":\n" + szWhy;
}

std::string LoadMessage(LListLoad result, const std::string& szPath, const std::string& szWhy)
{
    switch (result) {
    case LListLoad::Loaded: return std::string();
    case LListLoad::Missing: return kCannotCreateMessage;
    case LListLoad::BadVersion: return kVersionMessage;
    case LListLoad::Damaged: return DamagedMessage(szPath, szWhy);
    }
    return std::string();
}

bool KeepAside(const std::string& szPath, std::string* pszKeptAs, std::string* pszError)
{
    pszKeptAs->clear();
    for (int nTry = 1; nTry < 1000; ++nTry) {
        const std::string szTo = szPath + ".damaged" + (nTry == 1 ? std::string() : "-" + std::to_string(nTry));
        // A hard link never replaces an existing name, unlike a rename.
        if (::link(szPath.c_str(), szTo.c_str()) == 0) {
            if (::unlink(szPath.c_str()) != 0) {
                *pszError = std::strerror(errno);
                ::unlink(szTo.c_str());
                return false;
            }
            *pszKeptAs = szTo;
            return true;
        }
        if (errno == ENOENT)
            return true;
        if (errno != EEXIST) {
            *pszError = std::strerror(errno);
            return false;
        }
    }
    *pszError = "no free name to keep it under";
    return false;
}

std::string KeptAsideMessage(const std::string& szPath, const std::string& szKeptAs)
{
    return "The file \"" + szPath + "\" could not be loaded; it was kept as \"" + szKeptAs +
           "\" and a new one was saved.";
}

} // namespace LListFile

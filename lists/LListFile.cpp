#include "lists/LListFile.h"

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

} // namespace LListFile

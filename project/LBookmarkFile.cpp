#include "project/LBookmarkFile.h"

#include <algorithm>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "core/LAtomicFile.h"
#include "project/LBytes.h"

namespace LBookmarkFile {

std::string PathFor(const std::string& szAudioPath)
{
    std::string sz = szAudioPath;
    if (!LFile::ApplyNewFileExtension(sz, ".snm"))
        return std::string();
    return sz;
}

namespace {
Result Refuse(const std::string& szWhy, std::string* pszWhy)
{
    LTRACE("LBookmarkFile::Read %s", szWhy.c_str());
    if (pszWhy)
        *pszWhy = szWhy;
    return Damaged;
}
} // namespace

Result Read(LByteReader& in, std::vector<LEdBookMark>& vOut, std::string* pszWhy)
{
    uint8_t nVersion = 0;
    if (!in.U8(nVersion))
        return Refuse("the file is empty", pszWhy);
    if (nVersion != kVersion) {
        LTRACE("LBookmarkFile::Read version %u", nVersion);
        return BadVersion;
    }
    uint8_t nCount = 0;
    if (!in.U8(nCount))
        return Refuse("the file ends before its bookmark count", pszWhy);
    if (!in.HoldsRecords(nCount, LEdBookMark::kRecordSize))
        return Refuse("it counts " + std::to_string(nCount) + " bookmarks of 529 bytes but holds " +
                           std::to_string(in.Remaining()) + " bytes of them",
                       pszWhy);
    std::vector<LEdBookMark> vRead;
    for (unsigned i = 0; i < nCount; ++i) {
        LEdBookMark b;
        if (!b.Read(in))
            return Refuse("record " + std::to_string(i + 1) + ": cannot be read", pszWhy);
        if (b.sPosition < 0)
            return Refuse("record " + std::to_string(i + 1) + ": position " + std::to_string(b.sPosition) +
                               " is out of range",
                           pszWhy);
        vRead.push_back(b);
    }
    vOut.insert(vOut.end(), vRead.begin(), vRead.end());
    return Loaded;
}

Result Load(const std::string& szAudioPath, std::vector<LEdBookMark>& vOut, std::string* pszWhy)
{
    LFile file;
    const std::string szPath = PathFor(szAudioPath);
    if (szPath.empty() || !file.Open(szPath, LFile::ReadExisting))
        return NoFile;
    LByteReader in(file);
    return Read(in, vOut, pszWhy);
}

size_t CountOf(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll)
{
    size_t nMine = 0;
    for (const LEdBookMark& b : vAll)
        nMine += b.GetPath() == szAudioPath;
    return nMine;
}

std::vector<uint8_t> Serialize(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll)
{
    LByteWriter out;
    out.U8(kVersion);
    // Save refuses more than the count byte holds; the bytes never disagree with their count.
    const size_t nMine = std::min(CountOf(szAudioPath, vAll), kMaxBookmarks);
    out.U8(static_cast<uint8_t>(nMine));
    size_t nWritten = 0;
    for (const LEdBookMark& b : vAll)
        if (nWritten < nMine && b.GetPath() == szAudioPath) {
            b.Write(out);
            ++nWritten;
        }
    return out.Bytes();
}

bool Save(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll, std::string* pszError)
{
    const std::string szPath = PathFor(szAudioPath);
    if (szPath.empty()) {
        if (pszError)
            *pszError = "the path is too long";
        return false;
    }
    if (vAll.empty()) {
        if (LFile::Exists(szPath) && !LFile::Delete(szPath)) {
            if (pszError)
                *pszError = "cannot delete the empty list";
            return false;
        }
        return true;
    }
    if (CountOf(szAudioPath, vAll) > kMaxBookmarks) {
        LTRACE("LBookmarkFile::Save more than %zu bookmarks for %s", kMaxBookmarks, szAudioPath.c_str());
        if (pszError)
            *pszError = "a bookmark list holds at most 255 bookmarks; this file has " +
                        std::to_string(CountOf(szAudioPath, vAll));
        return false;
    }
    return LAtomicFile::Write(szPath, Serialize(szAudioPath, vAll), pszError);
}

} // namespace LBookmarkFile

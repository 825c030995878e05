#include "project/LBookmarkFile.h"

#include <algorithm>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "project/LAtomicFile.h"
#include "project/LBytes.h"

namespace LBookmarkFile {

std::string PathFor(const std::string& szAudioPath)
{
    std::string sz = szAudioPath;
    if (!LFile::ApplyNewFileExtension(sz, ".snm"))
        return std::string();
    return sz;
}

Result Read(LByteReader& in, std::vector<LEdBookMark>& vOut)
{
    uint8_t nVersion = 0;
    if (!in.U8(nVersion))
        return NoFile;
    if (nVersion != kVersion) {
        LTRACE("LBookmarkFile::Read version %u", nVersion);
        return BadVersion;
    }
    uint8_t nCount = 0;
    if (!in.U8(nCount))
        return Loaded;
    for (unsigned i = 0; i < nCount; ++i) {
        LEdBookMark b;
        if (!b.Read(in))
            break;
        vOut.push_back(b);
    }
    return Loaded;
}

Result Load(const std::string& szAudioPath, std::vector<LEdBookMark>& vOut)
{
    LFile file;
    const std::string szPath = PathFor(szAudioPath);
    if (szPath.empty() || !file.Open(szPath, LFile::ReadExisting))
        return NoFile;
    LByteReader in(file);
    return Read(in, vOut);
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

bool Save(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll)
{
    const std::string szPath = PathFor(szAudioPath);
    if (szPath.empty())
        return false;
    if (vAll.empty()) {
        if (LFile::Exists(szPath))
            return LFile::Delete(szPath);
        return true;
    }
    if (CountOf(szAudioPath, vAll) > kMaxBookmarks) {
        LTRACE("LBookmarkFile::Save more than %zu bookmarks for %s", kMaxBookmarks, szAudioPath.c_str());
        return false;
    }
    return LAtomicFile::Write(szPath, Serialize(szAudioPath, vAll));
}

} // namespace LBookmarkFile

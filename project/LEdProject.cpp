#include "project/LEdProject.h"

#include <set>

#include "core/LTrace.h"
#include "project/LBytes.h"

std::string LEdProject::FileKey(const LEdFileEntry& entry)
{
    const std::string szPath = entry.GetPath();
    return szPath.empty() ? entry.GetName() : szPath;
}

bool LEdProject::FitsCounts() const
{
    return vFiles.size() <= kMaxRecords && vBookmarks.size() <= kMaxRecords && vRegions.size() <= kMaxRecords;
}

bool LEdProject::Write(LByteWriter& out, const LCutListSerial::RefOut& mapRef, void (*fnStage)(void*, Stage),
                       void* pStageArg) const
{
    if (!FitsCounts()) {
        LTRACE("LEdProject::Write more than %zu records", kMaxRecords);
        return false;
    }
    if (fnStage)
        fnStage(pStageArg, StageFiles);
    out.U8(kVersion);
    out.U8(static_cast<uint8_t>(vFiles.size()));
    for (const LEdProjectFile& f : vFiles) {
        LEdFileEntry entry = f.entry;
        entry.SetAudioFolder(szAudioFolder);
        entry.Write(out);
        if (!LCutListSerial::Write(f.pDoc ? *f.pDoc : LCutListAudio(), out, mapRef))
            return false;
    }
    out.U8(nState);
    if (fnStage)
        fnStage(pStageArg, StageBookmarks);
    out.U8(static_cast<uint8_t>(vBookmarks.size()));
    // Grouped by file; a file open twice gets its bookmarks once.
    std::set<std::string> setDone;
    for (const LEdProjectFile& f : vFiles) {
        const std::string szKey = FileKey(f.entry);
        if (!setDone.insert(szKey).second)
            continue;
        for (const LEdBookMark& b : vBookmarks)
            if (b.GetPath() == szKey)
                b.Write(out);
    }
    if (fnStage)
        fnStage(pStageArg, StageRegions);
    out.U8(static_cast<uint8_t>(vRegions.size()));
    for (const LEdRegion& r : vRegions) {
        r.Write(out);
        if (!LCutListSerial::Write(r.pDoc ? *r.pDoc : LCutListAudio(), out, mapRef))
            return false;
    }
    return true;
}

const char* LEdProject::TakeAudioFolder(const std::string& szFolder)
{
    if (szFolder.empty())
        return nullptr;
    if (!LEdFileEntry::IsFolderName(szFolder))
        return "audio folder is not a folder beside the project";
    if (szAudioFolder.empty())
        szAudioFolder = szFolder;
    return szFolder == szAudioFolder ? nullptr : "file entries name different audio folders";
}

LEdProject::ReadResult LEdProject::Read(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string* pszWhy,
                                        void (*fnStage)(void*, Stage), void* pStageArg)
{
    vFiles.clear();
    szAudioFolder.clear();
    nState = kNoCurrentFile;
    vBookmarks.clear();
    vRegions.clear();
    auto damaged = [pszWhy](const std::string& szWhy) {
        LTRACE("LEdProject::Read %s", szWhy.c_str());
        if (pszWhy)
            *pszWhy = szWhy;
        return ReadDamaged;
    };
    uint8_t nVersion = 0;
    if (!in.U8(nVersion))
        return damaged("empty file");
    if (nVersion != kVersion)
        return ReadBadVersion;
    std::string szWhy;
    if (fnStage)
        fnStage(pStageArg, StageFiles);
    if (!ReadFiles(in, mapRef, szWhy))
        return damaged(szWhy);
    if (fnStage)
        fnStage(pStageArg, StageBookmarks);
    if (!ReadBookmarks(in, szWhy))
        return damaged(szWhy);
    if (fnStage)
        fnStage(pStageArg, StageRegions);
    if (!ReadRegions(in, mapRef, szWhy))
        return damaged(szWhy);
    // Bytes after the last region mean the counts do not describe this file.
    if (in.Remaining() != 0)
        return damaged(std::to_string(in.Remaining()) + " bytes after the last region");
    return ReadDone;
}

bool LEdProject::ReadFiles(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string& szWhy)
{
    uint8_t nFiles = 0;
    if (!in.U8(nFiles)) {
        szWhy = "no file count";
        return false;
    }
    for (unsigned i = 0; i < nFiles; ++i) {
        LEdProjectFile f;
        f.pDoc = new LCutListAudio;
        std::string szDocWhy;
        if (!f.entry.Read(in)) {
            szWhy = "file entry cut short";
            return false;
        }
        if (const char* szBad = TakeAudioFolder(f.entry.GetAudioFolder())) {
            szWhy = szBad;
            return false;
        }
        if (!LCutListSerial::Read(in, *f.pDoc, mapRef, &szDocWhy)) {
            szWhy = szDocWhy;
            return false;
        }
        vFiles.push_back(std::move(f));
    }
    if (!in.U8(nState)) {
        szWhy = "no state";
        return false;
    }
    return true;
}

bool LEdProject::ReadBookmarks(LByteReader& in, std::string& szWhy)
{
    uint8_t nBookmarks = 0;
    if (!in.U8(nBookmarks)) {
        szWhy = "no bookmark count";
        return false;
    }
    for (unsigned i = 0; i < nBookmarks; ++i) {
        LEdBookMark b;
        if (!b.Read(in)) {
            szWhy = "bookmark " + std::to_string(i + 1) + " cut short";
            return false;
        }
        vBookmarks.push_back(b);
    }
    return true;
}

bool LEdProject::ReadRegions(LByteReader& in, const LCutListSerial::RefIn& mapRef, std::string& szWhy)
{
    uint8_t nRegions = 0;
    if (!in.U8(nRegions)) {
        szWhy = "no region count";
        return false;
    }
    for (unsigned i = 0; i < nRegions; ++i) {
        LEdRegion r;
        std::string szDocWhy;
        if (!r.Read(in)) {
            szWhy = "region cut short";
            return false;
        }
        if (!LCutListSerial::Read(in, *r.pDoc, mapRef, &szDocWhy)) {
            szWhy = szDocWhy;
            return false;
        }
        vRegions.push_back(std::move(r));
    }
    return true;
}

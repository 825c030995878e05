#include "project/LProjectSegments.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "core/LTrace.h"

namespace {
constexpr uint16_t kSilent = LAudioCutTank::kSilentRef;

// "123.aud" -> 123; false for anything else.
bool NumberOf(const std::string& szName, uint16_t& n)
{
    const size_t nDot = szName.find('.');
    if (nDot == 0 || nDot == std::string::npos || nDot > 5 || szName.substr(nDot) != ".aud")
        return false;
    const std::string szDigits = szName.substr(0, nDot);
    if (szDigits.find_first_not_of("0123456789") != std::string::npos)
        return false;
    const unsigned long v = std::stoul(szDigits);
    if (v >= kSilent)
        return false;
    n = static_cast<uint16_t>(v);
    return true;
}
} // namespace

LProjectSegments::LProjectSegments(const std::string& szNewFolder) : szFolder(szNewFolder)
{
    if (!szFolder.empty() && szFolder.back() != '/')
        szFolder += '/';
}

LProjectSegments::~LProjectSegments()
{
    for (const auto& [nTank, nStored] : mapByTank)
        LAudioCutTank::Instance().DecRef(nTank);
}

std::string LProjectSegments::FolderFor(const std::string& szProjectPath)
{
    const std::filesystem::path path(szProjectPath);
    std::filesystem::path folder = path.parent_path() / (path.stem().string() + "_audio");
    return folder.string() + "/";
}

std::string LProjectSegments::NewFolderFor(const std::string& szProjectPath)
{
    const std::filesystem::path path(szProjectPath);
    std::string szStem = path.stem().string();
    // Room for the suffixes within what a project's file entries can record; a cut inside a
    // multi-byte character is moved back to its start.
    if (szStem.size() > kMaxStem) {
        size_t n = kMaxStem;
        while (n > 0 && (static_cast<unsigned char>(szStem[n]) & 0xC0) == 0x80)
            --n;
        szStem.resize(n);
    }
    for (int i = 1; i < 1000; ++i) {
        const std::string szName = szStem + "_audio" + (i == 1 ? std::string() : "_" + std::to_string(i));
        const std::filesystem::path folder = path.parent_path() / szName;
        // A folder that exists, even empty, may be another project's: it is never shared.
        std::error_code ec;
        if (!std::filesystem::exists(folder, ec) && !ec)
            return folder.string() + "/";
    }
    return FolderFor(szProjectPath);
}

std::string LProjectSegments::NameBeside(const std::string& szProjectPath) const
{
    std::error_code ec;
    const std::filesystem::path folder =
        std::filesystem::absolute(std::filesystem::path(szFolder).parent_path(), ec).lexically_normal();
    const std::filesystem::path project =
        std::filesystem::absolute(std::filesystem::path(szProjectPath), ec).lexically_normal();
    if (ec || folder.parent_path() != project.parent_path())
        return std::string();
    return folder.filename().string();
}

std::string LProjectSegments::StoredPath(uint16_t nStored, const char* szExt) const
{
    return szFolder + std::to_string(nStored) + szExt;
}

bool LProjectSegments::Place(const std::string& szFrom, const std::string& szTo)
{
    // Whatever had the name before goes first: a link must never write through to another file.
    ::unlink(szTo.c_str());
    const bool bSamples = szTo.size() > 4 && szTo.compare(szTo.size() - 4, 4, ".aud") == 0;
    if (::link(szFrom.c_str(), szTo.c_str()) == 0) {
        nLinked += bSamples;
        return true;
    }
    std::error_code ec;
    const std::string szPart = szTo + ".part";
    std::filesystem::copy_file(szFrom, szPart, std::filesystem::copy_options::overwrite_existing, ec);
    if (ec || !LFile::Rename(szPart, szTo)) {
        LTRACE("LProjectSegments::Place cannot copy %s to %s", szFrom.c_str(), szTo.c_str());
        ::unlink(szPart.c_str());
        return false;
    }
    nCopied += bSamples;
    return true;
}

void LProjectSegments::ScanFolder()
{
    if (bScanned)
        return;
    bScanned = true;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(szFolder, ec), end; !ec && it != end; it.increment(ec)) {
        uint16_t n = 0;
        if (NumberOf(it->path().filename().string(), n))
            setOnDisk.insert(n);
    }
}

uint16_t LProjectSegments::NewNumber()
{
    ScanFolder();
    for (uint32_t n = nNextNumber; n < kSilent; ++n) {
        const auto v = static_cast<uint16_t>(n);
        if (!setOnDisk.count(v) && !mapByStored.count(v)) {
            nNextNumber = static_cast<uint16_t>(n + 1);
            return v;
        }
    }
    for (uint32_t n = 0; n < nNextNumber; ++n) {
        const auto v = static_cast<uint16_t>(n);
        if (!setOnDisk.count(v) && !mapByStored.count(v))
            return v;
    }
    return kSilent;
}

void LProjectSegments::BeginSave()
{
    // The folder is claimed at once, so that no new project picks the same one.
    std::error_code ec;
    bCreatedFolder = std::filesystem::create_directories(szFolder, ec) || bCreatedFolder;
    setUsed.clear();
    nLinked = 0;
    nCopied = 0;
}

bool LProjectSegments::Keep(uint16_t nTankRef, uint16_t& nStored)
{
    LAudioCutTank& tank = LAudioCutTank::Instance();
    auto it = mapByTank.find(nTankRef);
    if (it != mapByTank.end()) {
        nStored = it->second;
        setUsed.insert(nStored);
        if (LFile::Exists(StoredPath(nStored, ".aud")))
            return true;
        // Someone removed it from the folder: place it again under the same number.
        if (!Place(tank.GetAudFilePath(nTankRef), StoredPath(nStored, ".aud")))
            return false;
        Place(tank.GetGrfFilePath(nTankRef), StoredPath(nStored, ".grf"));
        return true;
    }
    const std::string szAud = tank.GetAudFilePath(nTankRef);
    if (!LFile::Exists(szAud)) {
        // Its audio was already lost (it reads as silence); it stays silence.
        nStored = kSilent;
        return true;
    }
    std::error_code ec;
    std::filesystem::create_directories(szFolder, ec);
    uint16_t nNew = NewNumber();
    // A file that appeared since the folder was scanned is someone else's.
    while (nNew != kSilent && LFile::Exists(StoredPath(nNew, ".aud"))) {
        setOnDisk.insert(nNew);
        nNew = NewNumber();
    }
    if (nNew == kSilent) {
        LTRACE("LProjectSegments::Keep no free number");
        return false;
    }
    if (!Place(szAud, StoredPath(nNew, ".aud")))
        return false;
    if (LFile::Exists(tank.GetGrfFilePath(nTankRef)))
        Place(tank.GetGrfFilePath(nTankRef), StoredPath(nNew, ".grf"));
    tank.IncRef(nTankRef);
    mapByTank[nTankRef] = nNew;
    mapByStored[nNew] = nTankRef;
    setOnDisk.insert(nNew);
    setUsed.insert(nNew);
    nStored = nNew;
    return true;
}

void LProjectSegments::EndSave(bool bSucceeded)
{
    if (!bSucceeded) {
        // The old project file may still name every file placed; a folder made for nothing goes.
        std::error_code ec;
        if (bCreatedFolder && std::filesystem::is_empty(szFolder, ec) && std::filesystem::remove(szFolder, ec))
            bCreatedFolder = false;
        return;
    }
    bCreatedFolder = false;
    // Only files this store placed or brought in for this project are removed: anything else in
    // the folder may belong to another project.
    for (auto it = mapByTank.begin(); it != mapByTank.end();) {
        const uint16_t nStored = it->second;
        if (setUsed.count(nStored)) {
            ++it;
            continue;
        }
        mapByStored.erase(nStored);
        LAudioCutTank::Instance().DecRef(it->first);
        it = mapByTank.erase(it);
        LFile::Delete(StoredPath(nStored, ".aud"));
        LFile::Delete(StoredPath(nStored, ".grf"));
        setOnDisk.erase(nStored);
    }
}

std::string LProjectSegments::DescribeMissing() const
{
    if (vMissing.empty())
        return std::string();
    std::error_code ec;
    if (!std::filesystem::is_directory(szFolder, ec))
        return "its audio folder " + szFolder + " is missing";
    std::string sz = "audio missing from " + szFolder + ":";
    const size_t nShown = std::min<size_t>(vMissing.size(), 5);
    for (size_t i = 0; i < nShown; ++i)
        sz += (i ? ", " : " ") + std::to_string(vMissing[i]) + ".aud";
    if (vMissing.size() > nShown)
        sz += " and " + std::to_string(vMissing.size() - nShown) + " more";
    return sz;
}

uint16_t LProjectSegments::Restore(uint16_t nStored)
{
    LAudioCutTank& tank = LAudioCutTank::Instance();
    if (nStored == kSilent)
        return kSilent;
    auto it = mapByStored.find(nStored);
    if (it != mapByStored.end()) {
        tank.IncRef(it->second);
        return it->second;
    }
    const std::string szAud = StoredPath(nStored, ".aud");
    if (!LFile::Exists(szAud)) {
        LTRACE("LProjectSegments::Restore segment %u missing", nStored);
        vMissing.push_back(nStored);
        return kSilent;
    }
    bool bClaimed = false;
    const uint16_t nTank = tank.GetNewRefAndIncRef(&bClaimed);
    if (!bClaimed) {
        vMissing.push_back(nStored);
        return kSilent;
    }
    if (!Place(szAud, tank.GetAudFilePath(nTank))) {
        tank.DecRef(nTank);
        vMissing.push_back(nStored);
        return kSilent;
    }
    const std::string szGrf = StoredPath(nStored, ".grf");
    if (LFile::Exists(szGrf))
        Place(szGrf, tank.GetGrfFilePath(nTank));
    mapByTank[nTank] = nStored;
    mapByStored[nStored] = nTank;
    tank.IncRef(nTank); // the caller's; the store keeps the first
    return nTank;
}

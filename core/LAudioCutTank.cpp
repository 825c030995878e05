#include "core/LAudioCutTank.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unistd.h>

#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTempFolder.h"
#include "core/LTrace.h"

namespace {
// The program's tank is never destroyed (documents held by other statics may still release
// references late at exit); its folder is swept when static objects go.
struct TankSweeper
{
    LAudioCutTank* pTank;
    ~TankSweeper() { pTank->Sweep(); }
};

std::string WithSeparator(std::string szFolder)
{
    if (!szFolder.empty() && szFolder.back() != '/')
        szFolder += '/';
    return szFolder;
}

std::string CacheBase()
{
    const char* szXdg = std::getenv("XDG_CACHE_HOME");
    if (szXdg && szXdg[0] == '/')
        return szXdg;
    const char* szHome = std::getenv("HOME");
    if (szHome && szHome[0] == '/')
        return std::string(szHome) + "/.cache";
    return LTempFolder::Path();
}

bool IsSegmentFile(const std::filesystem::path& path)
{
    const std::string szExt = path.extension().string();
    return szExt == ".aud" || szExt == ".grf";
}
} // namespace

LAudioCutTank& LAudioCutTank::Instance()
{
    static LAudioCutTank* pTank = new LAudioCutTank();
    static TankSweeper sweeper{pTank};
    return *pTank;
}

LAudioCutTank::LAudioCutTank() : bOwnsFolder(true) {}

LAudioCutTank::LAudioCutTank(const std::string& szFolder) : szChosenFolder(WithSeparator(szFolder)) {}

LAudioCutTank::~LAudioCutTank()
{
    Sweep();
}

std::string LAudioCutTank::DefaultBase()
{
    std::string szBase = LSettings::GetString("Folders", "WorkingFolder");
    if (szBase.empty())
        szBase = CacheBase() + "/sonitra";
    return WithSeparator(szBase);
}

std::string LAudioCutTank::DefaultFolder()
{
    const std::string szBase = DefaultBase();
    const std::string szPrefix = FolderPrefix();
    SweepAbandoned(szBase, szPrefix);
    return WithSeparator(szBase + szPrefix + std::to_string(::getpid()));
}

std::string LAudioCutTank::FolderPrefix()
{
    char szHost[256] = {};
    if (::gethostname(szHost, sizeof(szHost) - 1) != 0)
        szHost[0] = '\0';
    return std::string("segments-") + szHost + "-";
}

void LAudioCutTank::SweepAbandoned(const std::string& szBase, const std::string& szPrefix)
{
    // The folders of this machine's earlier runs that ended without sweeping (killed, crashed).
    std::error_code ec;
    for (std::filesystem::directory_iterator it(szBase, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string szName = it->path().filename().string();
        if (szName.compare(0, szPrefix.size(), szPrefix) != 0)
            continue;
        const std::string szPid = szName.substr(szPrefix.size());
        if (szPid.empty() || szPid.size() > 9 || szPid.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const pid_t pid = static_cast<pid_t>(std::stol(szPid));
        if (pid == ::getpid() || ::kill(pid, 0) == 0 || errno != ESRCH)
            continue;
        if (LFile::Exists((it->path() / kKeepMarker).string()))
            continue; // the editor offers to recover it, and sweeps it then
        LTRACE("LAudioCutTank::SweepAbandoned %s", szName.c_str());
        auto pAbandoned = std::make_unique<LAudioCutTank>(it->path().string());
        pAbandoned->bOwnsFolder = true;
        pAbandoned->GetWorkingFolder();
    } // each one sweeps its folder and removes it as it goes
}

std::string LAudioCutTank::GetWorkingFolder()
{
    std::lock_guard<std::mutex> lock(mtxFolder);
    if (!bFolderReady) {
        szWorkingFolder = szChosenFolder.empty() ? DefaultFolder() : szChosenFolder;
        std::error_code ec;
        std::filesystem::create_directories(szWorkingFolder, ec);
        if (ec)
            LTRACE("LAudioCutTank::GetWorkingFolder cannot create %s", szWorkingFolder.c_str());
        else if (bOwnsFolder && szChosenFolder.empty())
            std::filesystem::permissions(szWorkingFolder, std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::replace, ec);
        bFolderReady = true;
    }
    return szWorkingFolder;
}

uint16_t LAudioCutTank::GetNewRefAndIncRef(bool* pbClaimed)
{
    std::lock_guard<std::mutex> lock(mtxCounts);
    for (uint32_t n = 0; n < kSilentRef; ++n) {
        if (vCounts[n] == 0) {
            vCounts[n] = 1;
            static std::atomic<uint64_t> nNextSerial{1};
            vSerials[n] = nNextSerial++;
            if (pbClaimed)
                *pbClaimed = true;
            return static_cast<uint16_t>(n);
        }
    }
    if (pbClaimed)
        *pbClaimed = false;
    LTRACE("LAudioCutTank::GetNewRefAndIncRef() NO MORE FREE CUTS!!!!");
    return 0;
}

uint64_t LAudioCutTank::GetSerial(uint16_t nRef)
{
    if (nRef == kSilentRef)
        return 0;
    std::lock_guard<std::mutex> lock(mtxCounts);
    return vCounts[nRef] ? vSerials[nRef] : 0;
}

void LAudioCutTank::IncRef(uint16_t nRef)
{
    if (nRef == kSilentRef)
        return;
    std::lock_guard<std::mutex> lock(mtxCounts);
    if (vCounts[nRef] < kMaxCount)
        ++vCounts[nRef];
    else
        vPinned[nRef] = true;
}

void LAudioCutTank::DecRef(uint16_t nRef)
{
    if (nRef == kSilentRef)
        return;
    std::lock_guard<std::mutex> lock(mtxCounts);
    if (vPinned[nRef]) {
        // More references may be out than the count remembers: keep the files and the number.
        if (vCounts[nRef] > 1)
            --vCounts[nRef];
        return;
    }
    if (vCounts[nRef] < 2) {
        // Deleted under the lock, so that the number cannot be handed out again while its old
        // files still exist.
        DeleteSegmentFiles(nRef);
        vCounts[nRef] = 0;
    } else {
        --vCounts[nRef];
    }
}

bool LAudioCutTank::IsPinned(uint16_t nRef)
{
    std::lock_guard<std::mutex> lock(mtxCounts);
    return vPinned[nRef];
}

uint16_t LAudioCutTank::GetRefCount(uint16_t nRef)
{
    std::lock_guard<std::mutex> lock(mtxCounts);
    return vCounts[nRef];
}

int32_t LAudioCutTank::CountUsedRefs()
{
    std::lock_guard<std::mutex> lock(mtxCounts);
    int32_t nUsed = 0;
    for (uint32_t n = 0; n < kSilentRef; ++n)
        nUsed += vCounts[n] != 0;
    return nUsed;
}

void LAudioCutTank::DeleteSegmentFiles(uint16_t nRef)
{
    LFile::Delete(SegmentPath(nRef, ".aud"));
    LFile::Delete(SegmentPath(nRef, ".grf"));
}

std::string LAudioCutTank::SegmentPath(uint16_t nRef, const char* szExt)
{
    std::string szPath;
    if (!LFile::FilePathCat(szPath, GetWorkingFolder(), std::to_string(nRef) + szExt))
        return std::string();
    return szPath;
}

std::string LAudioCutTank::GetAudFilePath(uint16_t nRef)
{
    if (nRef == kSilentRef) {
        LTRACE("LAudioCutTank::GetAudFilePath called on a silent segment");
        return std::string();
    }
    return SegmentPath(nRef, ".aud");
}

std::string LAudioCutTank::GetGrfFilePath(uint16_t nRef)
{
    if (nRef == kSilentRef) {
        LTRACE("LAudioCutTank::GetGrfFilePath called on a silent segment");
        return std::string();
    }
    return SegmentPath(nRef, ".grf");
}

bool LAudioCutTank::Sweep()
{
    {
        // Pinned segments go with the sweep, and their numbers with them.
        std::lock_guard<std::mutex> lock(mtxCounts);
        for (uint32_t n = 0; n < kSilentRef; ++n) {
            if (vPinned[n]) {
                vPinned[n] = false;
                vCounts[n] = 0;
            }
        }
    }
    std::string szFolder;
    {
        std::lock_guard<std::mutex> lock(mtxFolder);
        if (!bFolderReady)
            return true;
        szFolder = szWorkingFolder;
    }
    bool bAllGone = true;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(szFolder, ec), end; !ec && it != end; it.increment(ec)) {
        if (!IsSegmentFile(it->path()))
            continue;
        if (!LFile::Delete(it->path().string())) {
            LTRACE("LAudioCutTank::~LAudioCutTank() Delete File FAILED");
            bAllGone = false;
        }
    }
    if (bOwnsFolder) {
        std::filesystem::remove(szFolder, ec); // only when empty; a folder with other files stays
        std::lock_guard<std::mutex> lock(mtxFolder);
        bFolderReady = false; // made again should another segment come
    }
    return bAllGone;
}

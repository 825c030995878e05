// Writing audio discs through libburn: disc-at-once, with the image's gaps as index 0 and its
// titles as CD-TEXT.
#include <libburn/libburn.h>
using namespace burn; // the header wraps its C interface in a namespace for C++

#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "cd/LCdDevice.h"
#include "core/LTrace.h"
#include "work/LProgressDialog.h"

namespace {

int32_t Fail(std::string* pszError, const std::string& szText)
{
    LTRACE("LCdDisc::Burn %s", szText.c_str());
    if (pszError)
        *pszError = szText;
    return LProgressDialog::ResultError;
}

// The drives libburn holds while a disc is written, released on every way out.
struct LBurnSession
{
    burn_drive_info* pInfos = nullptr;
    burn_drive* pDrive = nullptr;
    burn_disc* pDisc = nullptr;
    burn_write_opts* pOpts = nullptr;
    std::vector<burn_track*> vTracks;
    std::vector<burn_source*> vSources;
    std::vector<int> vFds;
    bool bStarted = false;

    ~LBurnSession()
    {
        if (pOpts)
            burn_write_opts_free(pOpts);
        for (burn_source* p : vSources)
            burn_source_free(p);
        for (burn_track* p : vTracks)
            burn_track_free(p);
        if (pDisc)
            burn_disc_free(pDisc);
        for (int fd : vFds)
            close(fd);
        if (pDrive)
            burn_drive_release(pDrive, 0);
        if (pInfos)
            burn_drive_info_free(pInfos);
        if (bStarted)
            burn_finish();
    }
};

bool GrabWriter(LBurnSession& s, const std::string& szDevice)
{
    if (!szDevice.empty()) {
        char szAddress[BURN_DRIVE_ADR_LEN] = {};
        if (burn_drive_convert_fs_adr(const_cast<char*>(szDevice.c_str()), szAddress) <= 0)
            return false;
        if (burn_drive_scan_and_grab(&s.pInfos, szAddress, 1) <= 0 || !s.pInfos)
            return false;
        s.pDrive = s.pInfos[0].drive;
        return true;
    }
    unsigned int nDrives = 0;
    // The scan runs in the library's own thread: it is asked again until it has finished.
    int nScan = 0;
    while ((nScan = burn_drive_scan(&s.pInfos, &nDrives)) == 0)
        usleep(20000);
    if (nScan < 0 || !s.pInfos)
        return false;
    for (unsigned int i = 0; i < nDrives; ++i) {
        if (s.pInfos[i].write_cdr && burn_drive_grab(s.pInfos[i].drive, 1) > 0) {
            s.pDrive = s.pInfos[i].drive;
            return true;
        }
    }
    return false;
}

void SetText(burn_track* pTrack, int nPack, const std::string& szText)
{
    if (szText.empty())
        return;
    std::vector<unsigned char> v(szText.begin(), szText.end());
    v.push_back(0);
    burn_track_set_cdtext(pTrack, 0, nPack, nullptr, v.data(), static_cast<int>(v.size()), 0);
}

bool AddTrack(LBurnSession& s, burn_session* pSession, const LCdLayoutTrack& t, const std::string& szBinPath)
{
    const int fd = open(szBinPath.c_str(), O_RDONLY);
    if (fd < 0)
        return false;
    s.vFds.push_back(fd);
    const off_t nOffset = static_cast<off_t>(t.lsnGap) * LCd::kBytesPerSector;
    const off_t nBytes = static_cast<off_t>(t.lsnStart - t.lsnGap + t.nSectors) * LCd::kBytesPerSector;
    if (lseek(fd, nOffset, SEEK_SET) != nOffset)
        return false;
    burn_track* pTrack = burn_track_create();
    s.vTracks.push_back(pTrack);
    burn_track_define_data(pTrack, 0, 0, 1, BURN_AUDIO);
    burn_source* pSource = burn_fd_source_new(fd, -1, nBytes);
    if (!pSource)
        return false;
    s.vSources.push_back(pSource);
    if (burn_track_set_source(pTrack, pSource) != BURN_SOURCE_OK)
        return false;
    // The image's silence before a track is written as that track's index 0, as the cue sheet says.
    if (t.lsnStart > t.lsnGap) {
        burn_track_set_index(pTrack, 0, 0, 0);
        burn_track_set_index(pTrack, 1, static_cast<unsigned int>(t.lsnStart - t.lsnGap), 0);
    }
    SetText(pTrack, 0x80, t.szTitle);
    SetText(pTrack, 0x81, t.szPerformer);
    return burn_session_add_track(pSession, pTrack, BURN_POS_END) > 0;
}

std::string CheckMedium(LBurnSession& s, const LCdLayout& layout)
{
    switch (burn_disc_get_status(s.pDrive)) {
    case BURN_DISC_BLANK:
        break;
    case BURN_DISC_EMPTY:
        return "There is no disc in the CD writer";
    default:
        return "The disc in the CD writer is not blank (it is written or closed)";
    }
    const off_t nFree = burn_disc_available_space(s.pDrive, s.pOpts);
    const int64_t nNeeded = static_cast<int64_t>(layout.TotalSectors() + LCd::kLeadInSectors) * 2048;
    if (nFree > 0 && nFree < nNeeded)
        return "The tracks do not fit on the disc in the CD writer";
    return {};
}

int32_t WaitForWriter(LProgressDialog& dlg, burn_drive* pDrive)
{
    bool bCancelled = false;
    burn_progress progress{};
    while (burn_drive_get_status(pDrive, &progress) != BURN_DRIVE_IDLE) {
        if (progress.sectors > 0)
            dlg.SetProgress(static_cast<double>(progress.sector) / progress.sectors);
        if (!bCancelled && !dlg.WaitTimed(200)) {
            burn_drive_cancel(pDrive);
            bCancelled = true;
        }
        if (bCancelled)
            usleep(100000);
    }
    if (bCancelled)
        return LProgressDialog::ResultCancelled;
    return burn_drive_wrote_well(pDrive) ? LProgressDialog::ResultDone : LProgressDialog::ResultError;
}

} // namespace

bool LCdDisc::FindWriter(const std::string& szDevice, std::string* pszError)
{
    LBurnSession s;
    if (!burn_initialize())
        return Fail(pszError, "Cannot start the CD writing library") == LProgressDialog::ResultDone;
    s.bStarted = true;
    burn_msgs_set_severities(const_cast<char*>("NEVER"), const_cast<char*>("NEVER"), const_cast<char*>("libburn: "));
    if (!GrabWriter(s, szDevice))
        return Fail(pszError, "No CD writer found") == LProgressDialog::ResultDone;
    return true;
}

int32_t LCdDisc::Burn(LProgressDialog& dlg, const LCdBurnOptions& options, const LCdLayout& layout,
                      const std::string& szBinPath, std::string* pszError)
{
    if (layout.vTracks.empty())
        return Fail(pszError, "No tracks to write");
    dlg.SetText(options.bSimulate ? "Simulating the disc write" : "Writing the disc", 0);
    dlg.SetText("Looking for a CD writer...", 1);
    LBurnSession s;
    if (!burn_initialize())
        return Fail(pszError, "Cannot start the CD writing library");
    s.bStarted = true;
    burn_msgs_set_severities(const_cast<char*>("NEVER"), const_cast<char*>("NEVER"), const_cast<char*>("libburn: "));
    if (!GrabWriter(s, options.szDevice))
        return Fail(pszError, "No CD writer found");
    s.pOpts = burn_write_opts_new(s.pDrive);
    burn_write_opts_set_write_type(s.pOpts, BURN_WRITE_SAO, BURN_BLOCK_SAO);
    burn_write_opts_set_simulate(s.pOpts, options.bSimulate ? 1 : 0);
    burn_write_opts_set_underrun_proof(s.pOpts, 1);
    const std::string szMedium = CheckMedium(s, layout);
    if (!szMedium.empty())
        return Fail(pszError, szMedium);
    s.pDisc = burn_disc_create();
    burn_session* pSession = burn_session_create();
    burn_disc_add_session(s.pDisc, pSession, BURN_POS_END);
    burn_session_free(pSession); // the disc holds its own reference
    for (const LCdLayoutTrack& t : layout.vTracks)
        if (!AddTrack(s, pSession, t, szBinPath))
            return Fail(pszError, "Cannot read the disc image " + szBinPath);
    auto setSessionText = [&](int nPack, const std::string& sz) {
        if (sz.empty())
            return;
        std::vector<unsigned char> v(sz.begin(), sz.end());
        v.push_back(0);
        burn_session_set_cdtext(pSession, 0, nPack, nullptr, v.data(), static_cast<int>(v.size()), 0);
    };
    setSessionText(0x80, layout.szAlbum);
    setSessionText(0x81, layout.szPerformer);
    burn_drive_set_speed(s.pDrive, 0, options.nSpeed > 0 ? options.nSpeed * 176 : 0);
    dlg.SetText("Please wait...", 1);
    burn_disc_write(s.pOpts, s.pDisc);
    const int32_t nResult = WaitForWriter(dlg, s.pDrive);
    if (nResult == LProgressDialog::ResultError)
        return Fail(pszError, "The CD writer reported an error while writing");
    return nResult;
}

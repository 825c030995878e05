// Reading drives and disc images through libcdio, and error-corrected reading through paranoia.
#include <cdio/cdio.h>
#include <cdio/cdtext.h>
#include <cdio/logging.h>
#include <cdio/paranoia/cdda.h>
#include <cdio/paranoia/paranoia.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <atomic>
#include <cctype>
#include <cstring>
#include <mutex>

#include "cd/LCdDevice.h"
#include "cd/LCdSheetCheck.h"
#include "cd/LCdTocPaths.h"
#include "core/LTrace.h"

namespace {

// The libraries' own messages go to the trace, never to the user's terminal.
void QuietLog(cdio_log_level_t level, const char szMessage[])
{
    LTRACE("LCdDisc libcdio %d %s", static_cast<int>(level), szMessage);
}

void QuietLibraries()
{
    static std::once_flag once;
    std::call_once(once, [] { cdio_log_set_handler(QuietLog); });
}

std::string Lower(std::string sz)
{
    std::transform(sz.begin(), sz.end(), sz.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return sz;
}

driver_id_t DriverFor(const std::string& szPath)
{
    const std::string szLower = Lower(szPath);
    auto ends = [&](const char* szExt) {
        const size_t n = std::strlen(szExt);
        return szLower.size() > n && szLower.compare(szLower.size() - n, n, szExt) == 0;
    };
    if (ends(".cue"))
        return DRIVER_BINCUE;
    if (ends(".toc"))
        return DRIVER_CDRDAO;
    return DRIVER_DEVICE;
}

std::string CdText(cdtext_t* pText, cdtext_field_t field, track_t nTrack)
{
    if (!pText)
        return {};
    const char* sz = cdtext_get_const(pText, field, nTrack);
    return sz ? std::string(sz) : std::string();
}

// A sheet whole, or false when it cannot be read (or is far too long to be one).
bool ReadSheet(const std::string& szPath, std::string& szText)
{
    std::ifstream in(szPath, std::ios::binary);
    if (!in)
        return false;
    szText.assign(LCdSheetCheck::kMaxSheet + 1, '\0');
    in.read(szText.data(), static_cast<std::streamsize>(szText.size()));
    szText.resize(static_cast<size_t>(in.gcount()));
    return true;
}

// A .toc file is read through a copy whose file names are absolute; the reader has read it all
// once cdio_open returns, so the copy goes at once.
CdIo_t* OpenToc(const std::string& szPath, const std::string& szText)
{
    std::error_code ec;
    const std::string szFolder = std::filesystem::absolute(std::filesystem::path(szPath), ec).parent_path().string();
    const std::string szResolved = LCdTocPaths::Resolve(szText, szFolder);
    std::string szTemp = (std::filesystem::temp_directory_path(ec) / "sonitra-toc-XXXXXX.toc").string();
    const int fd = mkstemps(szTemp.data(), 4);
    if (fd < 0)
        return nullptr;
    const bool bWritten = write(fd, szResolved.data(), szResolved.size()) == static_cast<ssize_t>(szResolved.size());
    close(fd);
    CdIo_t* pCdio = bWritten ? cdio_open(szTemp.c_str(), DRIVER_CDRDAO) : nullptr;
    unlink(szTemp.c_str());
    return pCdio;
}

// Null on failure, with what was wrong with an image's sheet in szReason.
CdIo_t* OpenCdio(const std::string& szPath, std::string& szReason)
{
    const driver_id_t driver = DriverFor(szPath);
    if (driver == DRIVER_DEVICE)
        return cdio_open(szPath.c_str(), driver);
    std::string szText;
    if (!ReadSheet(szPath, szText)) {
        szReason = "it cannot be opened";
        return nullptr;
    }
    const bool bToc = driver == DRIVER_CDRDAO;
    if (!(bToc ? LCdSheetCheck::CheckToc(szText, szReason) : LCdSheetCheck::CheckCue(szText, szReason)))
        return nullptr;
    return bToc ? OpenToc(szPath, szText) : cdio_open(szPath.c_str(), driver);
}

thread_local LCdReadCounts* pCallbackCounts = nullptr;

void ParanoiaCallback(long, paranoia_cb_mode_t mode)
{
    if (!pCallbackCounts)
        return;
    switch (mode) {
    case PARANOIA_CB_FIXUP_EDGE:
    case PARANOIA_CB_FIXUP_ATOM:
    case PARANOIA_CB_FIXUP_DROPPED:
    case PARANOIA_CB_FIXUP_DUPED:
        ++pCallbackCounts->nCorrected;
        break;
    case PARANOIA_CB_SKIP:
    case PARANOIA_CB_READERR:
        ++pCallbackCounts->nUncorrectable;
        break;
    default:
        break;
    }
}

} // namespace

struct LCdDisc::Impl
{
    std::string szPath;
    CdIo_t* pCdio = nullptr;
    std::mutex mtx; // the handle and the counts are shared by every source of the disc
    LCdReadCounts counts;

    ~Impl()
    {
        if (pCdio)
            cdio_destroy(pCdio);
    }
};

namespace {

constexpr int32_t kCacheSectors = 26; // one fast read; a drive's usual transfer limit

// A stretch of sectors as a 44100 Hz stereo source.
class LSRCCdSectors : public LSoundSourceBase
{
public:
    LSRCCdSectors(std::shared_ptr<LCdDisc::Impl> pDisc, int32_t lsnStart, int32_t nSectors, LCdReadMode mode)
        : LSoundSourceBase(LCd::kSampleRate, 2, 0x7FFF0), pDisc(std::move(pDisc)), lsnStart(lsnStart),
          nSectors(nSectors), mode(mode)
    {
        vCache.resize(static_cast<size_t>(kCacheSectors) * LCd::kFramesPerSector * 2);
        if (mode != LCdReadMode::Fast)
            OpenParanoia();
    }

    ~LSRCCdSectors() override
    {
        if (pParanoia)
            cdio_paranoia_free(pParanoia);
        if (pDrive)
            cdio_cddap_close(pDrive);
        std::lock_guard<std::mutex> lock(this->pDisc->mtx);
        this->pDisc->counts.nCorrected += counts.nCorrected;
        this->pDisc->counts.nUncorrectable += counts.nUncorrectable;
    }

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return nSectors * LCd::kFramesPerSector; }
    void SetPosition(int32_t s) override { sPosition = std::clamp<int32_t>(s, 0, GetLength()); }

private:
    void OpenParanoia();
    bool Fill(int32_t nSector);
    bool FillFast(int32_t nSector);
    bool FillParanoia(int32_t nSector);

    std::shared_ptr<LCdDisc::Impl> pDisc;
    int32_t lsnStart;
    int32_t nSectors;
    LCdReadMode mode;
    int32_t sPosition = 0;
    std::vector<int16_t> vCache;
    int32_t nCacheFirst = -1; // sector (relative) held in the cache, -1 for none
    int32_t nCacheCount = 0;
    cdrom_drive_t* pDrive = nullptr;
    cdrom_paranoia_t* pParanoia = nullptr;
    int32_t nParanoiaNext = -1; // the sector paranoia will deliver next without a seek
    LCdReadCounts counts;
};

void LSRCCdSectors::OpenParanoia()
{
    // Paranoia owns its handle, so it gets one of its own on the same drive or image.
    std::string szReason;
    CdIo_t* pCdio = OpenCdio(pDisc->szPath, szReason);
    if (pCdio)
        pDrive = cdio_cddap_identify_cdio(pCdio, CDDA_MESSAGE_FORGETIT, nullptr);
    if (!pDrive || cdio_cddap_open(pDrive) != 0) {
        LTRACE("LSRCCdSectors::OpenParanoia cannot open %s; reading without correction", pDisc->szPath.c_str());
        if (pDrive)
            cdio_cddap_close(pDrive);
        else if (pCdio)
            cdio_destroy(pCdio);
        pDrive = nullptr;
        mode = LCdReadMode::Fast;
        return;
    }
    // Images hold little-endian samples as their sheets say; paranoia's guess from the sound
    // itself can be wrong for noise-like audio.
    if (DriverFor(pDisc->szPath) != DRIVER_DEVICE)
        pDrive->bigendianp = 0;
    pParanoia = cdio_paranoia_init(pDrive);
    const int nMode = mode == LCdReadMode::Paranoid ? (PARANOIA_MODE_FULL ^ PARANOIA_MODE_NEVERSKIP)
                                                    : (PARANOIA_MODE_VERIFY | PARANOIA_MODE_OVERLAP);
    cdio_paranoia_modeset(pParanoia, nMode);
}

bool LSRCCdSectors::FillFast(int32_t nSector)
{
    const int32_t nCount = std::min(kCacheSectors, nSectors - nSector);
    driver_return_code_t rc;
    {
        std::lock_guard<std::mutex> lock(pDisc->mtx);
        rc = cdio_read_audio_sectors(pDisc->pCdio, vCache.data(), lsnStart + nSector, static_cast<uint32_t>(nCount));
    }
    nCacheFirst = nSector;
    nCacheCount = nCount;
    if (rc == DRIVER_OP_SUCCESS) {
        // The disc holds little-endian samples.
        auto* pBytes = reinterpret_cast<uint8_t*>(vCache.data());
        for (size_t i = 0; i < static_cast<size_t>(nCount) * LCd::kFramesPerSector * 2; ++i)
            vCache[i] = static_cast<int16_t>(static_cast<uint16_t>(pBytes[2 * i] | (pBytes[2 * i + 1] << 8)));
        return true;
    }
    counts.nUncorrectable += static_cast<uint32_t>(nCount);
    std::fill(vCache.begin(), vCache.end(), 0);
    return false;
}

bool LSRCCdSectors::FillParanoia(int32_t nSector)
{
    if (nParanoiaNext != nSector)
        cdio_paranoia_seek(pParanoia, lsnStart + nSector, SEEK_SET);
    pCallbackCounts = &counts;
    const int16_t* pData = cdio_paranoia_read_limited(pParanoia, ParanoiaCallback, mode == LCdReadMode::Paranoid ? 20 : 5);
    pCallbackCounts = nullptr;
    nParanoiaNext = nSector + 1;
    nCacheFirst = nSector;
    nCacheCount = 1;
    if (!pData) {
        ++counts.nUncorrectable;
        std::fill(vCache.begin(), vCache.begin() + LCd::kFramesPerSector * 2, 0);
        return false;
    }
    std::memcpy(vCache.data(), pData, static_cast<size_t>(LCd::kBytesPerSector));
    return true;
}

bool LSRCCdSectors::Fill(int32_t nSector)
{
    return pParanoia ? FillParanoia(nSector) : FillFast(nSector);
}

void LSRCCdSectors::Read(int32_t* pBuffer, int32_t nFrames)
{
    const int32_t nLength = GetLength();
    while (nFrames > 0) {
        if (sPosition >= nLength) {
            LZeroFrames(pBuffer, nFrames, 2);
            sPosition += nFrames;
            return;
        }
        const int32_t nSector = sPosition / LCd::kFramesPerSector;
        if (nCacheFirst < 0 || nSector < nCacheFirst || nSector >= nCacheFirst + nCacheCount)
            Fill(nSector);
        const int32_t nCacheEnd = (nCacheFirst + nCacheCount) * LCd::kFramesPerSector;
        const int32_t nTake = std::min({nFrames, nCacheEnd - sPosition, nLength - sPosition});
        const int16_t* pIn = vCache.data() + static_cast<size_t>(sPosition - nCacheFirst * LCd::kFramesPerSector) * 2;
        for (int32_t i = 0; i < nTake * 2; ++i)
            pBuffer[i] = static_cast<int32_t>(pIn[i]) * 16;
        pBuffer += nTake * 2;
        nFrames -= nTake;
        sPosition += nTake;
    }
}

void ReadToc(CdIo_t* pCdio, LCdToc& toc)
{
    const track_t nFirst = cdio_get_first_track_num(pCdio);
    const track_t nCount = cdio_get_num_tracks(pCdio);
    if (nFirst == CDIO_INVALID_TRACK || nCount == CDIO_INVALID_TRACK)
        return;
    cdtext_t* pText = cdio_get_cdtext(pCdio);
    toc.szAlbum = CdText(pText, CDTEXT_FIELD_TITLE, 0);
    toc.szArtist = CdText(pText, CDTEXT_FIELD_PERFORMER, 0);
    toc.lsnLeadOut = cdio_get_track_lsn(pCdio, CDIO_CDROM_LEADOUT_TRACK);
    for (track_t n = nFirst; n < nFirst + nCount; ++n) {
        LCdTrackInfo t;
        t.nNumber = n;
        t.lsnStart = cdio_get_track_lsn(pCdio, n);
        const lsn_t lsnPregap = cdio_get_track_pregap_lsn(pCdio, n);
        t.lsnPregap = lsnPregap != CDIO_INVALID_LSN && lsnPregap < t.lsnStart ? lsnPregap : -1;
        t.bAudio = cdio_get_track_format(pCdio, n) == TRACK_FORMAT_AUDIO;
        t.szTitle = CdText(pText, CDTEXT_FIELD_TITLE, n);
        t.szPerformer = CdText(pText, CDTEXT_FIELD_PERFORMER, n);
        toc.vTracks.push_back(t);
    }
    // A track ends where the next one's gap (or the next one) begins.
    for (size_t i = 0; i < toc.vTracks.size(); ++i) {
        int32_t lsnEnd = toc.lsnLeadOut;
        if (i + 1 < toc.vTracks.size()) {
            const LCdTrackInfo& next = toc.vTracks[i + 1];
            lsnEnd = next.lsnPregap >= 0 ? next.lsnPregap : next.lsnStart;
        }
        toc.vTracks[i].nSectors = std::max<int32_t>(0, lsnEnd - toc.vTracks[i].lsnStart);
    }
}

bool TocIsSane(const LCdToc& toc)
{
    int32_t lsnPrev = -1;
    for (const LCdTrackInfo& t : toc.vTracks) {
        if (t.lsnStart < 0 || t.lsnStart < lsnPrev || t.lsnStart > toc.lsnLeadOut)
            return false;
        lsnPrev = t.lsnStart;
    }
    return !toc.vTracks.empty() && toc.lsnLeadOut > 0;
}

} // namespace

LCdDisc::~LCdDisc() = default;

std::vector<LCdDriveInfo> LCdDisc::ListDrives()
{
    QuietLibraries();
    std::vector<LCdDriveInfo> v;
    char** ppDevices = cdio_get_devices(DRIVER_DEVICE);
    for (char** pp = ppDevices; pp && *pp; ++pp)
        v.push_back(LCdDriveInfo{*pp, {}});
    if (ppDevices)
        cdio_free_device_list(ppDevices);
    return v;
}

bool LCdDisc::IsImagePath(const std::string& szPath)
{
    return DriverFor(szPath) != DRIVER_DEVICE;
}

std::shared_ptr<LCdDisc> LCdDisc::Open(const std::string& szDeviceOrImage)
{
    QuietLibraries();
    std::shared_ptr<LCdDisc> pDisc(new LCdDisc());
    pDisc->pImpl = std::make_shared<Impl>();
    std::string szPath = szDeviceOrImage;
    if (szPath.empty()) {
        const std::vector<LCdDriveInfo> vDrives = ListDrives();
        if (vDrives.empty()) {
            pDisc->szError = "No CD drive found";
            return pDisc;
        }
        szPath = vDrives.front().szDevice;
    }
    pDisc->szName = szPath;
    pDisc->pImpl->szPath = szPath;
    const bool bImage = IsImagePath(szPath);
    std::string szReason;
    pDisc->pImpl->pCdio = OpenCdio(szPath, szReason);
    if (!pDisc->pImpl->pCdio) {
        pDisc->szError = bImage ? "Cannot read the disc image " + szPath : "Cannot open the CD drive " + szPath;
        if (!szReason.empty())
            pDisc->szError += ": " + szReason;
        return pDisc;
    }
    ReadToc(pDisc->pImpl->pCdio, pDisc->toc);
    if (!TocIsSane(pDisc->toc)) {
        pDisc->toc = LCdToc();
        pDisc->szError = bImage ? "The disc image " + szPath + " has no readable tracks" : "There is no disc in " + szPath;
    } else if (pDisc->toc.AudioTrackCount() == 0) {
        pDisc->szError = "The disc in " + szPath + " has no audio tracks";
    }
    if (!pDisc->szError.empty())
        LTRACE("LCdDisc::Open %s", pDisc->szError.c_str());
    return pDisc;
}

LSoundSourcePtr LCdDisc::OpenTrack(int nTrack, LCdReadMode mode)
{
    const LCdTrackInfo* pTrack = toc.Track(nTrack);
    if (IsError() || !pTrack || !pTrack->bAudio) {
        LTRACE("LCdDisc::OpenTrack no audio track %d", nTrack);
        return LSoundSourcePtr(new LSRCSilence());
    }
    return OpenSpan(pTrack->lsnStart, pTrack->nSectors, mode);
}

LSoundSourcePtr LCdDisc::OpenSpan(int32_t lsnStart, int32_t nSectors, LCdReadMode mode)
{
    if (IsError() || lsnStart < 0 || nSectors < 0 || lsnStart > toc.lsnLeadOut || nSectors > toc.lsnLeadOut - lsnStart) {
        LTRACE("LCdDisc::OpenSpan outside the disc");
        return LSoundSourcePtr(new LSRCSilence());
    }
    return LSoundSourcePtr(new LSRCCdSectors(pImpl, lsnStart, nSectors, mode));
}

LCdReadCounts LCdDisc::GetCounts() const
{
    if (!pImpl)
        return {};
    std::lock_guard<std::mutex> lock(pImpl->mtx);
    return pImpl->counts;
}

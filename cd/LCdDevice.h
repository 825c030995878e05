// The one seam between the editor and compact discs: drives and disc images are read, and discs
// written, only through this interface. Nothing else includes the CD libraries.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cd/LCdLayout.h"
#include "cd/LCdReadMode.h"
#include "cd/LCdToc.h"
#include "core/LSoundSourceBase.h"

class LProgressDialog;

struct LCdDriveInfo
{
    std::string szDevice; // "/dev/sr0"
    std::string szName;   // vendor and model, when the drive tells
};

struct LCdBurnOptions
{
    std::string szDevice; // empty: the first writer found
    bool bSimulate = false;
    int nSpeed = 0; // times 1x (176.4 kB/s); 0: the fastest the drive offers
};

// An open drive with its disc, or an open disc image (.cue with its .bin, cdrdao .toc).
class LCdDisc
{
public:
    ~LCdDisc();
    static std::vector<LCdDriveInfo> ListDrives();
    static bool IsImagePath(const std::string& szPath);
    // A drive (empty: the first) or an image. Never null: a failure is latched with its reason
    // ("No CD drive found", "There is no audio disc in /dev/sr0").
    static std::shared_ptr<LCdDisc> Open(const std::string& szDeviceOrImage);

    bool IsError() const { return !szError.empty(); }
    const std::string& GetError() const { return szError; }
    const std::string& GetName() const { return szName; }
    const LCdToc& GetToc() const { return toc; }

    // An audio track as a 44100 Hz stereo source; a latched silent source for a bad number.
    LSoundSourcePtr OpenTrack(int nTrack, LCdReadMode mode);
    // Any stretch of sectors (a gap, for instance), read as a track is.
    LSoundSourcePtr OpenSpan(int32_t lsnStart, int32_t nSectors, LCdReadMode mode);
    // What error correction did in every source opened from this disc so far.
    LCdReadCounts GetCounts() const;

    // Writes the image (as LCdImageWriter made it) disc-at-once with its CD-TEXT. 0 done,
    // 1 cancelled, 2 error with the reason ("No CD writer found") in *pszError.
    // Whether a writer is there (the given device, or any); false with "No CD writer found".
    static bool FindWriter(const std::string& szDevice, std::string* pszError);
    static int32_t Burn(LProgressDialog& dlg, const LCdBurnOptions& options, const LCdLayout& layout,
                        const std::string& szBinPath, std::string* pszError);

    struct Impl;

private:
    LCdDisc() = default;
    std::shared_ptr<Impl> pImpl;
    std::string szError;
    std::string szName;
    LCdToc toc;
};

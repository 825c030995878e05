// Writes a disc image: one .bin of 44100 Hz 16-bit stereo sectors and the .cue sheet that
// describes it, with the gaps between tracks and the titles as CD-TEXT.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cd/LCdLayout.h"

class LProgressDialog;

class LCdImageWriter
{
public:
    // nGapSectors of silence go before every track but the first.
    LCdImageWriter(std::vector<LCdSourceItem> vItems, const std::string& szAlbum, const std::string& szPerformer,
                   int32_t nGapSectors);

    // The layout the sources will take once converted, for the fit check before writing.
    LCdLayout Plan() const;

    // Writes szCuePath and the .bin beside it (same name), replacing older files only when both
    // are complete. Returns 0 done, 1 cancelled, 2 error (reason in *pszError).
    int32_t Write(LProgressDialog& dlg, const std::string& szCuePath, std::string* pszError);

    // The layout as written (valid after Write returned 0).
    const LCdLayout& GetLayout() const { return layout; }

    // The cue sheet text for a layout whose data is in the file szBinName.
    static std::string CueSheet(const LCdLayout& layout, const std::string& szBinName);

private:
    int32_t WriteBin(LProgressDialog& dlg, const std::string& szPath, std::string* pszError);

    std::vector<LCdSourceItem> vItems;
    int32_t nGapSectors;
    LCdLayout layout;
};

// sonitra-cli cd rip: tracks of a disc into files named by their titles.
#include <cstdio>
#include <filesystem>
#include <set>

#include "cli/LCliArgs.h"
#include "cli/LCliCd.h"
#include "cli/LCliVerb.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "work/LProgressDialog.h"

namespace {

struct RipOptions
{
    std::string szExt;
    std::string szOut;
    LCdReadMode mode = LCd::ReadModeSetting();
};

// "all", or numbers and ranges: "1,3-5".
bool ParseTracks(const std::string& szText, const LCdToc& toc, std::vector<int>& vTracks)
{
    std::set<int> setTracks;
    if (szText == "all") {
        for (const LCdTrackInfo& t : toc.vTracks)
            if (t.bAudio)
                setTracks.insert(t.nNumber);
    }
    size_t nPos = 0;
    while (szText != "all" && nPos <= szText.size()) {
        const size_t nComma = std::min(szText.find(',', nPos), szText.size());
        const std::string szPart = szText.substr(nPos, nComma - nPos);
        const size_t nDash = szPart.find('-');
        int32_t nFirst = 0, nLast = 0;
        if (!LCliParseInt(szPart.substr(0, nDash), 1, 99, nFirst) ||
            !LCliParseInt(nDash == std::string::npos ? szPart : szPart.substr(nDash + 1), nFirst, 99, nLast))
            return false;
        for (int n = nFirst; n <= nLast; ++n)
            setTracks.insert(n);
        nPos = nComma + 1;
    }
    vTracks.assign(setTracks.begin(), setTracks.end());
    return !vTracks.empty();
}

class RipTrack : public LProgressDialog
{
public:
    RipTrack(const std::string& szTitle, LSoundSourceBase* pSource, const std::string& szPath)
        : LProgressDialog(szTitle), szText(szTitle), pSource(pSource), szPath(szPath)
    {
    }
    int32_t Process() override
    {
        return LAudioFile::Save(*this, szText, pSource.Get(), szPath, LCd::kSampleRate, 2, LAudioEncoding(), &szError);
    }
    std::string szError;

private:
    std::string szText;
    LSoundSourcePtr pSource;
    std::string szPath;
};

bool TakeRipOption(const std::string& szName, const std::string& szValue, bool& bTaken, RipOptions& opt)
{
    bTaken = true;
    if (szName == "--to") {
        opt.szExt = szValue[0] == '.' ? szValue.substr(1) : szValue;
        const LAudioFormat* pFormat = LAudioFormat::ByExtension("x." + opt.szExt);
        if (!pFormat || !pFormat->CanWrite()) {
            LCliError("cd rip: cannot write ." + opt.szExt + " files");
            return false;
        }
    } else if (szName == "--out") {
        opt.szOut = szValue;
    } else if (szName == "--mode") {
        if (!LCd::ParseReadMode(szValue, opt.mode)) {
            LCliError("cd rip: --mode is fast, verified or paranoid");
            return false;
        }
    } else {
        bTaken = false;
        return false;
    }
    return true;
}

int RipAll(LCdDisc& disc, const std::vector<int>& vTracks, const LCdTitles& titles, const RipOptions& opt)
{
    for (size_t i = 0; i < vTracks.size(); ++i) {
        const int n = vTracks[i];
        const std::string szName = LCd::TrackFileName(n, titles.TitleOf(disc.GetToc(), n), opt.szExt);
        const std::string szPath = (std::filesystem::path(opt.szOut) / szName).string();
        RipTrack rip("Reading track " + std::to_string(i + 1) + " of " + std::to_string(vTracks.size()),
                     disc.OpenTrack(n, opt.mode).Get(), szPath);
        const int32_t nResult = rip.Run();
        if (nResult == LProgressDialog::ResultCancelled) {
            LCliError("cd rip: cancelled; " + std::to_string(i) + " tracks were written");
            return CliCancelled;
        }
        if (nResult != LProgressDialog::ResultDone) {
            LCliError("cd rip: " + szPath + ": " + rip.szError);
            return CliError;
        }
        std::printf("%s\n", szPath.c_str());
        std::fflush(stdout);
    }
    return CliDone;
}

} // namespace

int LCliCdRip(const std::vector<std::string>& vArgs)
{
    LCliCdSource src;
    RipOptions opt;
    std::vector<std::string> vFlags, vPlain;
    auto take = [&](const std::string& n, const std::string& v, bool& bTaken) { return TakeRipOption(n, v, bTaken, opt); };
    if (!LCliCdReadArgs("rip", vArgs, src, {}, vFlags, take, vPlain))
        return CliUsage;
    if (vPlain.size() != 1 || opt.szExt.empty() || opt.szOut.empty()) {
        LCliError("cd rip: give TRACKS, --to EXT and --out DIR (try sonitra-cli cd --help)");
        return CliUsage;
    }
    std::shared_ptr<LCdDisc> pDisc = LCliCdOpen(src);
    if (!pDisc)
        return CliError;
    std::vector<int> vTracks;
    if (!ParseTracks(vPlain[0], pDisc->GetToc(), vTracks)) {
        LCliError("cd rip: TRACKS is \"all\" or numbers such as 1,3-5");
        return CliUsage;
    }
    for (int n : vTracks) {
        const LCdTrackInfo* pTrack = pDisc->GetToc().Track(n);
        if (!pTrack || !pTrack->bAudio) {
            LCliError("cd rip: the disc has no audio track " + std::to_string(n));
            return CliError;
        }
    }
    std::error_code ec;
    std::filesystem::create_directories(opt.szOut, ec);
    const LCdTitles titles = LCliCdTitles(pDisc->GetToc(), src);
    const int nExit = RipAll(*pDisc, vTracks, titles, opt);
    const LCdReadCounts counts = pDisc->GetCounts();
    std::fprintf(stderr, "read mode %s: %u corrected, %u uncorrectable\n", LCd::ReadModeName(opt.mode), counts.nCorrected,
                 counts.nUncorrectable);
    return nExit;
}

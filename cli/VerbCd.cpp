// sonitra-cli cd list|rip|burn: audio CDs and disc images on the command line.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "cli/LCliCd.h"
#include "cli/LCliVerb.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli cd list [--device D | --image F.cue]\n"
    "       sonitra-cli cd rip TRACKS --to EXT --out DIR [--device D | --image F] [--mode M]\n"
    "       sonitra-cli cd burn FILES... [--device D] [--image OUT.cue] [--gap S] [--simulate]\n"
    "                                    [--speed N] [--album TITLE] [--disc-minutes 74|80]\n"
    "\n"
    "list prints the tracks of the disc in the drive (or of a .cue/.toc disc image) with their\n"
    "lengths and titles. rip reads tracks into files named \"NN - Title.EXT\" in DIR; TRACKS is\n"
    "\"all\" or a list such as 1,3-5; --mode is fast, verified or paranoid (default: the editor's\n"
    "setting). burn writes the files as an audio CD, disc-at-once with CD-TEXT, after a gap of S\n"
    "seconds between tracks (default 2, 0 allowed); with --image it writes a .cue/.bin image\n"
    "instead, for burning elsewhere. --simulate runs the writer without burning.\n"
    "\n"
    "Titles come from the CDDB server of the settings (section CDDB), then from the disc's\n"
    "CD-TEXT, then \"Track NN\".\n"
    "  --cddb HOST[:PORT]  ask this server instead      --cddb-http  over HTTP (cddb.cgi)\n"
    "  --no-cddb           ask no server               --match N    take the Nth of several matches\n"
    "\n"
    "Exit status: 0 done, 1 cancelled, 2 error (no drive, no disc, no writer), 64 wrong usage.";

int RunCd(const std::vector<std::string>& vArgs)
{
    if (vArgs.empty()) {
        LCliError("cd: say list, rip or burn (try sonitra-cli cd --help)");
        return CliUsage;
    }
    const std::vector<std::string> vRest(vArgs.begin() + 1, vArgs.end());
    if (vArgs[0] == "list")
        return LCliCdList(vRest);
    if (vArgs[0] == "rip")
        return LCliCdRip(vRest);
    if (vArgs[0] == "burn")
        return LCliCdBurn(vRest);
    LCliError("cd: unknown command '" + vArgs[0] + "' (try sonitra-cli cd --help)");
    return CliUsage;
}

} // namespace

bool LCliCdTakeSourceOption(const std::string& szName, const std::string& szValue, LCliCdSource& src, bool& bTaken)
{
    bTaken = true;
    if (szName == "--device")
        src.szDevice = szValue;
    else if (szName == "--image")
        src.szImage = szValue;
    else if (szName == "--cddb") {
        src.server.bEnabled = true;
        if (!src.server.ParseAddress(szValue)) {
            LCliError("cd: --cddb takes HOST or HOST:PORT");
            return false;
        }
    } else if (szName == "--match") {
        src.nMatch = std::atoi(szValue.c_str());
        if (src.nMatch < 1) {
            LCliError("cd: --match takes a number from 1");
            return false;
        }
    } else {
        bTaken = false;
        return false;
    }
    return true;
}

bool LCliCdReadArgs(const std::string& szVerb, const std::vector<std::string>& vArgs, LCliCdSource& src,
                    const std::vector<std::string>& vFlags, std::vector<std::string>& vFlagsSeen,
                    const std::function<bool(const std::string&, const std::string&, bool&)>& take,
                    std::vector<std::string>& vPlain)
{
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& sz = vArgs[i];
        if (sz == "--no-cddb" || sz == "--cddb-http") {
            (sz == "--no-cddb" ? src.server.bEnabled : src.server.bHttp) = sz != "--no-cddb";
            continue;
        }
        if (std::find(vFlags.begin(), vFlags.end(), sz) != vFlags.end()) {
            vFlagsSeen.push_back(sz);
            continue;
        }
        if (sz.size() < 2 || sz.compare(0, 2, "--") != 0) {
            vPlain.push_back(sz);
            continue;
        }
        if (i + 1 >= vArgs.size()) {
            LCliError("cd " + szVerb + ": " + sz + " needs a value (try sonitra-cli cd --help)");
            return false;
        }
        bool bTaken = false;
        if (!LCliCdTakeSourceOption(sz, vArgs[i + 1], src, bTaken) && bTaken)
            return false;
        if (!bTaken && !take(sz, vArgs[i + 1], bTaken) && bTaken)
            return false;
        if (!bTaken) {
            LCliError("cd " + szVerb + ": unknown option '" + sz + "' (try sonitra-cli cd --help)");
            return false;
        }
        ++i;
    }
    return true;
}

std::shared_ptr<LCdDisc> LCliCdOpen(const LCliCdSource& src)
{
    if (!src.szDevice.empty() && !src.szImage.empty()) {
        LCliError("cd: give --device or --image, not both");
        return nullptr;
    }
    std::shared_ptr<LCdDisc> pDisc = LCdDisc::Open(src.szImage.empty() ? src.szDevice : src.szImage);
    if (pDisc->IsError()) {
        LCliError("cd: " + pDisc->GetError());
        return nullptr;
    }
    return pDisc;
}

LCdTitles LCliCdTitles(const LCdToc& toc, const LCliCdSource& src)
{
    const int nMatch = src.nMatch;
    LCdTitles titles = LCd::LookUpTitles(toc, src.server, nullptr, [nMatch](const std::vector<LCddbMatch>& v) {
        std::fprintf(stderr, "The CDDB server knows %zu discs with this id:\n", v.size());
        for (size_t i = 0; i < v.size(); ++i)
            std::fprintf(stderr, "  %zu. [%s] %s\n", i + 1, v[i].szCategory.c_str(), v[i].szTitle.c_str());
        const size_t nPick = static_cast<size_t>(nMatch) <= v.size() ? static_cast<size_t>(nMatch) : 1;
        std::fprintf(stderr, "Taking %zu (choose another with --match N).\n", nPick);
        return static_cast<int>(nPick - 1);
    });
    if (!titles.szMessage.empty())
        LCliError("cd: " + titles.szMessage);
    return titles;
}

static LCliVerb verbCd("cd", "list, rip and burn audio CDs and disc images", kUsage, RunCd);

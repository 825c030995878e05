// sonitra-cli cd list: the tracks of a disc with their lengths and titles.
#include <cstdio>

#include "cli/LCliCd.h"
#include "cli/LCliVerb.h"

int LCliCdList(const std::vector<std::string>& vArgs)
{
    LCliCdSource src;
    std::vector<std::string> vFlags, vPlain;
    auto take = [](const std::string&, const std::string&, bool& bTaken) { return bTaken = false; };
    if (!LCliCdReadArgs("list", vArgs, src, {}, vFlags, take, vPlain))
        return CliUsage;
    if (!vPlain.empty()) {
        LCliError("cd list: unexpected '" + vPlain[0] + "' (try sonitra-cli cd --help)");
        return CliUsage;
    }
    std::shared_ptr<LCdDisc> pDisc = LCliCdOpen(src);
    if (!pDisc)
        return CliError;
    const LCdToc& toc = pDisc->GetToc();
    const LCdTitles titles = LCliCdTitles(toc, src);
    std::printf("%s%s%s\n", titles.szArtist.c_str(), titles.szArtist.empty() ? "" : " / ",
                titles.szAlbum.empty() ? "(untitled disc)" : titles.szAlbum.c_str());
    std::printf("titles from %s\n", titles.szSource.empty() ? "track numbers" : titles.szSource.c_str());
    for (size_t i = 0; i < toc.vTracks.size(); ++i) {
        const LCdTrackInfo& t = toc.vTracks[i];
        std::printf("%02d  %6s  %s%s\n", t.nNumber, LCd::FormatLength(t.nSectors).c_str(), t.bAudio ? "" : "(data) ",
                    i < titles.vTitles.size() ? titles.vTitles[i].c_str() : "");
    }
    std::printf("total %s\n", LCd::FormatLength(toc.lsnLeadOut).c_str());
    return CliDone;
}

#include "cd/LCdTitles.h"

#include <cstdio>

LCdTitles LCdTitles::FromDisc(const LCdToc& toc)
{
    LCdTitles titles;
    titles.szAlbum = LCddbAnswer::CleanText(toc.szAlbum);
    titles.szArtist = LCddbAnswer::CleanText(toc.szArtist);
    bool bText = !titles.szAlbum.empty();
    for (const LCdTrackInfo& t : toc.vTracks) {
        std::string sz = LCddbAnswer::CleanText(t.szTitle);
        bText = bText || !sz.empty();
        titles.vTitles.push_back(sz.empty() ? LCd::DefaultTitle(t.nNumber) : sz);
    }
    titles.szSource = bText ? "CD-TEXT" : "";
    return titles;
}

void LCdTitles::Apply(const LCddbEntry& entry)
{
    szAlbum = entry.szAlbum;
    szArtist = entry.szArtist;
    for (size_t i = 0; i < vTitles.size() && i < entry.vTitles.size(); ++i)
        if (!entry.vTitles[i].empty())
            vTitles[i] = entry.vTitles[i];
    szSource = "CDDB";
}

std::string LCdTitles::TitleOf(const LCdToc& toc, int nTrack) const
{
    for (size_t i = 0; i < toc.vTracks.size() && i < vTitles.size(); ++i)
        if (toc.vTracks[i].nNumber == nTrack)
            return vTitles[i];
    return LCd::DefaultTitle(nTrack);
}

LCdTitles LCd::LookUpTitles(const LCdToc& toc, const LCddbServer& server, const std::atomic<bool>* pbCancel,
                            const LChooseMatch& choose)
{
    LCdTitles titles = LCdTitles::FromDisc(toc);
    if (!server.bEnabled || toc.vTracks.empty())
        return titles;
    LCddbClient client(server, pbCancel);
    std::vector<LCddbMatch> vMatches;
    if (!client.Query(toc, vMatches)) {
        titles.szMessage = "No titles from CDDB: " + client.GetError();
        return titles;
    }
    if (vMatches.empty()) {
        titles.szMessage = "The CDDB server does not know this disc";
        return titles;
    }
    const int nChoice = vMatches.size() == 1 || !choose ? 0 : choose(vMatches);
    if (nChoice < 0 || static_cast<size_t>(nChoice) >= vMatches.size())
        return titles;
    LCddbEntry entry;
    if (!client.Read(vMatches[static_cast<size_t>(nChoice)], toc.vTracks.size(), entry)) {
        titles.szMessage = "No titles from CDDB: " + client.GetError();
        return titles;
    }
    titles.Apply(entry);
    titles.szMessage = client.GetWarning();
    return titles;
}

std::string LCd::TrackFileName(int nTrack, const std::string& szTitle, const std::string& szExtension)
{
    std::string szSafe;
    for (char c : LCddbAnswer::CleanText(szTitle)) {
        const bool bBad = c == '/' || c == '\\' || c == ':' || c == '*' || c == '?' || c == '"' || c == '<' || c == '>' || c == '|';
        szSafe += bBad ? '_' : c;
    }
    while (!szSafe.empty() && (szSafe.back() == '.' || szSafe.back() == ' '))
        szSafe.pop_back();
    if (szSafe.empty())
        szSafe = DefaultTitle(nTrack);
    char szNumber[16];
    std::snprintf(szNumber, sizeof szNumber, "%02d - ", nTrack);
    std::string szExt = szExtension;
    if (!szExt.empty() && szExt[0] != '.')
        szExt = "." + szExt;
    return szNumber + szSafe + szExt;
}

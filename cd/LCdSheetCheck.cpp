#include "cd/LCdSheetCheck.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace {

const char* const kCueModes[] = {"AUDIO",     "CDG",       "MODE1/2048", "MODE1/2352", "MODE2/2048",
                                 "MODE2/2324", "MODE2/2336", "MODE2/2352", "CDI/2336",   "CDI/2352"};
const char* const kTocModes[] = {"AUDIO",     "MODE0",       "MODE1",       "MODE1_RAW",     "MODE2",
                                 "MODE2_RAW", "MODE2_FORM1", "MODE2_FORM2", "MODE2_FORM_MIX"};

// The words of a sheet outside quoted texts (and outside "//" comments when bComments).
std::vector<std::string> Words(const std::string& sz, bool bComments)
{
    std::vector<std::string> v;
    size_t i = 0;
    while (i < sz.size()) {
        const char c = sz[i];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
        } else if (c == '"') {
            ++i;
            while (i < sz.size() && sz[i] != '"' && sz[i] != '\n')
                i += sz[i] == '\\' && i + 1 < sz.size() ? 2 : 1;
            ++i;
        } else if (bComments && c == '/' && i + 1 < sz.size() && sz[i + 1] == '/') {
            while (i < sz.size() && sz[i] != '\n')
                ++i;
        } else {
            const size_t nStart = i;
            while (i < sz.size() && !std::isspace(static_cast<unsigned char>(sz[i])) && sz[i] != '"')
                ++i;
            v.push_back(sz.substr(nStart, i - nStart));
        }
    }
    return v;
}

// Text only: no NUL bytes or other control characters but tabs and line ends.
bool IsText(const std::string& sz, std::string& szReason)
{
    const bool bText = std::none_of(sz.begin(), sz.end(), [](char c) {
        const unsigned char u = static_cast<unsigned char>(c);
        return u < 0x20 && c != '\t' && c != '\n' && c != '\r';
    });
    if (!bText)
        szReason = "it is not a text file";
    else if (sz.size() > LCdSheetCheck::kMaxSheet)
        szReason = "it is too large for a sheet";
    return bText && sz.size() <= LCdSheetCheck::kMaxSheet;
}

// nModeAt: how many words after TRACK the mode comes (a cue sheet numbers its tracks first).
template <size_t N>
bool TracksHaveModes(const std::vector<std::string>& vWords, const char* const (&aModes)[N], size_t nModeAt,
                     std::string& szReason)
{
    bool bAny = false;
    for (size_t i = 0; i < vWords.size(); ++i) {
        if (vWords[i] != "TRACK")
            continue;
        bAny = true;
        const size_t nMode = i + nModeAt;
        if (nMode >= vWords.size() || std::find(std::begin(aModes), std::end(aModes), vWords[nMode]) == std::end(aModes)) {
            szReason = "a track has no known mode";
            return false;
        }
    }
    if (!bAny)
        szReason = "it names no tracks";
    return bAny;
}

} // namespace

bool LCdSheetCheck::CheckCue(const std::string& szText, std::string& szReason)
{
    return IsText(szText, szReason) && TracksHaveModes(Words(szText, false), kCueModes, 2, szReason);
}

bool LCdSheetCheck::CheckToc(const std::string& szText, std::string& szReason)
{
    return IsText(szText, szReason) && TracksHaveModes(Words(szText, true), kTocModes, 1, szReason);
}

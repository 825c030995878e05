#include "cd/LCddbAnswer.h"

#include <cctype>
#include <cstdlib>

namespace {

bool IsCategory(const std::string& sz)
{
    if (sz.empty() || sz.size() > 32)
        return false;
    for (char c : sz)
        if (!std::islower(static_cast<unsigned char>(c)))
            return false;
    return true;
}

bool IsDiscId(const std::string& sz)
{
    if (sz.size() != 8)
        return false;
    for (char c : sz)
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    return true;
}

// "rock 7a0c0b0c Artist / Album"
bool ParseMatch(const std::string& szText, LCddbMatch& m)
{
    const size_t n1 = szText.find(' ');
    if (n1 == std::string::npos)
        return false;
    const size_t n2 = szText.find(' ', n1 + 1);
    m.szCategory = szText.substr(0, n1);
    m.szDiscId = szText.substr(n1 + 1, n2 == std::string::npos ? std::string::npos : n2 - n1 - 1);
    m.szTitle = n2 == std::string::npos ? std::string() : LCddbAnswer::CleanText(szText.substr(n2 + 1));
    return IsCategory(m.szCategory) && IsDiscId(m.szDiscId);
}

// Truncation never splits a character.
std::string CutUtf8(const std::string& sz, size_t nMax)
{
    if (sz.size() <= nMax)
        return sz;
    size_t n = nMax;
    while (n > 0 && (static_cast<unsigned char>(sz[n]) & 0xC0) == 0x80)
        --n;
    return sz.substr(0, n);
}

std::string Unescape(const std::string& sz)
{
    std::string szOut;
    for (size_t i = 0; i < sz.size(); ++i) {
        if (sz[i] != '\\' || i + 1 == sz.size()) {
            szOut += sz[i];
            continue;
        }
        const char c = sz[++i];
        szOut += c == 'n' ? ' ' : c == 't' ? ' ' : c;
    }
    return szOut;
}

// The list of a query or an entry ends at a line holding only ".".
bool ListEnd(const std::vector<std::string>& vLines, size_t& nEnd)
{
    for (nEnd = 1; nEnd < vLines.size(); ++nEnd)
        if (vLines[nEnd] == ".")
            return true;
    return false;
}

// "TTITLE12" -> 12; -1 for anything else.
long TrackKey(const std::string& szKey)
{
    if (szKey.compare(0, 6, "TTITLE") != 0 || szKey.size() == 6 || szKey.size() > 9)
        return -1;
    for (size_t i = 6; i < szKey.size(); ++i)
        if (!std::isdigit(static_cast<unsigned char>(szKey[i])))
            return -1;
    return std::strtol(szKey.c_str() + 6, nullptr, 10);
}

void Append(std::string& szField, const std::string& szValue)
{
    // Long values come in several lines with the same key; a hostile entry repeats without end.
    if (szField.size() < LCddbAnswer::kMaxTitle * 4)
        szField += szValue;
}

} // namespace

int LCddbAnswer::StatusCode(const std::string& szLine)
{
    if (szLine.size() < 3)
        return -1;
    for (int i = 0; i < 3; ++i)
        if (!std::isdigit(static_cast<unsigned char>(szLine[i])))
            return -1;
    if (szLine.size() > 3 && szLine[3] != ' ' && szLine[3] != '-')
        return -1;
    return (szLine[0] - '0') * 100 + (szLine[1] - '0') * 10 + (szLine[2] - '0');
}

bool LCddbAnswer::IsUtf8(const std::string& sz)
{
    size_t i = 0;
    while (i < sz.size()) {
        const unsigned char c = static_cast<unsigned char>(sz[i]);
        size_t nMore = 0;
        uint32_t nCode = 0;
        if (c < 0x80) {
            ++i;
            continue;
        } else if ((c & 0xE0) == 0xC0) {
            nMore = 1;
            nCode = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            nMore = 2;
            nCode = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            nMore = 3;
            nCode = c & 0x07;
        } else {
            return false;
        }
        if (i + nMore >= sz.size())
            return false;
        for (size_t k = 1; k <= nMore; ++k) {
            const unsigned char d = static_cast<unsigned char>(sz[i + k]);
            if ((d & 0xC0) != 0x80)
                return false;
            nCode = (nCode << 6) | (d & 0x3F);
        }
        static const uint32_t aMin[] = {0, 0x80, 0x800, 0x10000};
        if (nCode < aMin[nMore] || nCode > 0x10FFFF || (nCode >= 0xD800 && nCode <= 0xDFFF))
            return false;
        i += nMore + 1;
    }
    return true;
}

std::string LCddbAnswer::CleanText(const std::string& sz)
{
    std::string szOut;
    for (char c : sz)
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)
            szOut += c;
    const size_t nFirst = szOut.find_first_not_of(' ');
    if (nFirst == std::string::npos)
        return {};
    szOut = szOut.substr(nFirst, szOut.find_last_not_of(' ') - nFirst + 1);
    return CutUtf8(szOut, kMaxTitle);
}

bool LCddbAnswer::ParseQuery(const std::vector<std::string>& vLines, std::vector<LCddbMatch>& vMatches, std::string& szError)
{
    vMatches.clear();
    if (vLines.empty()) {
        szError = "the CDDB server sent an empty answer";
        return false;
    }
    for (const std::string& sz : vLines) {
        if (!IsUtf8(sz)) {
            szError = "the CDDB server's answer is not valid UTF-8";
            return false;
        }
    }
    const int nCode = StatusCode(vLines[0]);
    LCddbMatch m;
    if (nCode == 202)
        return true;
    if (nCode == 200) {
        if (ParseMatch(vLines[0].substr(4 < vLines[0].size() ? 4 : vLines[0].size()), m)) {
            vMatches.push_back(m);
            return true;
        }
        szError = "the CDDB server's match is malformed";
        return false;
    }
    size_t nEnd = 0;
    if ((nCode == 210 || nCode == 211) && ListEnd(vLines, nEnd)) {
        for (size_t i = 1; i < nEnd; ++i) {
            if (!ParseMatch(vLines[i], m)) {
                szError = "the CDDB server's list of matches is malformed";
                vMatches.clear();
                return false;
            }
            vMatches.push_back(m);
        }
        return true;
    }
    szError = nCode < 0 ? "the CDDB server's answer is not CDDB" : "the CDDB server answered: " + CleanText(vLines[0]);
    return false;
}

bool LCddbAnswer::ParseEntry(const std::vector<std::string>& vLines, size_t nTracks, LCddbEntry& entry,
                             std::string& szError, std::string& szWarning)
{
    entry = LCddbEntry();
    size_t nEnd = 0;
    if (vLines.empty() || StatusCode(vLines[0]) != 210) {
        szError = vLines.empty() ? "the CDDB server sent an empty answer" : "the CDDB server answered: " + CleanText(vLines[0]);
        return false;
    }
    if (!ListEnd(vLines, nEnd)) {
        szError = "the CDDB entry is incomplete";
        return false;
    }
    std::string szDiscTitle;
    std::vector<std::string> vRaw(nTracks);
    for (size_t i = 1; i < nEnd; ++i) {
        const std::string& sz = vLines[i];
        if (!IsUtf8(sz)) {
            szError = "the CDDB entry is not valid UTF-8";
            return false;
        }
        const size_t nEq = sz.find('=');
        if (sz.empty() || sz[0] == '#' || nEq == std::string::npos)
            continue;
        const std::string szKey = sz.substr(0, nEq);
        const std::string szValue = sz.substr(nEq + 1);
        const long nTrack = TrackKey(szKey);
        if (szKey == "DTITLE")
            Append(szDiscTitle, szValue);
        else if (szKey == "DYEAR")
            Append(entry.szYear, szValue);
        else if (szKey == "DGENRE")
            Append(entry.szGenre, szValue);
        else if (nTrack >= 0 && static_cast<size_t>(nTrack) < nTracks)
            Append(vRaw[static_cast<size_t>(nTrack)], szValue);
    }
    szDiscTitle = CleanText(Unescape(szDiscTitle));
    if (szDiscTitle.empty()) {
        szError = "the CDDB entry has no disc title";
        return false;
    }
    const size_t nSlash = szDiscTitle.find(" / ");
    entry.szArtist = CleanText(szDiscTitle.substr(0, nSlash));
    entry.szAlbum = nSlash == std::string::npos ? szDiscTitle : CleanText(szDiscTitle.substr(nSlash + 3));
    entry.szYear = CleanText(entry.szYear);
    entry.szGenre = CleanText(entry.szGenre);
    size_t nMissing = 0;
    for (const std::string& sz : vRaw) {
        entry.vTitles.push_back(CleanText(Unescape(sz)));
        nMissing += entry.vTitles.back().empty() ? 1 : 0;
    }
    if (nMissing > 0)
        szWarning = "the CDDB entry names no title for " + std::to_string(nMissing) + " track" + (nMissing == 1 ? "" : "s");
    return true;
}

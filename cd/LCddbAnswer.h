// Reads what a CDDB server answers: the matches of a query and the entry of a disc. Answers come
// from the network and are trusted in nothing: every field is checked, every text cleaned.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct LCddbMatch
{
    std::string szCategory; // "rock"
    std::string szDiscId;   // "7a0c0b0c"
    std::string szTitle;    // "Artist / Album"
};

struct LCddbEntry
{
    std::string szArtist;
    std::string szAlbum;
    std::string szYear;
    std::string szGenre;
    std::vector<std::string> vTitles; // one per track; empty where the entry names none
};

namespace LCddbAnswer {
constexpr size_t kMaxLine = 2048;     // a longer line is hostile
constexpr size_t kMaxLines = 4096;    // so is a longer answer
constexpr size_t kMaxTitle = 256;     // titles are cut here (at a character boundary)

// The three-digit code at the start of a status line, or -1.
int StatusCode(const std::string& szLine);
// A query answer: its status line and, for a list (210, 211), the lines up to ".". True with the
// matches (none for 202); false with a reason for anything else.
bool ParseQuery(const std::vector<std::string>& vLines, std::vector<LCddbMatch>& vMatches, std::string& szError);
// A read answer ("210 ..." then the entry up to "."). nTracks is how many titles are expected.
// True when the entry is usable; szWarning then names what was missing.
bool ParseEntry(const std::vector<std::string>& vLines, size_t nTracks, LCddbEntry& entry, std::string& szError,
                std::string& szWarning);
bool IsUtf8(const std::string& sz);
// Without control characters, trimmed, at most kMaxTitle bytes.
std::string CleanText(const std::string& sz);
} // namespace LCddbAnswer

// Reading CDDB answers and entries, and naming files after titles.
#include <gtest/gtest.h>

#include "cd/LCdTitles.h"
#include "cd/LCdTocPaths.h"
#include "cd/LCddbAnswer.h"

namespace {

TEST(CddbAnswer, QueryAnswersOfEveryKind)
{
    std::vector<LCddbMatch> v;
    std::string szError;
    ASSERT_TRUE(LCddbAnswer::ParseQuery({"200 rock 7a0c0b0c Some One / Some Thing"}, v, szError));
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(v[0].szCategory, "rock");
    EXPECT_EQ(v[0].szDiscId, "7a0c0b0c");
    EXPECT_EQ(v[0].szTitle, "Some One / Some Thing");
    ASSERT_TRUE(LCddbAnswer::ParseQuery({"210 Found exact matches", "rock 7a0c0b0c A / B", "misc 7a0c0b0d C / D", "."}, v, szError));
    EXPECT_EQ(v.size(), 2u);
    ASSERT_TRUE(LCddbAnswer::ParseQuery({"202 No match"}, v, szError));
    EXPECT_TRUE(v.empty());

    // A list without its end, a malformed match, a refusal and noise are all failures.
    EXPECT_FALSE(LCddbAnswer::ParseQuery({"211 Found inexact matches", "rock 7a0c0b0c A / B"}, v, szError));
    EXPECT_FALSE(LCddbAnswer::ParseQuery({"211 x", "rock notanid A", "."}, v, szError));
    EXPECT_TRUE(v.empty());
    EXPECT_FALSE(LCddbAnswer::ParseQuery({"200 ROCK 7a0c0b0c x"}, v, szError));
    EXPECT_FALSE(LCddbAnswer::ParseQuery({"403 Database entry is corrupt"}, v, szError));
    EXPECT_EQ(szError, "the CDDB server answered: 403 Database entry is corrupt");
    EXPECT_FALSE(LCddbAnswer::ParseQuery({"<html>"}, v, szError));
    EXPECT_FALSE(LCddbAnswer::ParseQuery({}, v, szError));
    EXPECT_EQ(LCddbAnswer::StatusCode("2000 x"), -1);
    EXPECT_EQ(LCddbAnswer::StatusCode("211-more"), 211);
}

TEST(CddbAnswer, EntriesJoinContinuedLinesAndCleanTheirTexts)
{
    LCddbEntry e;
    std::string szError, szWarning;
    const std::vector<std::string> vLines = {
        "210 rock 7a0c0b0c CD database entry follows", "# xmcd", "DTITLE=Band / Long", "DTITLE= Album Name",
        "TTITLE0=Part one\\tand\\\\ more", "TTITLE1=Con", "TTITLE1=tinued", "TTITLE7=beyond the disc",
        "TTITLE1x=not a key", "DYEAR=2001", "."};
    ASSERT_TRUE(LCddbAnswer::ParseEntry(vLines, 2, e, szError, szWarning)) << szError;
    EXPECT_EQ(e.szArtist, "Band");
    EXPECT_EQ(e.szAlbum, "Long Album Name");
    EXPECT_EQ(e.vTitles, (std::vector<std::string>{"Part one and\\ more", "Continued"}));
    EXPECT_EQ(e.szYear, "2001");
    EXPECT_EQ(szWarning, "");

    // A title without a separator is the album; control characters go; overlong titles are cut
    // on a character boundary.
    std::string szLong;
    for (int i = 0; i < 300; ++i)
        szLong += "\xC3\xA9"; // é
    ASSERT_TRUE(LCddbAnswer::ParseEntry({"210 x", "DTITLE=Only\x01" "Album", "TTITLE0=" + szLong, "."}, 1, e, szError, szWarning));
    EXPECT_EQ(e.szAlbum, "OnlyAlbum");
    EXPECT_LE(e.vTitles[0].size(), LCddbAnswer::kMaxTitle);
    EXPECT_TRUE(LCddbAnswer::IsUtf8(e.vTitles[0]));
    EXPECT_FALSE(LCddbAnswer::ParseEntry({"210 x", "DTITLE=A / B"}, 1, e, szError, szWarning));
    EXPECT_FALSE(LCddbAnswer::ParseEntry({"401 no such entry"}, 1, e, szError, szWarning));
}

TEST(CddbAnswer, Utf8CheckRejectsWhatIsNotText)
{
    EXPECT_TRUE(LCddbAnswer::IsUtf8("plain \xE2\x82\xAC \xF0\x9F\x8E\xB5"));
    EXPECT_FALSE(LCddbAnswer::IsUtf8("Caf\xE9"));
    EXPECT_FALSE(LCddbAnswer::IsUtf8("\xC0\xAF"));         // overlong
    EXPECT_FALSE(LCddbAnswer::IsUtf8("\xED\xA0\x80"));     // a surrogate
    EXPECT_FALSE(LCddbAnswer::IsUtf8("\xE2\x82"));         // cut short
    EXPECT_FALSE(LCddbAnswer::IsUtf8("\xF4\x90\x80\x80")); // beyond U+10FFFF
}

TEST(CdTitles, FileNamesFromTitles)
{
    EXPECT_EQ(LCd::TrackFileName(3, "Song", "wav"), "03 - Song.wav");
    EXPECT_EQ(LCd::TrackFileName(12, "AC/DC: Live?", ".mp3"), "12 - AC_DC_ Live_.mp3");
    EXPECT_EQ(LCd::TrackFileName(1, "...", "wav"), "01 - Track 01.wav");
    EXPECT_EQ(LCd::TrackFileName(1, "../../etc", "wav"), "01 - .._.._etc.wav");
    EXPECT_EQ(LCd::DefaultTitle(7), "Track 07");
}

TEST(CdTocPaths, RelativeFileNamesBecomeAbsolute)
{
    EXPECT_EQ(LCdTocPaths::Resolve("TRACK AUDIO\nFILE \"a.bin\" 0\nAUDIOFILE \"/abs.wav\" 0\n", "/d"),
              "TRACK AUDIO\nFILE \"/d/a.bin\" 0\nAUDIOFILE \"/abs.wav\" 0\n");
    // Titles and comments are left alone, and an unterminated name does not run away.
    EXPECT_EQ(LCdTocPaths::Resolve("TITLE \"x.bin\" // FILE \"y\"\nDATAFILE \"z", "/d"), "TITLE \"x.bin\" // FILE \"y\"\nDATAFILE \"/d/z");
}

} // namespace

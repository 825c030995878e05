// Bookmark records and the bookmark list beside an audio file.
#include <gtest/gtest.h>

#include <cstring>

#include "project/LBookmarkFile.h"
#include "project/LBytes.h"
#include "support/TestSupport.h"

using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {
std::vector<uint8_t> RecordBytes(const LEdBookMark& b)
{
    LByteWriter out;
    b.Write(out);
    return out.Bytes();
}
} // namespace

TEST(BookmarkRecord, LaysOutItsFieldsPackedLittleEndian)
{
    LEdBookMark b("Chorus", "/music/song.wav", 0x01020304);
    b.nTimesVisited = 7;
    b.nLastVisited = 0xA0B0C0D0;
    const std::vector<uint8_t> v = RecordBytes(b);
    ASSERT_EQ(v.size(), LEdBookMark::kRecordSize);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[0])), "Chorus");
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&v[260])), "/music/song.wav");
    EXPECT_EQ(v[520], 0x04);
    EXPECT_EQ(v[523], 0x01);
    EXPECT_EQ(v[524], 7);
    EXPECT_EQ(v[525], 0xD0);
    EXPECT_EQ(v[528], 0xA0);
}

TEST(BookmarkRecord, ANewBookmarkHasBeenVisitedOnceAndNeverStamped)
{
    LEdBookMark b("x", "/a.wav", 5);
    EXPECT_EQ(b.nTimesVisited, 1);
    EXPECT_EQ(b.nLastVisited, 0u);
    b.Visit(1234);
    EXPECT_EQ(b.nTimesVisited, 2);
    EXPECT_EQ(b.nLastVisited, 1234u);
    b.nTimesVisited = 255;
    b.Visit(1);
    EXPECT_EQ(b.nTimesVisited, 255) << "the count stays at its top";
}

TEST(BookmarkList, RoundTripsByteForByteIncludingBytesAfterTheTerminators)
{
    TempDir dir;
    std::vector<uint8_t> bytes = {0, 2};
    for (int r = 0; r < 2; ++r) {
        std::vector<uint8_t> rec(529);
        for (size_t i = 0; i < rec.size(); ++i)
            rec[i] = static_cast<uint8_t>(i * 7 + r);
        const char szPath[] = "/x/song.wav";
        std::memcpy(&rec[260], szPath, sizeof(szPath));
        rec[259] = 0;
        rec[519] = 0;
        bytes.insert(bytes.end(), rec.begin(), rec.end());
    }
    WriteFileBytes(dir.File("song.snm"), bytes);
    std::vector<LEdBookMark> v;
    ASSERT_EQ(LBookmarkFile::Load(dir.File("song.wav"), v), LBookmarkFile::Loaded);
    ASSERT_EQ(v.size(), 2u);
    EXPECT_EQ(LBookmarkFile::Serialize("/x/song.wav", v), bytes);
}

TEST(BookmarkList, AnUnterminatedNameReadsBackEndedAtByte259)
{
    std::vector<uint8_t> bytes = {0, 1};
    std::vector<uint8_t> rec(529, 'A');
    bytes.insert(bytes.end(), rec.begin(), rec.end());
    std::vector<LEdBookMark> v;
    LByteReader in(bytes.data(), bytes.size());
    ASSERT_EQ(LBookmarkFile::Read(in, v), LBookmarkFile::Loaded);
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(v[0].GetName(), std::string(259, 'A'));
    EXPECT_EQ(v[0].GetPath(), std::string(259, 'A'));
    EXPECT_EQ(v[0].szName[259], '\0');
}

TEST(BookmarkList, AWrongVersionLoadsNothing)
{
    std::vector<uint8_t> bytes = {1, 1};
    std::vector<uint8_t> rec(529, 0);
    bytes.insert(bytes.end(), rec.begin(), rec.end());
    std::vector<LEdBookMark> v;
    LByteReader in(bytes.data(), bytes.size());
    EXPECT_EQ(LBookmarkFile::Read(in, v), LBookmarkFile::BadVersion);
    EXPECT_TRUE(v.empty());
}

// A list is loaded whole or not at all: cut anywhere, padded, or with a count its size
// disagrees with, it is refused with the reason, and nothing is added to the list.
TEST(BookmarkList, ACountThatDisagreesWithTheSizeIsRefused)
{
    std::vector<LEdBookMark> v;
    std::string szWhy;
    const std::vector<uint8_t> vEmpty = {0, 0};
    LByteReader in(vEmpty.data(), vEmpty.size());
    EXPECT_EQ(LBookmarkFile::Read(in, v, &szWhy), LBookmarkFile::Loaded);
    EXPECT_TRUE(v.empty());

    LByteWriter out;
    out.U8(0);
    out.U8(2);
    LEdBookMark("one", "/a.wav", 10).Write(out);
    LEdBookMark("two", "/a.wav", 20).Write(out);
    const std::vector<uint8_t> vWhole = out.Bytes();
    std::vector<std::vector<uint8_t>> vBad = {{}, {0}, {0, 0, 'j', 'u', 'n', 'k'}};
    for (size_t nCut : {1u, 4u, 528u, 529u, 600u})
        vBad.emplace_back(vWhole.begin(), vWhole.end() - static_cast<long>(nCut));
    for (size_t nPad : {1u, 529u}) {
        vBad.push_back(vWhole);
        vBad.back().resize(vWhole.size() + nPad, 0);
    }
    for (const std::vector<uint8_t>& vBytes : vBad) {
        SCOPED_TRACE(std::to_string(vBytes.size()) + " bytes");
        LByteReader bad(vBytes.data(), vBytes.size());
        szWhy.clear();
        EXPECT_EQ(LBookmarkFile::Read(bad, v, &szWhy), LBookmarkFile::Damaged);
        EXPECT_FALSE(szWhy.empty());
        EXPECT_TRUE(v.empty());
    }
    // A negative position is no place in a file.
    std::vector<uint8_t> vNegative = vWhole;
    vNegative[2 + 529 + 523] = 0x80;
    LByteReader neg(vNegative.data(), vNegative.size());
    EXPECT_EQ(LBookmarkFile::Read(neg, v, &szWhy), LBookmarkFile::Damaged);
    EXPECT_EQ(szWhy.rfind("record 2: ", 0), 0u) << szWhy;
    LByteReader whole(vWhole.data(), vWhole.size());
    ASSERT_EQ(LBookmarkFile::Read(whole, v, &szWhy), LBookmarkFile::Loaded);
    EXPECT_EQ(v.size(), 2u);
}

TEST(BookmarkList, AListHolds255BookmarksAndMoreAreRefusedLeavingTheOldList)
{
    TempDir dir;
    const std::string szAudio = dir.File("long.wav");
    std::vector<LEdBookMark> v;
    for (int i = 0; i < 255; ++i)
        v.emplace_back("b" + std::to_string(i), szAudio, i * 10);
    v.emplace_back("another file's", dir.File("other.wav"), 5);
    ASSERT_TRUE(LBookmarkFile::Save(szAudio, v));
    const std::vector<uint8_t> bytes = ReadFileBytes(dir.File("long.snm"));
    std::vector<LEdBookMark> back;
    ASSERT_EQ(LBookmarkFile::Load(szAudio, back), LBookmarkFile::Loaded);
    ASSERT_EQ(back.size(), 255u);
    EXPECT_EQ(back[254].GetName(), "b254");

    v.emplace_back("b255", szAudio, 2550);
    EXPECT_FALSE(LBookmarkFile::Save(szAudio, v));
    EXPECT_EQ(ReadFileBytes(dir.File("long.snm")), bytes);
}

TEST(BookmarkList, AFileWithNoBookmarksOfItsOwnGetsCountZeroAndAnEmptyListDeletesIt)
{
    TempDir dir;
    const std::string szMine = dir.File("mine.wav");
    std::vector<LEdBookMark> v = {LEdBookMark("other", dir.File("other.wav"), 3)};
    ASSERT_TRUE(LBookmarkFile::Save(szMine, v));
    EXPECT_EQ(ReadFileBytes(dir.File("mine.snm")), (std::vector<uint8_t>{0, 0}));
    ASSERT_TRUE(LBookmarkFile::Save(szMine, {}));
    EXPECT_FALSE(LFile::Exists(dir.File("mine.snm")));
    std::vector<LEdBookMark> back;
    EXPECT_EQ(LBookmarkFile::Load(szMine, back), LBookmarkFile::NoFile);
}

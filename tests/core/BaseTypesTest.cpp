#include <gtest/gtest.h>

#include "core/LFile.h"
#include "core/LFixed.h"
#include "core/LList.h"
#include "core/LSettings.h"
#include "core/LSoundSourceBase.h"
#include "core/LSoundTime.h"

TEST(SoundTime, TextFormsOfNegativeAndRoundedTimes)
{
    LSoundTime t(-1500);
    EXPECT_EQ(t.FormatMinSec(), "-00:01");
    EXPECT_EQ(t.FormatMilliseconds(), "-0:00:01.500");
    LSoundTime r(3723996); // 1:02:03.996
    EXPECT_EQ(r.FormatMilliseconds(), "1:02:03.996");
    EXPECT_EQ(r.FormatHundredths(), "1:02:04.00");
    EXPECT_EQ(r.FormatTenths(), "1:02:03.9");
    EXPECT_EQ(r.FormatSeconds(), "1:02:03");
}

TEST(SoundTime, SampleConversionsDoNotOverflowOnLongFiles)
{
    LSoundTime t;
    t.SetSamples(2000000000, 48000); // about 11.5 hours
    EXPECT_EQ(t.GetMilliseconds(), 41666666);
    t.SetSamples(100, 0);
    EXPECT_EQ(t.GetMilliseconds(), 0);
    EXPECT_EQ(LSoundTime::MsToSamples(1500, 44100), 66150);
}

TEST(SoundTime, ParsesSecondsAndClockForms)
{
    LSoundTime t;
    ASSERT_TRUE(LSoundTime::Parse("1.5s", t));
    EXPECT_EQ(t.GetMilliseconds(), 1500);
    ASSERT_TRUE(LSoundTime::Parse("0:01.500", t));
    EXPECT_EQ(t.GetMilliseconds(), 1500);
    ASSERT_TRUE(LSoundTime::Parse("1:02:03.5", t));
    EXPECT_EQ(t.GetMilliseconds(), 3723500);
    ASSERT_TRUE(LSoundTime::Parse("-250ms", t));
    EXPECT_EQ(t.GetMilliseconds(), -250);
    for (const char* sz : {"", "abc", "1.5", "1:", ":5", "1:2:3:4", "5x"})
        EXPECT_FALSE(LSoundTime::Parse(sz, t)) << sz;
}

TEST(Fixed, GainMultiplyDropsTheLowProductAndWraps)
{
    EXPECT_EQ(LMulGain824(0x7FFF0, kGainUnity), 0x7FFF0);
    EXPECT_EQ(LMulGain824(-0x7FFF0, kGainUnity), -0x7FFF0);
    EXPECT_EQ(LMulGain824(0xFFF, 0xFFF), 0); // only the low halves: dropped
    EXPECT_EQ(LMulGain824(0x7FFFFFFF, 0x7FFFFFFF), LMulGain824(0x7FFFFFFF, 0x7FFFFFFF)); // no UB under UBSan
    EXPECT_EQ(LTo16(0x7FFF8), static_cast<int16_t>(-0x8000)); // wraps, no saturation
    EXPECT_EQ(LTo16(LFrom16(-1234)), -1234);
    EXPECT_EQ(LTo8(LFrom8(200)), 200);
}

TEST(List, InsertDetachAndMisuse)
{
    LList<int> list;
    list.Append(1);
    list.Append(3);
    LListIterator<int> it(list);
    EXPECT_TRUE(list.AddAfter(it, 2));
    it.Next();
    it.Next();
    it.Next();
    EXPECT_FALSE(it.IsValid());
    EXPECT_FALSE(list.AddAfter(it, 9));
    EXPECT_FALSE(list.Detach(it));
    it.Next(); // misuse, harmless
    LList<int> copy = list;
    LListIterator<int> c(copy);
    EXPECT_TRUE(copy.Detach(c));
    EXPECT_EQ(*c, 2);
    EXPECT_EQ(copy.Count(), 2u);
    EXPECT_EQ(list.Count(), 3u);
    EXPECT_TRUE(list.Delete(3));
    EXPECT_FALSE(list.Delete(7));
    std::vector<int> seen;
    list.ForEach([&](int v) { seen.push_back(v); });
    EXPECT_EQ(seen, (std::vector<int>{1, 2}));
}

TEST(File, PathHelpersRefuseOverLongPaths)
{
    std::string p = "/a/b.c/name.wav";
    ASSERT_TRUE(LFile::ApplyNewFileExtension(p, ".mp3"));
    EXPECT_EQ(p, "/a/b.c/name.mp3");
    std::string q = "/a/b.c/name";
    ASSERT_TRUE(LFile::ApplyNewFileExtension(q, ".wav"));
    EXPECT_EQ(q, "/a/b.c/name.wav");
    std::string szLong(LFile::kMaxPath, 'x');
    EXPECT_FALSE(LFile::ApplyNewFileExtension(szLong, ".wav"));
    std::string out;
    EXPECT_FALSE(LFile::FilePathCat(out, szLong, "a"));
    ASSERT_TRUE(LFile::FilePathCat(out, "/tmp", "a.aud"));
    EXPECT_EQ(out, "/tmp/a.aud");
    EXPECT_EQ(LFile::ExtensionOf("/x.y/Name.WAV"), ".wav");
    EXPECT_EQ(LFile::ExtensionOf("/x.y/Name"), "");
}

TEST(Settings, TypedValuesAndDefaults)
{
    LMemorySettings store;
    LSettings::SetStore(&store);
    EXPECT_EQ(LSettings::GetInt("Settings", "Missing", 7), 7);
    LSettings::SetBool("Settings", "AutoPlaybackAfterEffects", false);
    EXPECT_FALSE(LSettings::GetBool("Settings", "AutoPlaybackAfterEffects", true));
    std::string v;
    ASSERT_TRUE(store.GetValue("Settings", "AutoPlaybackAfterEffects", v));
    EXPECT_EQ(v, "0");
    LSettings::SetString("StoredValues", "EchoTime", "not a number");
    EXPECT_EQ(LSettings::GetInt("StoredValues", "EchoTime", 800), 800);
    LSettings::SetStore(nullptr);
}

TEST(SoundSource, BadConstructionArgumentsLatchAndSubstitute)
{
    LSoundSourcePtr p(new LSRCSilence);
    EXPECT_TRUE(p->IsError());
    EXPECT_EQ(p->GetSampleRate(), 11025);
    int32_t buf[4] = {1, 2, 3, 4};
    p->Read(buf, 4);
    EXPECT_EQ(buf[3], 0);
    struct Plain : LSoundSourceBase
    {
        Plain() : LSoundSourceBase(0, 0, 1) {}
        void Read(int32_t*, int32_t) override {}
        int32_t GetPosition() override { return 0; }
        int32_t GetLength() override { return 0; }
    };
    LSoundSourcePtr q(new Plain);
    EXPECT_TRUE(q->IsError());
    EXPECT_EQ(q->GetSampleRate(), 44100);
    EXPECT_EQ(q->GetChannels(), 1);
}

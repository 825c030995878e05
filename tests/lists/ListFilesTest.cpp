// Key-macro and batch-script files: the bytes they hold, what a damaged file gives, and the
// settings records the batch commands carry.
#include <gtest/gtest.h>

#include "core/LSettings.h"
#include "dsp/effects/LEffectSettingsRecord.h"
#include "dsp/effects/LStoredValues.h"
#include "lists/LBatchScript.h"
#include "lists/LKeyMacroFile.h"
#include "support/TestSupport.h"

using testsupport::ReadFileBytes;
using testsupport::TempDir;
using testsupport::WriteFileBytes;
using Bytes = std::vector<uint8_t>;

namespace {

void Le32(Bytes& v, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<uint8_t>(n >> (8 * i)));
}

std::vector<LKeyMacro> ParseKeys(const Bytes& v, LListLoad* pResult = nullptr)
{
    std::vector<LKeyMacro> vMacros;
    LMemoryByteReader reader(v.data(), v.size());
    const LListLoad r = LKeyMacroFile::Parse(reader, vMacros);
    if (pResult)
        *pResult = r;
    return vMacros;
}

std::vector<CommandDataItem> ParseScript(const Bytes& v, LListLoad* pResult = nullptr)
{
    std::vector<CommandDataItem> vItems;
    LMemoryByteReader reader(v.data(), v.size());
    const LListLoad r = LBatchScript::Parse(reader, vItems);
    if (pResult)
        *pResult = r;
    return vItems;
}

class ListFilesTest : public ::testing::Test
{
protected:
    void SetUp() override { LSettings::SetStore(&store); }
    void TearDown() override { LSettings::SetStore(nullptr); }
    LMemorySettings store;
    TempDir dir;
};

} // namespace

TEST_F(ListFilesTest, KeysFileLayoutAndRoundTrip)
{
    Bytes v = {0};
    Le32(v, 0x04000041); // Ctrl+A
    v.push_back(3);
    Le32(v, 2007);
    Le32(v, 4002);
    Le32(v, 4007);
    Le32(v, 0x31);
    v.push_back(0);
    const std::string szPath = dir.File("keys.dat");
    WriteFileBytes(szPath, v);
    std::vector<LKeyMacro> vMacros;
    ASSERT_EQ(LKeyMacroFile::Load(szPath, vMacros), LListLoad::Loaded);
    ASSERT_EQ(vMacros.size(), 2u);
    EXPECT_EQ(vMacros[0].uKey, 0x04000041u);
    EXPECT_EQ(vMacros[0].vCommands, (std::vector<uint32_t>{2007, 4002, 4007}));
    EXPECT_TRUE(vMacros[1].vCommands.empty());
    const std::string szAgain = dir.File("again.dat");
    ASSERT_TRUE(LKeyMacroFile::Save(szAgain, vMacros));
    EXPECT_EQ(ReadFileBytes(szAgain), v);
}

TEST_F(ListFilesTest, KeysFileVersionAndMissingFile)
{
    LListLoad r;
    EXPECT_TRUE(ParseKeys({0}, &r).empty());
    EXPECT_EQ(r, LListLoad::Loaded);
    EXPECT_TRUE(ParseKeys({1}, &r).empty());
    EXPECT_EQ(r, LListLoad::BadVersion);
    Bytes v = {1};
    Le32(v, 65);
    v.push_back(0);
    EXPECT_TRUE(ParseKeys(v, &r).empty());
    EXPECT_EQ(r, LListLoad::BadVersion);
    EXPECT_TRUE(ParseKeys({}, &r).empty());
    EXPECT_EQ(r, LListLoad::BadVersion);
    std::vector<LKeyMacro> vMacros = {LKeyMacro{1, {2}}};
    EXPECT_EQ(LKeyMacroFile::Load(dir.File("none.dat"), vMacros), LListLoad::Missing);
    EXPECT_TRUE(vMacros.empty());
    EXPECT_STREQ(LListFile::kVersionMessage,
                 "This file does not have the same version with the current Sonitra version or it is corrupted.");
}

TEST_F(ListFilesTest, KeysFilePartialRecords)
{
    Bytes v = {0};
    Le32(v, 65);
    v.push_back(1);
    Le32(v, 2007);
    // A record cut short before its count is dropped...
    Bytes vNoCount = v;
    Le32(vNoCount, 66);
    EXPECT_EQ(ParseKeys(vNoCount).size(), 1u);
    Bytes vHalfKey = v;
    vHalfKey.push_back(0x42);
    vHalfKey.push_back(0);
    EXPECT_EQ(ParseKeys(vHalfKey).size(), 1u);
    // ...one cut short inside its commands keeps those read.
    Bytes vShort = v;
    Le32(vShort, 66);
    vShort.push_back(3);
    Le32(vShort, 4002);
    vShort.push_back(0x07);
    vShort.push_back(0x0F);
    const std::vector<LKeyMacro> vMacros = ParseKeys(vShort);
    ASSERT_EQ(vMacros.size(), 2u);
    EXPECT_EQ(vMacros[1].uKey, 66u);
    EXPECT_EQ(vMacros[1].vCommands, std::vector<uint32_t>{4002});
}

TEST_F(ListFilesTest, KeysFileCountSaturatesButEveryIdIsWritten)
{
    LKeyMacro big{77, {}};
    for (uint32_t i = 0; i < 300; ++i)
        big.vCommands.push_back(4000 + i);
    const Bytes v = LKeyMacroFile::Serialize({big});
    ASSERT_EQ(v.size(), 1u + 4 + 1 + 300 * 4);
    EXPECT_EQ(v[5], 255);
    // Read back, the first 255 ids make the macro and the rest are taken as further records.
    const std::vector<LKeyMacro> vMacros = ParseKeys(v);
    ASSERT_GE(vMacros.size(), 2u);
    EXPECT_EQ(vMacros[0].vCommands.size(), 255u);
    EXPECT_EQ(vMacros[1].uKey, 4000u + 255);
}

TEST_F(ListFilesTest, KeysFileThatCannotBeCreated)
{
    EXPECT_FALSE(LKeyMacroFile::Save(dir.File("no/such/folder/keys.dat"), {}));
}

TEST_F(ListFilesTest, ScriptLayoutAndRoundTrip)
{
    Bytes v = {0};
    Le32(v, 4002);
    Le32(v, 4);
    Le32(v, 90);
    Le32(v, 4011);
    Le32(v, 4);
    Le32(v, 300);
    Le32(v, 4006);
    Le32(v, 0);
    const std::string szPath = dir.File("s.snb");
    WriteFileBytes(szPath, v);
    std::vector<CommandDataItem> vItems;
    ASSERT_EQ(LBatchScript::Load(szPath, vItems), LListLoad::Loaded);
    ASSERT_EQ(vItems.size(), 3u);
    EXPECT_EQ(vItems[0].uCommandId, 4002u);
    EXPECT_EQ(vItems[1].vData, (Bytes{0x2C, 0x01, 0, 0}));
    EXPECT_TRUE(vItems[2].vData.empty());
    ASSERT_TRUE(LBatchScript::Save(dir.File("t.snb"), vItems));
    EXPECT_EQ(ReadFileBytes(dir.File("t.snb")), v);
}

TEST_F(ListFilesTest, ScriptVersionAndPartialRecords)
{
    LListLoad r;
    EXPECT_TRUE(ParseScript({1}, &r).empty());
    EXPECT_EQ(r, LListLoad::BadVersion);
    EXPECT_TRUE(ParseScript({0}, &r).empty());
    EXPECT_EQ(r, LListLoad::Loaded);
    Bytes v = {0};
    Le32(v, 4006);
    Le32(v, 0);
    // Cut short before its data size: dropped.
    Bytes vNoSize = v;
    Le32(vNoSize, 4002);
    vNoSize.push_back(4);
    EXPECT_EQ(ParseScript(vNoSize).size(), 1u);
    // Cut short inside its data: kept with its declared size.
    Bytes vShort = v;
    Le32(vShort, 4004);
    Le32(vShort, 8);
    Le32(vShort, 500);
    const std::vector<CommandDataItem> vItems = ParseScript(vShort);
    ASSERT_EQ(vItems.size(), 2u);
    EXPECT_EQ(vItems[1].GetDataSize(), 8u);
    EXPECT_EQ(vItems[1].vData, (Bytes{0xF4, 0x01, 0, 0, 0, 0, 0, 0}));
    // A size no settings record can have ends the file instead of exhausting memory.
    Bytes vHuge = v;
    Le32(vHuge, 4002);
    Le32(vHuge, 0xFFFFFFF0u);
    EXPECT_EQ(ParseScript(vHuge).size(), 1u);
}

TEST_F(ListFilesTest, SettingsRecordSizeIsChecked)
{
    CommandDataItem item;
    ASSERT_TRUE(MakeCommandDataItem(4004, item)); // echo: time, gain
    EXPECT_EQ(item.GetDataSize(), 8u);
    LEffectArgs args;
    args.mapValues["EchoTime"] = 1200;
    args.mapValues["EchoGain"] = 30;
    SetCommandDataItemData(item, args);
    EXPECT_EQ(item.vData, (Bytes{0xB0, 0x04, 0, 0, 30, 0, 0, 0}));
    EXPECT_EQ(DescribeCommandDataItem(item), "Echo Time (ms) = 1200, Echo Gain (%) = 30");
    LEffectArgs back;
    ASSERT_TRUE(GetCommandDataItemData(item, back));
    EXPECT_EQ(back.Value("EchoTime"), 1200);
    // Bytes beyond the record are ignored; too few fail the read.
    item.SetDataSize(12);
    EXPECT_TRUE(GetCommandDataItemData(item, back));
    item.SetDataSize(7);
    std::string szError;
    LEffectArgs untouched;
    EXPECT_FALSE(GetCommandDataItemData(item, untouched, &szError));
    EXPECT_EQ(szError, "GetCommandDataItemData failed because datasize is too small");
    EXPECT_TRUE(untouched.mapValues.empty());
    // Negative values travel as two's complement.
    CommandDataItem gate;
    ASSERT_TRUE(MakeCommandDataItem(4010, gate));
    EXPECT_EQ(gate.vData, (Bytes{0xE2, 0xFF, 0xFF, 0xFF}));
}

TEST_F(ListFilesTest, CommandsAScriptMayHold)
{
    CommandDataItem item;
    EXPECT_FALSE(MakeCommandDataItem(9999, item));
    EXPECT_FALSE(MakeCommandDataItem(2005, item)); // paste mix needs a clip
    EXPECT_FALSE(MakeCommandDataItem(0xFFFFFFFFu, item));
    ASSERT_TRUE(MakeCommandDataItem(4006, item));
    EXPECT_TRUE(item.vData.empty());
    EXPECT_EQ(DescribeCommandDataItem(item), "Click on Settings to view or change.");
    // The conversion commands describe the older section's values, not their record.
    LSettings::SetInt(LStoredValues::kDescriptionSection, "ConvertSampleRate", 22050);
    ASSERT_TRUE(MakeCommandDataItem(1006, item));
    EXPECT_EQ(DescribeCommandDataItem(item), "Convert Sample Rate = 22050");
    LStoredValues::Set("NormalizePeakLevel", 80);
    ASSERT_TRUE(MakeCommandDataItem(4002, item));
    EXPECT_EQ(DescribeCommandDataItem(item), "Normalize Peak Level (%) = 80");
}

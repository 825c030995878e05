// Key-macro and batch-script files: the bytes they hold, what a damaged file gives, and the
// settings records the batch commands carry.
#include <gtest/gtest.h>

#include <algorithm>

#include "core/LSettings.h"
#include "dsp/effects/LCurveFile.h"
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

std::vector<LKeyMacro> ParseKeys(const Bytes& v, LListLoad* pResult = nullptr, std::string* pszWhy = nullptr)
{
    std::vector<LKeyMacro> vMacros;
    LByteReader reader(v.data(), v.size());
    const LListLoad r = LKeyMacroFile::Parse(reader, vMacros, pszWhy);
    if (pResult)
        *pResult = r;
    return vMacros;
}

std::vector<CommandDataItem> ParseScript(const Bytes& v, LListLoad* pResult = nullptr, std::string* pszWhy = nullptr)
{
    std::vector<CommandDataItem> vItems;
    LByteReader reader(v.data(), v.size());
    const LListLoad r = LBatchScript::Parse(reader, vItems, pszWhy);
    if (pResult)
        *pResult = r;
    return vItems;
}

// Two macros: Ctrl+A runs three commands, key 0x31 one.
Bytes TwoMacros()
{
    Bytes v = {0};
    Le32(v, 0x04000041);
    v.push_back(3);
    Le32(v, 2007);
    Le32(v, 4002);
    Le32(v, 4007);
    Le32(v, 0x31);
    v.push_back(1);
    Le32(v, 4006);
    return v;
}

// Amplify by 150 %, then fade in, then echo 1200 ms at 30 %.
Bytes ThreeCommands()
{
    Bytes v = {0};
    Le32(v, 4001);
    Le32(v, 4);
    Le32(v, 150);
    Le32(v, 4006);
    Le32(v, 0);
    Le32(v, 4004);
    Le32(v, 8);
    Le32(v, 1200);
    Le32(v, 30);
    return v;
}

// The offsets at which the records of TwoMacros and ThreeCommands end.
const std::vector<size_t> kMacroEnds = {1, 18, 27};
const std::vector<size_t> kCommandEnds = {1, 13, 21, 37};

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
    const Bytes v = TwoMacros();
    const std::string szPath = dir.File("keys.dat");
    WriteFileBytes(szPath, v);
    std::vector<LKeyMacro> vMacros;
    ASSERT_EQ(LKeyMacroFile::Load(szPath, vMacros), LListLoad::Loaded);
    ASSERT_EQ(vMacros.size(), 2u);
    EXPECT_EQ(vMacros[0].uKey, 0x04000041u);
    EXPECT_EQ(vMacros[0].vCommands, (std::vector<uint32_t>{2007, 4002, 4007}));
    EXPECT_EQ(vMacros[1].vCommands, std::vector<uint32_t>{4006});
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

// Cut anywhere inside a record, or with bytes added at the end, the file loads nothing and the
// reason names the record.
TEST_F(ListFilesTest, KeysFileCutShortOrPaddedIsRefused)
{
    const Bytes v = TwoMacros();
    for (size_t n = 1; n < v.size(); ++n) {
        SCOPED_TRACE("cut to " + std::to_string(n) + " bytes");
        const Bytes vCut(v.begin(), v.begin() + static_cast<long>(n));
        LListLoad r;
        std::string szWhy;
        const std::vector<LKeyMacro> vMacros = ParseKeys(vCut, &r, &szWhy);
        if (std::find(kMacroEnds.begin(), kMacroEnds.end(), n) != kMacroEnds.end()) {
            EXPECT_EQ(r, LListLoad::Loaded); // a whole record ends here: a shorter list, not a damaged one
            continue;
        }
        EXPECT_EQ(r, LListLoad::Damaged);
        EXPECT_TRUE(vMacros.empty());
        EXPECT_EQ(szWhy.rfind(n < 18 ? "record 1: " : "record 2: ", 0), 0u) << szWhy;
    }
    for (size_t nPad = 1; nPad <= 9; ++nPad) {
        Bytes vPadded = v;
        vPadded.resize(v.size() + nPad, 0);
        LListLoad r;
        std::string szWhy;
        EXPECT_TRUE(ParseKeys(vPadded, &r, &szWhy).empty());
        EXPECT_EQ(r, LListLoad::Damaged) << nPad;
        EXPECT_EQ(szWhy.rfind("record 3: ", 0), 0u) << szWhy;
    }
    const std::string szPath = dir.File("keys.dat");
    WriteFileBytes(szPath, Bytes(v.begin(), v.end() - 4));
    std::vector<LKeyMacro> vMacros;
    std::string szWhy;
    ASSERT_EQ(LKeyMacroFile::Load(szPath, vMacros, &szWhy), LListLoad::Damaged);
    const std::string szMessage = LListFile::LoadMessage(LListLoad::Damaged, szPath, szWhy);
    EXPECT_NE(szMessage.find(szPath), std::string::npos) << szMessage;
    EXPECT_NE(szMessage.find("record 2"), std::string::npos) << szMessage;
}

TEST_F(ListFilesTest, KeysFileValuesNoMacroCanHaveAreRefused)
{
    auto Macro = [](uint32_t uKey, std::vector<uint32_t> vIds) {
        Bytes v;
        Le32(v, uKey);
        v.push_back(static_cast<uint8_t>(vIds.size()));
        for (uint32_t u : vIds)
            Le32(v, u);
        return v;
    };
    const Bytes vGood = Macro(65, {4001});
    for (const Bytes& vBad : {Macro(0, {4001}), Macro(66, {}), Macro(66, {4001, 0}), Macro(65, {4002})}) {
        Bytes v = {0};
        v.insert(v.end(), vGood.begin(), vGood.end());
        v.insert(v.end(), vBad.begin(), vBad.end());
        LListLoad r;
        std::string szWhy;
        EXPECT_TRUE(ParseKeys(v, &r, &szWhy).empty());
        EXPECT_EQ(r, LListLoad::Damaged);
        EXPECT_EQ(szWhy.rfind("record 2: ", 0), 0u) << szWhy;
    }
}

// The count byte cannot say more than 255: such a macro is refused, and the file on disk stays.
TEST_F(ListFilesTest, KeysFileRefusesAMacroItsCountCannotHold)
{
    const std::string szPath = dir.File("keys.dat");
    const Bytes vOld = TwoMacros();
    WriteFileBytes(szPath, vOld);
    LKeyMacro big{77, {}};
    for (uint32_t i = 0; i < 256; ++i)
        big.vCommands.push_back(4000 + i);
    std::string szError;
    EXPECT_FALSE(LKeyMacroFile::Save(szPath, {big}, &szError));
    EXPECT_NE(szError.find("255"), std::string::npos) << szError;
    EXPECT_EQ(ReadFileBytes(szPath), vOld);
    big.vCommands.resize(255);
    ASSERT_TRUE(LKeyMacroFile::Save(szPath, {big}, &szError)) << szError;
    std::vector<LKeyMacro> vBack;
    ASSERT_EQ(LKeyMacroFile::Load(szPath, vBack), LListLoad::Loaded);
    EXPECT_EQ(vBack, std::vector<LKeyMacro>{big});
}

// The data folder of a fresh install does not exist yet: saving makes it. A folder that cannot
// be made fails the save with the reason.
TEST_F(ListFilesTest, KeysFileMakesItsFolderOrSaysWhyNot)
{
    LSettings::SetString("Folders", "Current", dir.File("fresh/data"));
    const std::vector<LKeyMacro> vMacros = {LKeyMacro{65, {4001, 4006}}};
    std::string szError;
    ASSERT_TRUE(LKeyMacroFile::Save(LKeyMacroFile::DefaultPath(), vMacros, &szError)) << szError;
    std::vector<LKeyMacro> vBack;
    ASSERT_EQ(LKeyMacroFile::Load(dir.File("fresh/data/keys.dat"), vBack), LListLoad::Loaded);
    EXPECT_EQ(vBack, vMacros);
    // The curves of the equalizer and envelope live there too.
    LSettings::SetString("Folders", "Current", dir.File("fresh2/data"));
    LPointList curve;
    curve.Add(20, -6);
    curve.Add(20000, 3);
    ASSERT_TRUE(LCurveFile::Save(LCurveFile::PathOf(LCurveFile::kEqualizerFile), curve, &szError)) << szError;
    EXPECT_EQ(LCurveFile::LoadEqualizer().nPoints, 2);
    EXPECT_EQ(LCurveFile::LoadEqualizer().aPoints[0].y, -6);
    WriteFileBytes(dir.File("plain"), {1});
    EXPECT_FALSE(LKeyMacroFile::Save(dir.File("plain/keys.dat"), vMacros, &szError));
    EXPECT_NE(szError.find("cannot make the folder"), std::string::npos) << szError;
}

TEST_F(ListFilesTest, ScriptLayoutAndRoundTrip)
{
    const Bytes v = ThreeCommands();
    const std::string szPath = dir.File("s.snb");
    WriteFileBytes(szPath, v);
    std::vector<CommandDataItem> vItems;
    ASSERT_EQ(LBatchScript::Load(szPath, vItems), LListLoad::Loaded);
    ASSERT_EQ(vItems.size(), 3u);
    EXPECT_EQ(vItems[0].uCommandId, 4001u);
    EXPECT_EQ(vItems[0].vData, (Bytes{150, 0, 0, 0}));
    EXPECT_TRUE(vItems[1].vData.empty());
    EXPECT_EQ(vItems[2].GetDataSize(), 8u);
    ASSERT_TRUE(LBatchScript::Save(dir.File("t.snb"), vItems));
    EXPECT_EQ(ReadFileBytes(dir.File("t.snb")), v);
}

// Cutting the last 4 bytes off used to leave the last command with zeros for its settings. Cut
// anywhere inside a record or padded, a script now loads nothing and names the record.
TEST_F(ListFilesTest, ScriptCutShortOrPaddedIsRefused)
{
    LListLoad r;
    EXPECT_TRUE(ParseScript({1}, &r).empty());
    EXPECT_EQ(r, LListLoad::BadVersion);
    EXPECT_TRUE(ParseScript({0}, &r).empty());
    EXPECT_EQ(r, LListLoad::Loaded);
    const Bytes v = ThreeCommands();
    for (size_t n = 1; n < v.size(); ++n) {
        SCOPED_TRACE("cut to " + std::to_string(n) + " bytes");
        std::string szWhy;
        const std::vector<CommandDataItem> vItems = ParseScript(Bytes(v.begin(), v.begin() + static_cast<long>(n)), &r, &szWhy);
        if (std::find(kCommandEnds.begin(), kCommandEnds.end(), n) != kCommandEnds.end()) {
            EXPECT_EQ(r, LListLoad::Loaded);
            continue;
        }
        EXPECT_EQ(r, LListLoad::Damaged);
        EXPECT_TRUE(vItems.empty());
        const size_t nRecord = n < 13 ? 1 : n < 21 ? 2 : 3;
        EXPECT_EQ(szWhy.rfind("record " + std::to_string(nRecord) + ": ", 0), 0u) << szWhy;
    }
    for (size_t nPad = 1; nPad <= 12; ++nPad) {
        Bytes vPadded = v;
        vPadded.resize(v.size() + nPad, 0);
        std::string szWhy;
        EXPECT_TRUE(ParseScript(vPadded, &r, &szWhy).empty());
        EXPECT_EQ(r, LListLoad::Damaged) << nPad;
        EXPECT_EQ(szWhy.rfind("record 4: ", 0), 0u) << szWhy;
    }
    // Amplify alone, its gain cut off.
    const std::string szPath = dir.File("cut.snb");
    WriteFileBytes(szPath, Bytes(v.begin(), v.begin() + 9));
    std::vector<CommandDataItem> vItems;
    std::string szWhy;
    EXPECT_EQ(LBatchScript::Load(szPath, vItems, &szWhy), LListLoad::Damaged);
    EXPECT_EQ(szWhy, "record 1: cut short: 0 of its 4 bytes of settings");
}

TEST_F(ListFilesTest, ScriptValuesNoCommandCanRunWithAreRefused)
{
    auto Record = [](uint32_t uId, std::vector<int32_t> vValues) {
        Bytes v;
        Le32(v, uId);
        Le32(v, static_cast<uint32_t>(4 * vValues.size()));
        for (int32_t n : vValues)
            Le32(v, static_cast<uint32_t>(n));
        return v;
    };
    Bytes vHuge;
    Le32(vHuge, 4002);
    Le32(vHuge, 0xFFFFFFF0u);
    const std::pair<Bytes, const char*> aBad[] = {
        {Record(4001, {500}), "Amplify Gain must be less than 400%"},
        {Record(4004, {3000, 30}), "Echo time must be between 10 and 3000ms"},
        {Record(4004, {1200}), "datasize is too small"},
        {Record(9999, {}), "is not a command a batch script can hold"},
        {Record(2005, {100}), "is not a command a batch script can hold"}, // paste mix needs a clip
        {vHuge, "out of range"},
    };
    for (const auto& [vBad, szExpected] : aBad) {
        Bytes v = {0};
        const Bytes vGood = Record(4006, {});
        v.insert(v.end(), vGood.begin(), vGood.end());
        v.insert(v.end(), vBad.begin(), vBad.end());
        LListLoad r;
        std::string szWhy;
        EXPECT_TRUE(ParseScript(v, &r, &szWhy).empty());
        EXPECT_EQ(r, LListLoad::Damaged);
        EXPECT_EQ(szWhy.rfind("record 2: ", 0), 0u) << szWhy;
        EXPECT_NE(szWhy.find(szExpected), std::string::npos) << szWhy;
    }
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

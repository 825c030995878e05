// The catalog of effects agrees with itself and with the command line: every effect has its own
// command and name, its values' defaults pass its own rules, `sonitra-cli effect --help` lists
// it, and a batch script holds it under the same name with its values.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "dsp/effects/LEffectCatalog.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LStoredValues.h"
#include "lists/LBatchScript.h"
#include "support/CliTest.h"

namespace {

std::vector<std::string> Lines(const std::string& sz)
{
    std::vector<std::string> v;
    std::istringstream in(sz);
    for (std::string szLine; std::getline(in, szLine);)
        v.push_back(szLine);
    return v;
}

class EffectCatalogCli : public testsupport::CliTest
{
protected:
    // Runs the tool; its standard output is returned in *pszOut.
    int Cli(const std::string& szArgs, std::string* pszOut)
    {
        const int n = CliApart(szArgs);
        *pszOut = Out();
        return n;
    }
};

} // namespace

TEST(EffectCatalog, CommandsAndNamesAreUniqueAndFindTheirEffect)
{
    std::set<int> setIds;
    std::set<std::string> setNames;
    ASSERT_FALSE(LEffectCatalog::All().empty());
    for (const LEffectInfo* p : LEffectCatalog::All()) {
        const std::string szName = p->szCliName;
        EXPECT_TRUE(setIds.insert(p->nCommandId).second) << szName << " shares command " << p->nCommandId;
        EXPECT_TRUE(setNames.insert(szName).second) << szName << " is named twice";
        EXPECT_EQ(LEffectCatalog::ByCommand(p->nCommandId), p) << szName;
        EXPECT_EQ(LEffectCatalog::ByCliName(szName), p) << szName;
        EXPECT_TRUE(LEffectRunner::IsAvailable(*p)) << szName << " has nothing to run";
        EXPECT_FALSE(szName.empty() || std::string(p->szMenuText).empty() || std::string(p->szHint).empty() ||
                     std::string(p->szUndoLabel).empty() || std::string(p->szCaption).empty())
            << szName << " lacks a text";
        // Names are typed on a command line: lower case words joined by dashes.
        EXPECT_EQ(szName.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos) << szName;
    }
}

TEST(EffectCatalog, EveryDefaultPassesItsRuleAndTheRuleHasItsBounds)
{
    std::map<std::string, const LEffectParam*> mapSeen;
    for (const LEffectInfo* p : LEffectCatalog::All()) {
        for (const LEffectParam& param : p->vParams) {
            const std::string szKey = param.szKey;
            std::string szWhy;
            EXPECT_TRUE(LStoredValues::Accept(szKey, param.nDefault, &szWhy)) << p->szCliName << " " << szKey;
            EXPECT_TRUE(LStoredValues::Accept(szKey, param.nLowest, &szWhy)) << szKey;
            EXPECT_TRUE(LStoredValues::Accept(szKey, param.nHighest, &szWhy)) << szKey;
            EXPECT_FALSE(LStoredValues::Accept(szKey, param.nHighest + 1, &szWhy)) << szKey;
            EXPECT_EQ(szWhy, param.szMessage) << szKey;
            EXPECT_FALSE(LStoredValues::Accept(szKey, param.nLowest - 1, &szWhy)) << szKey;
            EXPECT_FALSE(std::string(param.szLabel).empty()) << szKey << " has no dialog label";
            // A key two effects share is one stored value: it has one rule.
            auto [it, bNew] = mapSeen.emplace(szKey, &param);
            if (!bNew) {
                EXPECT_EQ(it->second->nDefault, param.nDefault) << szKey;
                EXPECT_EQ(it->second->nLowest, param.nLowest) << szKey;
                EXPECT_EQ(it->second->nHighest, param.nHighest) << szKey;
                EXPECT_STREQ(it->second->szMessage, param.szMessage) << szKey;
            }
        }
    }
}

TEST_F(EffectCatalogCli, EffectHelpListsEveryEffectWithItsValues)
{
    std::string szHelp;
    ASSERT_EQ(Cli("effect --help", &szHelp), 0);
    std::map<std::string, std::string> mapLines; // name -> the rest of its help line
    for (const std::string& szLine : Lines(szHelp)) {
        if (szLine.size() < 3 || szLine[0] != ' ' || szLine[1] != ' ' || szLine[2] == ' ')
            continue;
        const size_t nEnd = szLine.find(' ', 2);
        mapLines[szLine.substr(2, nEnd == std::string::npos ? std::string::npos : nEnd - 2)] =
            nEnd == std::string::npos ? "" : szLine.substr(nEnd);
    }
    for (const LEffectInfo* p : LEffectCatalog::All()) {
        ASSERT_TRUE(mapLines.count(p->szCliName)) << p->szCliName << " is missing from the help";
        for (const LEffectParam& param : p->vParams)
            EXPECT_NE(mapLines[p->szCliName].find(std::string(param.szKey) + "="), std::string::npos)
                << p->szCliName << " " << param.szKey;
    }
}

TEST_F(EffectCatalogCli, EveryEffectABatchScriptHoldsRoundTripsByName)
{
    std::string szArgs = "script new " + dir.File("all.snb");
    std::vector<const LEffectInfo*> vHeld;
    for (const LEffectInfo* p : LEffectCatalog::All()) {
        if (!BatchCommandInfo(static_cast<uint32_t>(p->nCommandId))) {
            EXPECT_TRUE(p->bTakesClip) << p->szCliName << " is refused by batch scripts";
            continue;
        }
        szArgs += std::string(vHeld.empty() ? " " : " then ") + p->szCliName;
        vHeld.push_back(p);
    }
    std::string szOut;
    ASSERT_EQ(Cli(szArgs, &szOut), 0);
    ASSERT_EQ(Cli("script show " + dir.File("all.snb"), &szOut), 0);
    const std::vector<std::string> vLines = Lines(szOut);
    ASSERT_EQ(vLines.size(), 2 * vHeld.size());
    for (size_t i = 0; i < vHeld.size(); ++i) {
        std::string szExpected = std::to_string(i + 1) + ". " + vHeld[i]->szCliName;
        for (const LEffectParam& param : vHeld[i]->vParams)
            szExpected += std::string(" ") + param.szKey + "=" + std::to_string(param.nDefault);
        EXPECT_EQ(vLines[2 * i], szExpected);
    }
}

// sonitra-cli script new SCRIPT.snb COMMAND [PARAM=VALUE ...] [then COMMAND ...]
// sonitra-cli script show SCRIPT.snb
#include <cstdio>

#include "cli/LCliArgs.h"
#include "cli/LCliVerb.h"
#include "dsp/CompressorRatioList.h"
#include "lists/EdBatchConverter.h"
#include "lists/LBatchScript.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli script new SCRIPT.snb COMMAND [PARAM=VALUE ...] [then COMMAND ...]\n"
    "       sonitra-cli script show SCRIPT.snb\n"
    "\n"
    "new writes a batch script for sonitra-cli batch and the editor's Batch Converter: the\n"
    "commands in order, separated by 'then'. COMMAND and PARAM are those of sonitra-cli\n"
    "effect (normalize NormalizePeakLevel=90, high-pass-filter LowCutFreq=300, fade-in, ...);\n"
    "a parameter not given takes its stored value or default, and a value the editor's dialog\n"
    "would refuse is refused with the same message. The equalizer and the envelope use the\n"
    "stored curve when the script runs.\n"
    "\n"
    "show lists a script's commands with their settings and descriptions.\n"
    "Exit status: 0 done, 2 the script cannot be read or written, 64 wrong usage.";

bool UsageError(const std::string& szText)
{
    LCliError("script: " + szText + " (try sonitra-cli script --help)");
    return false;
}

bool TakesKey(const LEffectInfo& info, const std::string& szKey)
{
    return LEffectCatalog::ParamOf(info, szKey) != nullptr;
}

bool ParseValue(const std::string& szKey, const std::string& szText, int32_t& nValue)
{
    if (szKey == "CompressorRatio")
        for (int32_t i = 0; i < kCompressorRatioCount; ++i)
            if (szText == CompressorRatioList[i].szLabel) {
                nValue = i;
                return true;
            }
    return LCliParseInt(szText, INT32_MIN, INT32_MAX, nValue);
}

// One command and its parameters, up to the next "then".
bool TakeCommand(const std::vector<std::string>& vWords, CommandDataItem& item)
{
    const LEffectInfo* pInfo = LEffectCatalog::ByCliName(vWords[0]);
    if (!pInfo || !BatchCommandInfo(static_cast<uint32_t>(pInfo->nCommandId)))
        return UsageError("'" + vWords[0] + "' cannot be part of a batch script");
    LEffectArgs args;
    for (size_t i = 1; i < vWords.size(); ++i) {
        const size_t nEq = vWords[i].find('=');
        const std::string szKey = vWords[i].substr(0, nEq);
        if (nEq == std::string::npos || !TakesKey(*pInfo, szKey))
            return UsageError(vWords[0] + " has no parameter '" + szKey + "'");
        int32_t nValue = 0;
        if (!ParseValue(szKey, vWords[i].substr(nEq + 1), nValue))
            return UsageError(szKey + " takes a whole number, not '" + vWords[i].substr(nEq + 1) + "'");
        args.mapValues[szKey] = nValue;
    }
    std::string szMessage;
    if (!args.Validate(*pInfo, &szMessage)) {
        LCliError(szMessage);
        return false;
    }
    item.uCommandId = static_cast<uint32_t>(pInfo->nCommandId);
    SetCommandDataItemData(item, args);
    return true;
}

int RunNew(const std::vector<std::string>& vArgs)
{
    if (vArgs.size() < 3)
        return UsageError("new needs a script file and at least one command"), CliUsage;
    std::vector<CommandDataItem> vItems;
    std::vector<std::string> vWords;
    for (size_t i = 2; i <= vArgs.size(); ++i) {
        if (i < vArgs.size() && vArgs[i] != "then") {
            vWords.push_back(vArgs[i]);
            continue;
        }
        if (vWords.empty())
            return UsageError("'then' needs a command on each side"), CliUsage;
        CommandDataItem item;
        if (!TakeCommand(vWords, item))
            return CliUsage;
        vItems.push_back(std::move(item));
        vWords.clear();
    }
    std::string szError;
    if (!LBatchScript::Save(vArgs[1], vItems, &szError)) {
        LCliError(LListFile::SaveFailedMessage(vArgs[1], szError));
        return CliError;
    }
    return CliDone;
}

int RunShow(const std::vector<std::string>& vArgs)
{
    if (vArgs.size() != 2)
        return UsageError("show needs exactly one script file"), CliUsage;
    std::vector<CommandDataItem> vItems;
    std::string szWhy;
    const LListLoad result = LBatchScript::Load(vArgs[1], vItems, &szWhy);
    if (result == LListLoad::Damaged) {
        LCliError(LListFile::DamagedMessage(vArgs[1], szWhy));
        return CliError;
    }
    if (result != LListLoad::Loaded) {
        LCliError(vArgs[1] + ": " + LListFile::LoadMessage(result, vArgs[1], szWhy));
        return CliError;
    }
    bool bAllUsable = true;
    for (size_t i = 0; i < vItems.size(); ++i) {
        const LEffectInfo* pInfo = BatchCommandInfo(vItems[i].uCommandId);
        if (!pInfo) {
            std::printf("%zu. unknown command %u\n", i + 1, vItems[i].uCommandId);
            bAllUsable = false;
            continue;
        }
        std::string szLine = LEffectCatalog::CliName(*pInfo);
        LEffectArgs args;
        const bool bRead = GetCommandDataItemData(vItems[i], args);
        if (bRead)
            for (const LEffectParam& param : pInfo->vParams)
                szLine += std::string(" ") + param.szKey + "=" + std::to_string(args.Value(param.szKey));
        bAllUsable = bAllUsable && bRead;
        std::printf("%zu. %s\n   %s\n", i + 1, szLine.c_str(), DescribeCommandRecord(vItems[i]).c_str());
    }
    if (vItems.empty())
        std::printf("(no commands)\n");
    return bAllUsable ? CliDone : CliError;
}

int RunScript(const std::vector<std::string>& vArgs)
{
    if (!vArgs.empty() && vArgs[0] == "new")
        return RunNew(vArgs);
    if (!vArgs.empty() && vArgs[0] == "show")
        return RunShow(vArgs);
    UsageError("expects 'new' or 'show'");
    return CliUsage;
}

} // namespace

static LCliVerb verbScript("script", "write or show a batch script", kUsage, RunScript);

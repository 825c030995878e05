#include "lists/LBatchScript.h"

#include "core/LSettings.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LEffectSettingsRecord.h"
#include "dsp/effects/LStoredValues.h"

const LEffectInfo* BatchCommandInfo(uint32_t uCommandId)
{
    if (uCommandId > INT32_MAX)
        return nullptr;
    const LEffectInfo* pInfo = LEffectCatalog::ByCommand(static_cast<int>(uCommandId));
    // The mixing effects need a clip the script cannot carry.
    if (!pInfo || !LEffectRunner::IsAvailable(*pInfo) || pInfo->bTakesClip)
        return nullptr;
    return pInfo;
}

bool GetCommandDataItemData(const CommandDataItem& item, LEffectArgs& args, std::string* pszError)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    if (!pInfo) {
        if (pszError)
            *pszError = "unknown command " + std::to_string(item.uCommandId);
        return false;
    }
    if (!LEffectSettingsRecord::Read(*pInfo, item.vData.data(), item.vData.size(), args)) {
        LTRACE("GetCommandDataItemData failed because datasize is too small");
        if (pszError)
            *pszError = LBatchScript::kTooSmall;
        return false;
    }
    return true;
}

void SetCommandDataItemData(CommandDataItem& item, const LEffectArgs& args)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    item.vData = pInfo ? LEffectSettingsRecord::Write(*pInfo, args) : std::vector<uint8_t>();
}

bool MakeCommandDataItem(uint32_t uCommandId, CommandDataItem& item)
{
    const LEffectInfo* pInfo = BatchCommandInfo(uCommandId);
    if (!pInfo)
        return false;
    item.uCommandId = uCommandId;
    item.vData = LEffectSettingsRecord::FromStored(*pInfo);
    return true;
}

std::string DescribeCommandDataItem(const CommandDataItem& item)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    if (!pInfo)
        return "";
    LEffectArgs args;
    if (!GetCommandDataItemData(item, args))
        return LBatchScript::kTooSmall;
    return LEffectCatalog::Describe(*pInfo, args);
}

std::string DescribeCommandRecord(const CommandDataItem& item)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    LEffectArgs args;
    if (!pInfo || !GetCommandDataItemData(item, args))
        return DescribeCommandDataItem(item);
    return LEffectCatalog::DescribeValues(*pInfo, args);
}

std::string LBatchScript::CheckItem(const CommandDataItem& item)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    if (!pInfo)
        return "command id " + std::to_string(item.uCommandId) + " is not a command a batch script can hold";
    LEffectArgs args;
    std::string szError;
    if (!GetCommandDataItemData(item, args, &szError))
        return LEffectCatalog::CliName(*pInfo) + ": " + szError;
    if (!args.Validate(*pInfo, &szError))
        return LEffectCatalog::CliName(*pInfo) + ": " + szError;
    return std::string();
}

LListLoad LBatchScript::Load(const std::string& szPath, std::vector<CommandDataItem>& vItems, std::string* pszWhy)
{
    vItems.clear();
    LFile file;
    if (LListFile::Open(szPath, file) != LListLoad::Loaded)
        return LListLoad::Missing;
    LByteReader reader(file);
    return Parse(reader, vItems, pszWhy);
}

namespace {
// One record at the reader; Loaded, or Damaged with the reason.
LListLoad ReadItem(LByteReader& in, size_t nRecord, CommandDataItem& item, std::string* pszWhy)
{
    if (in.Remaining() < 8)
        return LListFile::Damaged(nRecord,
                                  "cut short: " + std::to_string(in.Remaining()) + " of the 8 bytes of its header",
                                  pszWhy);
    uint32_t nSize = 0;
    if (!in.U32(item.uCommandId) || !in.U32(nSize))
        return LListFile::Damaged(nRecord, "cannot be read", pszWhy);
    if (nSize > LBatchScript::kMaxDataSize)
        return LListFile::Damaged(nRecord, "a settings size of " + std::to_string(nSize) + " bytes is out of range",
                                  pszWhy);
    if (static_cast<int64_t>(nSize) > in.Remaining())
        return LListFile::Damaged(nRecord,
                                  "cut short: " + std::to_string(in.Remaining()) + " of its " +
                                      std::to_string(nSize) + " bytes of settings",
                                  pszWhy);
    item.SetDataSize(nSize);
    if (nSize && !in.Raw(item.vData.data(), nSize))
        return LListFile::Damaged(nRecord, "cannot be read", pszWhy);
    const std::string szProblem = LBatchScript::CheckItem(item);
    if (!szProblem.empty())
        return LListFile::Damaged(nRecord, szProblem, pszWhy);
    return LListLoad::Loaded;
}
} // namespace

LListLoad LBatchScript::Parse(LByteReader& reader, std::vector<CommandDataItem>& vItems, std::string* pszWhy)
{
    vItems.clear();
    const LListLoad version = LListFile::ReadVersion(reader, "LBatchScript::Parse");
    if (version != LListLoad::Loaded)
        return version;
    std::vector<CommandDataItem> vRead;
    while (reader.Remaining() > 0) {
        CommandDataItem item;
        const LListLoad r = ReadItem(reader, vRead.size() + 1, item, pszWhy);
        if (r != LListLoad::Loaded)
            return r;
        vRead.push_back(std::move(item));
    }
    vItems = std::move(vRead);
    return LListLoad::Loaded;
}

std::vector<uint8_t> LBatchScript::Serialize(const std::vector<CommandDataItem>& vItems)
{
    LByteWriter out;
    out.U8(LListFile::kVersion);
    for (const CommandDataItem& item : vItems) {
        out.U32(item.uCommandId);
        out.U32(item.GetDataSize());
        out.Raw(item.vData.data(), item.vData.size());
    }
    return out.Bytes();
}

bool LBatchScript::Save(const std::string& szPath, const std::vector<CommandDataItem>& vItems, std::string* pszError)
{
    return LAtomicFile::Write(szPath, Serialize(vItems), pszError);
}

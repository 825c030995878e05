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
    if (!pInfo || !LEffectRunner::IsAvailable(pInfo->kind) || pInfo->kind == LEffectKind::PasteMix ||
        pInfo->kind == LEffectKind::MixFile)
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
    return LEffectCatalog::Describe(pInfo->kind, args);
}

LListLoad LBatchScript::Load(const std::string& szPath, std::vector<CommandDataItem>& vItems)
{
    vItems.clear();
    LFile file;
    if (!file.Open(szPath, LFile::ReadExisting))
        return LListLoad::Missing;
    LFileByteReader reader(file);
    return Parse(reader, vItems);
}

LListLoad LBatchScript::Parse(LByteReader& reader, std::vector<CommandDataItem>& vItems)
{
    vItems.clear();
    uint8_t nVersion = 0xFF;
    if (reader.Read(&nVersion, 1) != 1 || nVersion != LListFile::kVersion) {
        LTRACE("LBatchScript::Parse bad version");
        return LListLoad::BadVersion;
    }
    for (;;) {
        CommandDataItem item;
        uint32_t nSize = 0;
        // A record cut short before its data size is dropped.
        if (!reader.ReadU32(item.uCommandId) || !reader.ReadU32(nSize))
            break;
        if (nSize > kMaxDataSize) {
            LTRACE("LBatchScript::Parse data size %u too large", nSize);
            break;
        }
        item.SetDataSize(nSize);
        // Cut short inside its data: kept with its declared size, the missing bytes zero.
        const bool bShort = reader.Read(item.vData.data(), nSize) != nSize;
        vItems.push_back(std::move(item));
        if (bShort)
            break;
    }
    return LListLoad::Loaded;
}

std::vector<uint8_t> LBatchScript::Serialize(const std::vector<CommandDataItem>& vItems)
{
    LByteWriter out;
    out.U8(LListFile::kVersion);
    for (const CommandDataItem& item : vItems) {
        out.U32(item.uCommandId);
        out.U32(item.GetDataSize());
        out.Bytes(item.vData);
    }
    return out.Get();
}

bool LBatchScript::Save(const std::string& szPath, const std::vector<CommandDataItem>& vItems)
{
    LByteWriter out;
    out.Bytes(Serialize(vItems));
    return out.SaveTo(szPath);
}

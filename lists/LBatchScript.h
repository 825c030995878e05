// Batch scripts (".snb"): a list of commands, each with the settings record it runs with.
// Record: command id (4 bytes), data size s (4 bytes), s bytes of data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"
#include "lists/LListFile.h"

struct CommandDataItem
{
    uint32_t uCommandId = 0;
    std::vector<uint8_t> vData; // the command's settings record; empty for commands without settings

    uint32_t GetDataSize() const { return static_cast<uint32_t>(vData.size()); }
    // Reallocates the data to the new size; new bytes are zero.
    void SetDataSize(uint32_t nSize) { vData.resize(nSize); }

    bool operator==(const CommandDataItem&) const = default;
};

// The effect a command runs; null for an id no batch script may hold.
const LEffectInfo* BatchCommandInfo(uint32_t uCommandId);

// The command's settings from its record. False (the args untouched) when the stored size is smaller
// than the record the effect expects; *pszError then says so.
bool GetCommandDataItemData(const CommandDataItem& item, LEffectArgs& args, std::string* pszError = nullptr);
// Stores exactly the record's size.
void SetCommandDataItemData(CommandDataItem& item, const LEffectArgs& args);
// A command with the stored values of its effect; false for an id no batch script may hold.
bool MakeCommandDataItem(uint32_t uCommandId, CommandDataItem& item);
// The description line of the command, from its record (the conversions, as in the editor, from
// the older settings section).
std::string DescribeCommandDataItem(const CommandDataItem& item);
// The description from the command's own record for every command, the conversions included.
std::string DescribeCommandRecord(const CommandDataItem& item);

class LBatchScript
{
public:
    static constexpr const char* kUntitled = "Untitled.snb";
    // A data size above this cannot be a settings record.
    static constexpr uint32_t kMaxDataSize = 1u << 20;
    static constexpr const char* kTooSmall = "GetCommandDataItemData failed because datasize is too small";

    // Every record whole, of a command a script may hold, with settings its effect accepts;
    // otherwise the list stays empty and *pszWhy names the first bad record.
    static LListLoad Load(const std::string& szPath, std::vector<CommandDataItem>& vItems,
                          std::string* pszWhy = nullptr);
    static LListLoad Parse(LByteReader& reader, std::vector<CommandDataItem>& vItems, std::string* pszWhy = nullptr);
    static std::vector<uint8_t> Serialize(const std::vector<CommandDataItem>& vItems);
    // Replaces the file only once the new one is whole; false with the reason otherwise.
    static bool Save(const std::string& szPath, const std::vector<CommandDataItem>& vItems,
                     std::string* pszError = nullptr);

    // The command's problem, if any: an id no script may hold, a settings record too small, or a
    // value its effect refuses. Empty when it can run.
    static std::string CheckItem(const CommandDataItem& item);
};

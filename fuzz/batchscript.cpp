// Feeds arbitrary bytes to the batch-script reader, then reads and describes every command it
// holds the way the converter and the script editor do.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "lists/EdBatchConverter.h"
#include "lists/LBatchScript.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<CommandDataItem> vItems;
    LMemoryByteReader reader(pData, nSize);
    if (LBatchScript::Parse(reader, vItems) != LListLoad::Loaded)
        return 0;
    for (const CommandDataItem& item : vItems) {
        LEffectArgs args;
        (void)GetCommandDataItemData(item, args);
        (void)DescribeCommandDataItem(item);
    }
    std::string szError;
    (void)EdBatchConverter::CheckScript(vItems, &szError);
    const std::vector<uint8_t> vBytes = LBatchScript::Serialize(vItems);
    std::vector<CommandDataItem> vAgain;
    LMemoryByteReader again(vBytes.data(), vBytes.size());
    if (LBatchScript::Parse(again, vAgain) != LListLoad::Loaded || vAgain != vItems)
        std::abort();
    return 0;
}

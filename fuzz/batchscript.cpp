// Feeds arbitrary bytes to the batch-script reader, then reads and describes every command it
// holds the way the converter and the script editor do; what it accepts must be runnable and
// must write back to the same bytes.
#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstdlib>

#include "lists/EdBatchConverter.h"
#include "lists/LBatchScript.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<CommandDataItem> vItems;
    LByteReader reader(pData, nSize);
    std::string szWhy;
    if (LBatchScript::Parse(reader, vItems, &szWhy) != LListLoad::Loaded)
        return 0;
    for (const CommandDataItem& item : vItems) {
        LEffectArgs args;
        (void)GetCommandDataItemData(item, args);
        (void)DescribeCommandDataItem(item);
    }
    std::string szError;
    if (!EdBatchConverter::CheckScript(vItems, &szError))
        std::abort();
    const std::vector<uint8_t> vBytes = LBatchScript::Serialize(vItems);
    if (vBytes.size() != nSize || !std::equal(vBytes.begin(), vBytes.end(), pData))
        std::abort();
    std::vector<CommandDataItem> vAgain;
    LByteReader again(vBytes.data(), vBytes.size());
    if (LBatchScript::Parse(again, vAgain) != LListLoad::Loaded || vAgain != vItems)
        std::abort();
    return 0;
}

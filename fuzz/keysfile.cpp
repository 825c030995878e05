// Feeds arbitrary bytes to the key-macro reader; whatever it accepts must write back to the same
// bytes and read again to the same list.
#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstdlib>

#include "lists/LKeyMacroFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<LKeyMacro> vMacros;
    LByteReader reader(pData, nSize);
    std::string szWhy;
    if (LKeyMacroFile::Parse(reader, vMacros, &szWhy) != LListLoad::Loaded)
        return 0;
    const std::vector<uint8_t> vBytes = LKeyMacroFile::Serialize(vMacros);
    if (vBytes.size() != nSize || !std::equal(vBytes.begin(), vBytes.end(), pData))
        std::abort();
    std::vector<LKeyMacro> vAgain;
    LByteReader again(vBytes.data(), vBytes.size());
    if (LKeyMacroFile::Parse(again, vAgain) != LListLoad::Loaded || vAgain != vMacros)
        std::abort();
    return 0;
}

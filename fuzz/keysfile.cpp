// Feeds arbitrary bytes to the key-macro reader; whatever it accepts must write back and read again
// to the same list when no count saturated.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "lists/LKeyMacroFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    std::vector<LKeyMacro> vMacros;
    LMemoryByteReader reader(pData, nSize);
    if (LKeyMacroFile::Parse(reader, vMacros) != LListLoad::Loaded)
        return 0;
    const std::vector<uint8_t> vBytes = LKeyMacroFile::Serialize(vMacros);
    std::vector<LKeyMacro> vAgain;
    LMemoryByteReader again(vBytes.data(), vBytes.size());
    if (LKeyMacroFile::Parse(again, vAgain) != LListLoad::Loaded || vAgain != vMacros)
        std::abort();
    return 0;
}

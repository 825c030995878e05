// Feeds arbitrary bytes to the AU reader as a file, reads the whole source and seeks around.
#include "formats/LAuFile.h"
#include "fuzz/LFuzzSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const char* szPath = fuzzsupport::FuzzPath("au", ".au");
    if (!fuzzsupport::WriteInput(szPath, pData, nSize))
        return 0;
    LSoundSourcePtr pSrc = LAuFile::OpenSource(szPath);
    fuzzsupport::Exercise(*pSrc, 1 << 18);
    return 0;
}

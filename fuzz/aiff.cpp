// Feeds arbitrary bytes to the AIFF and AIFF-C reader as a file, reads the whole source and seeks around.
#include "formats/LAifFile.h"
#include "fuzz/LFuzzSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const char* szPath = fuzzsupport::FuzzPath("aiff", ".aif");
    if (!fuzzsupport::WriteInput(szPath, pData, nSize))
        return 0;
    LSoundSourcePtr pSrc = LAifFile::OpenSource(szPath);
    fuzzsupport::Exercise(*pSrc, 1 << 18);
    return 0;
}

// Feeds arbitrary bytes to the WAV reader as a file, reads the whole source and seeks around.
#include "formats/LWaveFile.h"
#include "fuzz/LFuzzSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const char* szPath = fuzzsupport::FuzzPath("wav", ".wav");
    if (!fuzzsupport::WriteInput(szPath, pData, nSize))
        return 0;
    LSoundSourcePtr pSrc = LWaveFile::OpenSource(szPath);
    // What the file really holds never exceeds the claim; loading relies on it.
    const int32_t nHeld = pSrc->GetLengthInFile();
    if (nHeld < 0 || nHeld > pSrc->GetLength())
        std::abort();
    fuzzsupport::Exercise(*pSrc, 1 << 18);
    return 0;
}

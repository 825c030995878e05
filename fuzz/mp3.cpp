// Feeds arbitrary bytes to the MP3 reader as a file, reads the whole source and seeks around. A long
// estimate from a few frames is believed, so less is read straight through than elsewhere.
#include "formats/mp3/LMP3Source.h"
#include "fuzz/LFuzzSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const char* szPath = fuzzsupport::FuzzPath("mp3", ".mp3");
    if (!fuzzsupport::WriteInput(szPath, pData, nSize))
        return 0;
    LSoundSourcePtr pSrc(new LMP3Source(szPath));
    fuzzsupport::Exercise(*pSrc, 1 << 15);
    return 0;
}

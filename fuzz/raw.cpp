// Feeds arbitrary bytes to the headerless readers (VOX ADPCM and the six sample layouts) as a
// file, reads the whole source and seeks around. The first byte picks the layout and channel count.
#include "core/LFile.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LSRCVOX.h"
#include "fuzz/LFuzzSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    const char* szPath = fuzzsupport::FuzzPath("raw", ".raw");
    if (!fuzzsupport::WriteInput(szPath, pData, nSize))
        return 0;
    if (nSize == 0)
        return 0;
    const int32_t nEncoding = pData[0] % 7;
    const uint8_t nChans = static_cast<uint8_t>(1 + (pData[0] >> 3) % 4);
    LSoundSourcePtr pSrc;
    if (nEncoding == 0) {
        pSrc = new LSRCVOX(szPath, 8000);
    } else {
        LFile file;
        file.Open(szPath, LFile::ReadExisting);
        file.Seek(1);
        pSrc = LMakeRawSource(nEncoding, std::move(file), 8000, LRawFileDataSoundSourceBase::kUnspecifiedLength, nChans);
    }
    fuzzsupport::Exercise(*pSrc, 1 << 18);
    return 0;
}

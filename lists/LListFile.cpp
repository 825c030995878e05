#include "lists/LListFile.h"

#include <algorithm>
#include <cstring>

#include "core/LTrace.h"

bool LByteReader::ReadU32(uint32_t& nValue)
{
    uint8_t b[4];
    if (Read(b, 4) != 4)
        return false;
    nValue = static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
             static_cast<uint32_t>(b[3]) << 24;
    return true;
}

size_t LMemoryByteReader::Read(void* pBuffer, size_t nBytes)
{
    const size_t n = std::min(nBytes, nSize - nPos);
    if (n)
        std::memcpy(pBuffer, pData + nPos, n);
    nPos += n;
    return n;
}

size_t LFileByteReader::Read(void* pBuffer, size_t nBytes)
{
    const int64_t n = file.Read(pBuffer, static_cast<int64_t>(nBytes));
    return n > 0 ? static_cast<size_t>(n) : 0;
}

void LByteWriter::U32(uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        vBytes.push_back(static_cast<uint8_t>(n >> (8 * i)));
}

bool LByteWriter::SaveTo(const std::string& szPath) const
{
    LFile file;
    if (!file.Open(szPath, LFile::ReadWriteCreate)) {
        LTRACE("LByteWriter::SaveTo cannot create %s", szPath.c_str());
        return false;
    }
    const int64_t nSize = static_cast<int64_t>(vBytes.size());
    if (file.Write(vBytes.data(), nSize) != nSize) {
        LTRACE("LByteWriter::SaveTo short write %s", szPath.c_str());
        return false;
    }
    return true;
}

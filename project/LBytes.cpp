#include "project/LBytes.h"

#include <algorithm>

bool LByteReader::Fill()
{
    if (bEnd)
        return false;
    if (bMemory) {
        // The whole buffer is the data: it is handed over once.
        bEnd = true;
        return false;
    }
    const int64_t nGot = pFile->Read(vBuffer, sizeof(vBuffer));
    if (nGot <= 0) {
        bEnd = true;
        return false;
    }
    nHave = static_cast<size_t>(nGot);
    nPos = 0;
    return true;
}

bool LByteReader::Raw(void* p, size_t n)
{
    if (bFailed)
        return false;
    auto* pOut = static_cast<uint8_t*>(p);
    if (bMemory) {
        if (static_cast<int64_t>(n) > nFileSize - nConsumed) {
            bFailed = true;
            return false;
        }
        if (n)
            std::memcpy(pOut, pMem + nConsumed, n);
        nConsumed += static_cast<int64_t>(n);
        return true;
    }
    while (n > 0) {
        if (nPos == nHave && !Fill()) {
            bFailed = true;
            return false;
        }
        const size_t nTake = std::min(n, nHave - nPos);
        std::memcpy(pOut, vBuffer + nPos, nTake);
        nPos += nTake;
        pOut += nTake;
        n -= nTake;
        nConsumed += static_cast<int64_t>(nTake);
    }
    return true;
}

bool LByteReader::U16(uint16_t& v)
{
    uint8_t b[2];
    if (!Raw(b, 2))
        return false;
    v = static_cast<uint16_t>(b[0] | (b[1] << 8));
    return true;
}

bool LByteReader::U32(uint32_t& v)
{
    uint8_t b[4];
    if (!Raw(b, 4))
        return false;
    v = static_cast<uint32_t>(b[0]) | (static_cast<uint32_t>(b[1]) << 8) | (static_cast<uint32_t>(b[2]) << 16) |
        (static_cast<uint32_t>(b[3]) << 24);
    return true;
}

bool LByteReader::I32(int32_t& v)
{
    uint32_t u;
    if (!U32(u))
        return false;
    v = static_cast<int32_t>(u);
    return true;
}

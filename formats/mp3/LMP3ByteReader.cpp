#include "formats/mp3/LMP3ByteReader.h"

#include <algorithm>
#include <cstring>

void LMP3ByteReader::Attach(LFile* pFileIn, int64_t nBytes)
{
    pFile = pFileIn;
    nStreamBytes = std::max<int64_t>(nBytes, 0);
    SeekTo(0);
}

bool LMP3ByteReader::Fill()
{
    const int64_t nWant = std::min<int64_t>(kBufferBytes, nUnread);
    if (!pFile || nWant <= 0)
        return false;
    const int64_t nGot = pFile->Read(aBuffer, nWant);
    nHave = static_cast<int>(std::max<int64_t>(nGot, 0));
    nNext = 0;
    return nHave > 0;
}

bool LMP3ByteReader::Read(void* pOut, int64_t nBytes)
{
    uint8_t* p = static_cast<uint8_t*>(pOut);
    while (nBytes > 0) {
        if (nNext >= nHave && !Fill())
            return false;
        const int n = static_cast<int>(std::min<int64_t>(nBytes, nHave - nNext));
        if (p) {
            std::memcpy(p, aBuffer + nNext, static_cast<size_t>(n));
            p += n;
        }
        nNext += n;
        nUnread -= n;
        nBytes -= n;
    }
    return true;
}

bool LMP3ByteReader::Skip(int64_t nBytes)
{
    if (nBytes <= nHave - nNext) {
        nNext += static_cast<int>(nBytes);
        nUnread -= nBytes;
        return true;
    }
    if (nBytes > nUnread) {
        Read(nullptr, nUnread);
        return false;
    }
    return SeekTo(GetOffset() + nBytes);
}

bool LMP3ByteReader::SeekTo(int64_t nOffset)
{
    nHave = nNext = 0;
    nOffset = std::clamp<int64_t>(nOffset, 0, nStreamBytes);
    nUnread = nStreamBytes - nOffset;
    return pFile && pFile->Seek(nOffset) == nOffset;
}

bool LMP3ByteReader::StepBack(int64_t nBytes)
{
    if (nBytes <= nNext) {
        nNext -= static_cast<int>(nBytes);
        nUnread += nBytes;
        return true;
    }
    return SeekTo(GetOffset() - nBytes);
}

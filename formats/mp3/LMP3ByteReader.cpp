#include "formats/mp3/LMP3ByteReader.h"

#include <algorithm>
#include <cstring>

void LMP3ByteReader::Attach(LFile* pFileIn, int64_t nFirst, int64_t nBytes)
{
    pFile = pFileIn;
    nFirstByte = std::max<int64_t>(nFirst, 0);
    nStreamBytes = std::max<int64_t>(nBytes, 0);
    SeekTo(0);
}

bool LMP3ByteReader::Fill()
{
    const int64_t nWant = std::min<int64_t>(kBufferBytes, nUnread);
    if (!pFile || nWant <= 0)
        return false;
    if (bFileMoved) {
        bFileMoved = false;
        if (pFile->Seek(nFirstByte + GetOffset()) != nFirstByte + GetOffset())
            return false;
    }
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
    bFileMoved = false;
    nOffset = std::clamp<int64_t>(nOffset, 0, nStreamBytes);
    nUnread = nStreamBytes - nOffset;
    return pFile && pFile->Seek(nFirstByte + nOffset) == nFirstByte + nOffset;
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

bool LMP3ByteReader::Peek(int64_t nAhead, uint8_t* pOut, int nBytes)
{
    if (nAhead < 0 || nBytes < 0 || nAhead + nBytes > nUnread || !pFile)
        return false;
    if (nNext + nAhead + nBytes <= nHave) {
        std::memcpy(pOut, aBuffer + nNext + nAhead, static_cast<size_t>(nBytes));
        return true;
    }
    // Beyond the buffer: read there directly; the next fill goes back to where the buffer ends.
    const int64_t nAt = nFirstByte + GetOffset() + nAhead;
    bFileMoved = true;
    return pFile->Seek(nAt) == nAt && pFile->Read(pOut, nBytes) == nBytes;
}

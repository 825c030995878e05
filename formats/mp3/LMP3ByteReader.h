// Buffered reading of the audio part of an MP3 file (the bytes between the leading and the
// trailing tags), counting what is still unread: a read past the part's end fails. Offsets are
// counted from the start of the audio part.
#pragma once

#include <cstdint>

#include "core/LFile.h"

class LMP3ByteReader
{
public:
    // The audio part is nStreamBytes bytes from file offset nFirstByte.
    void Attach(LFile* pFile, int64_t nFirstByte, int64_t nStreamBytes);

    // All nBytes or false; what was read is taken off the bytes unread either way.
    bool Read(void* pOut, int64_t nBytes);
    bool Skip(int64_t nBytes);
    // Moves to an offset in the audio part; the bytes unread follow.
    bool SeekTo(int64_t nOffset);
    // Moves back over bytes just read (within what the buffer holds).
    bool StepBack(int64_t nBytes);
    // Copies nBytes that lie nAhead bytes past the read position without moving it; false when
    // they are not all inside the audio part.
    bool Peek(int64_t nAhead, uint8_t* pOut, int nBytes);

    int64_t GetUnread() const { return nUnread; }
    int64_t GetStreamBytes() const { return nStreamBytes; }
    int64_t GetOffset() const { return nStreamBytes - nUnread; }

private:
    bool Fill();

    static constexpr int kBufferBytes = 16384;
    LFile* pFile = nullptr;
    int64_t nFirstByte = 0;
    int64_t nStreamBytes = 0;
    int64_t nUnread = 0;
    bool bFileMoved = false; // a look ahead moved the file away from where the buffer ends
    uint8_t aBuffer[kBufferBytes];
    int nHave = 0;
    int nNext = 0;
};

// Buffered reading of an MP3 file that counts what is still unread of the stream: a read past
// the stream's end fails.
#pragma once

#include <cstdint>

#include "core/LFile.h"

class LMP3ByteReader
{
public:
    void Attach(LFile* pFile, int64_t nStreamBytes);

    // All nBytes or false; what was read is taken off the bytes unread either way.
    bool Read(void* pOut, int64_t nBytes);
    bool Skip(int64_t nBytes);
    // Moves to an offset from the start of the file; the bytes unread follow.
    bool SeekTo(int64_t nOffset);
    // Moves back over bytes just read (within what the buffer holds).
    bool StepBack(int64_t nBytes);

    int64_t GetUnread() const { return nUnread; }
    int64_t GetStreamBytes() const { return nStreamBytes; }
    int64_t GetOffset() const { return nStreamBytes - nUnread; }

private:
    bool Fill();

    static constexpr int kBufferBytes = 16384;
    LFile* pFile = nullptr;
    int64_t nStreamBytes = 0;
    int64_t nUnread = 0;
    uint8_t aBuffer[kBufferBytes];
    int nHave = 0;
    int nNext = 0;
};

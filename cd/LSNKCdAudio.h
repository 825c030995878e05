// A sink that writes CD audio: 44100 Hz stereo as 16-bit little-endian samples, appended to an
// open file. It counts what it wrote so that tracks can be padded to whole sectors.
#pragma once

#include <cstdio>
#include <vector>

#include "core/LSoundSinkBase.h"

class LSNKCdAudio : public LSoundSinkBase
{
public:
    explicit LSNKCdAudio(std::FILE* pFile); // not owned
    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Flushes what was written; the file itself is closed (and checked) by its owner.
    bool Complete() override;
    // Writes silence up to the next whole sector; false (latched) when the file refused it.
    bool PadToSector();
    int64_t FramesWritten() const { return nFramesWritten; }

    // Appends nSectors of silence to a file.
    static bool WriteSilence(std::FILE* pFile, int32_t nSectors);

private:
    std::FILE* pFile;
    std::vector<uint8_t> vBytes;
    int64_t nFramesWritten = 0;
};

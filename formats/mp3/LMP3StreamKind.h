// Tells what MPEG audio a block of bytes holds when our Layer III decoder finds none it can
// read: a Layer I or II stream, or a free-format one (bit-rate index 0, whose frame length only
// the distance between its headers gives). Like the frame search, it believes a header only when
// the frames after it follow where it says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

class LMP3StreamKind
{
public:
    enum Kind
    {
        None,
        Layer1,
        Layer2,
        Layer3,
        FreeFormat,
    };

    static Kind Classify(const uint8_t* p, size_t nBytes);
    // "MPEG-1 Layer II", "free-format MPEG Layer III"; empty for None.
    static std::string Describe(Kind kind);
    // Of the bytes at p (at least 4): the frame length in bytes, 0 when they are no frame header
    // of a known bit rate, -1 for a free-format header.
    static int FrameBytes(const uint8_t* p);

private:
    static bool FollowedByFrames(const uint8_t* p, size_t nBytes, size_t i);
    static bool FreeFormatRepeats(const uint8_t* p, size_t nBytes, size_t i);
};

// A named position in one audio file. On disk a record is 529 packed bytes:
//   0 name (260, NUL-terminated) | 260 path of the audio file (260, NUL-terminated)
//   520 position in frames (4) | 524 times visited (1) | 525 last visited (4)
// all little-endian. The last-visited stamp is seconds since 1970-01-01 UTC, unsigned, 0 for
// never. The texts are kept as the fixed buffers they are on disk, so that a record read and
// written again comes out byte for byte the same.
#pragma once

#include <cstdint>
#include <string>

class LByteReader;
class LByteWriter;

class LEdBookMark
{
public:
    static constexpr size_t kRecordSize = 529;
    static constexpr size_t kTextSize = 260;

    LEdBookMark();
    LEdBookMark(const std::string& szName, const std::string& szPath, int32_t sPosition);

    std::string GetName() const;
    std::string GetPath() const;
    // Texts longer than 259 bytes are cut there.
    void SetName(const std::string& sz);
    void SetPath(const std::string& sz);

    // One more visit, now.
    void Visit(uint32_t nNow);

    void Write(LByteWriter& out) const;
    // False on a short record. Bytes 259 and 519 are forced to 0 so both texts end.
    bool Read(LByteReader& in);

    char szName[kTextSize];
    char szPath[kTextSize];
    int32_t sPosition = 0;
    uint8_t nTimesVisited = 1;
    uint32_t nLastVisited = 0;
};

// Sets a fixed text field: the text cut to fit with its terminator, the rest zeros.
void LSetFixedText(char* pField, size_t nSize, const std::string& sz);
std::string LGetFixedText(const char* pField, size_t nSize);

// The tags that files carry around their MPEG audio: ID3v2 at the front (and sometimes at the
// end, with its footer), ID3v1 ("TAG", with the "TAG+" extension before it), APEv2 and Lyrics3
// at the end. Only the bytes they take are found here; what they say is not read.
#pragma once

#include <cstdint>

#include "core/LFile.h"

class LMP3Tags
{
public:
    // The bytes that ID3v2 tags take at the front of a file of nFileBytes, each skipped by its
    // declared size (header, extended header and frames, and a footer when its flag is set).
    static int64_t LeadingBytes(LFile& file, int64_t nFileBytes);
    // The bytes that tags take at the end of the file, none of them reaching before nFrom.
    static int64_t TrailingBytes(LFile& file, int64_t nFrom, int64_t nFileBytes);

    static constexpr int kId3v2HeaderBytes = 10;

    // The size of an ID3v2 tag whose header (or footer, with szMagic "3DI") is the 10 bytes at
    // p: header, body and footer; 0 when the bytes are not one.
    static int64_t Id3v2Bytes(const uint8_t* p, const char* szMagic = "ID3");
};

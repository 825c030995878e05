// Little-endian packing for the project and bookmark files: a growing byte buffer for writing,
// and a buffered reader over a file that says when a read fell short.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/LFile.h"

class LByteWriter
{
public:
    void U8(uint8_t v) { vBytes.push_back(v); }
    void U16(uint16_t v)
    {
        U8(static_cast<uint8_t>(v));
        U8(static_cast<uint8_t>(v >> 8));
    }
    void U32(uint32_t v)
    {
        U16(static_cast<uint16_t>(v));
        U16(static_cast<uint16_t>(v >> 16));
    }
    void I32(int32_t v) { U32(static_cast<uint32_t>(v)); }
    void Raw(const void* p, size_t n)
    {
        const auto* pb = static_cast<const uint8_t*>(p);
        vBytes.insert(vBytes.end(), pb, pb + n);
    }
    const std::vector<uint8_t>& Bytes() const { return vBytes; }
    size_t Size() const { return vBytes.size(); }

private:
    std::vector<uint8_t> vBytes;
};

// Reads a file front to back through a small buffer; nothing is ever allocated from a count
// found in the file. Once a read falls short the reader stays failed.
class LByteReader
{
public:
    explicit LByteReader(LFile& file) : pFile(&file), nFileSize(file.Size()) {}
    // Over bytes in memory (the fuzz targets and tests).
    LByteReader(const uint8_t* pData, size_t nSize)
        : pMem(pData), bMemory(true), nFileSize(static_cast<int64_t>(nSize))
    {
    }
    LByteReader(const LByteReader&) = delete;
    LByteReader& operator=(const LByteReader&) = delete;

    bool Raw(void* p, size_t n);
    bool U8(uint8_t& v) { return Raw(&v, 1); }
    bool U16(uint16_t& v);
    bool U32(uint32_t& v);
    bool I32(int32_t& v);
    bool Failed() const { return bFailed; }
    // Bytes not yet read (as far as the file's size tells).
    int64_t Remaining() const { return nFileSize - nConsumed; }
    // Whether what is left is exactly nCount records of nRecordSize bytes: a count that
    // disagrees with the file's size means the file is damaged.
    bool HoldsRecords(uint64_t nCount, size_t nRecordSize) const
    {
        return !bFailed && static_cast<uint64_t>(Remaining()) == nCount * nRecordSize;
    }

private:
    bool Fill();

    LFile* pFile = nullptr;
    const uint8_t* pMem = nullptr;
    bool bMemory = false; // over bytes in memory (which may be none at all)
    int64_t nFileSize = 0;
    int64_t nConsumed = 0;
    uint8_t vBuffer[65536];
    size_t nHave = 0;
    size_t nPos = 0;
    bool bFailed = false;
    bool bEnd = false;
};

// What the small list files (key macros, batch scripts) share: a one-byte version that must be 0,
// then records until a read comes back short, integers little-endian.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LFile.h"

enum class LListLoad
{
    Loaded,     // read (possibly with a cut-short record at the end dropped or kept)
    Missing,    // no such file: an empty list, not an error
    BadVersion, // the version byte is not 0, or the file is empty
};

namespace LListFile {
constexpr const char* kCaption = "File Error";
constexpr const char* kVersionMessage =
    "This file does not have the same version with the current Sonitra version or it is corrupted.";
constexpr const char* kCannotCreateMessage =
    "Sonitra cannot open this file. The file does not exist or may be corrupted.";
constexpr uint8_t kVersion = 0;
} // namespace LListFile

// Where the bytes of a list come from: a file, or memory (tests, fuzzing).
class LByteReader
{
public:
    virtual ~LByteReader() = default;
    // The bytes read; fewer than asked only at the end.
    virtual size_t Read(void* pBuffer, size_t nBytes) = 0;

    // A little-endian 32-bit value; false when fewer than 4 bytes came.
    bool ReadU32(uint32_t& nValue);
};

class LMemoryByteReader : public LByteReader
{
public:
    LMemoryByteReader(const uint8_t* pData, size_t nSize) : pData(pData), nSize(nSize) {}
    size_t Read(void* pBuffer, size_t nBytes) override;

private:
    const uint8_t* pData;
    size_t nSize;
    size_t nPos = 0;
};

class LFileByteReader : public LByteReader
{
public:
    explicit LFileByteReader(LFile& file) : file(file) {}
    size_t Read(void* pBuffer, size_t nBytes) override;

private:
    LFile& file;
};

// Little-endian output into a growing buffer; written to disk in one go.
class LByteWriter
{
public:
    void U8(uint8_t n) { vBytes.push_back(n); }
    void U32(uint32_t n);
    void Bytes(const std::vector<uint8_t>& v) { vBytes.insert(vBytes.end(), v.begin(), v.end()); }
    const std::vector<uint8_t>& Get() const { return vBytes; }

    // Creates the file anew (replacing an old one) and writes everything; false when it cannot.
    bool SaveTo(const std::string& szPath) const;

private:
    std::vector<uint8_t> vBytes;
};

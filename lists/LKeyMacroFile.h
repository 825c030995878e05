// Key macros and their file "keys.dat": a key code and the menu commands it runs, in order.
// Record: key code (4 bytes), command count (1 byte, saturating at 255), the command ids (4 bytes
// each). A macro of more than 255 commands still has every id written, so its count disagrees
// with its data; keep macros short.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lists/LListFile.h"

struct LKeyMacro
{
    uint32_t uKey = 0;
    std::vector<uint32_t> vCommands;

    bool operator==(const LKeyMacro&) const = default;
};

class LKeyMacroFile
{
public:
    static constexpr const char* kFileName = "keys.dat";

    // "keys.dat" in the data folder.
    static std::string DefaultPath();

    // A missing file gives an empty list. A bad version leaves the list empty.
    static LListLoad Load(const std::string& szPath, std::vector<LKeyMacro>& vMacros);
    static LListLoad Parse(LByteReader& reader, std::vector<LKeyMacro>& vMacros);
    static std::vector<uint8_t> Serialize(const std::vector<LKeyMacro>& vMacros);
    // Creates the file anew; false when it cannot be created or written.
    static bool Save(const std::string& szPath, const std::vector<LKeyMacro>& vMacros);
};

// Key macros and their file "keys.dat": a key code and the menu commands it runs, in order.
// Record: key code (4 bytes), command count (1 byte), the command ids (4 bytes each). The count
// byte cannot say more than 255, so a longer macro is refused rather than saved unreadable.
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
    static constexpr size_t kMaxCommands = 255;

    // "keys.dat" in the data folder.
    static std::string DefaultPath();

    // A missing file gives an empty list. A bad version, a record cut short, a key or command 0
    // or a key bound twice leaves the list empty; *pszWhy then names the record.
    static LListLoad Load(const std::string& szPath, std::vector<LKeyMacro>& vMacros, std::string* pszWhy = nullptr);
    static LListLoad Parse(LByteReader& reader, std::vector<LKeyMacro>& vMacros, std::string* pszWhy = nullptr);
    static std::vector<uint8_t> Serialize(const std::vector<LKeyMacro>& vMacros);
    // Replaces the file once the new one is whole, making the data folder when it is missing;
    // false with the reason (also for a macro of more than 255 commands).
    static bool Save(const std::string& szPath, const std::vector<LKeyMacro>& vMacros, std::string* pszError = nullptr);
};

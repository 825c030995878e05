#include "lists/LKeyMacroFile.h"

#include <algorithm>

#include "core/LSettings.h"
#include "core/LTrace.h"

std::string LKeyMacroFile::DefaultPath()
{
    return LSettings::DataFilePath(kFileName);
}

LListLoad LKeyMacroFile::Load(const std::string& szPath, std::vector<LKeyMacro>& vMacros, std::string* pszWhy)
{
    vMacros.clear();
    LFile file;
    if (LListFile::Open(szPath, file) != LListLoad::Loaded)
        return LListLoad::Missing;
    LByteReader reader(file);
    return Parse(reader, vMacros, pszWhy);
}

namespace {
LListLoad ReadMacro(LByteReader& in, size_t nRecord, const std::vector<LKeyMacro>& vBefore, LKeyMacro& macro,
                    std::string* pszWhy)
{
    uint8_t nCount = 0;
    if (in.Remaining() < 5 || !in.U32(macro.uKey) || !in.U8(nCount))
        return LListFile::Damaged(nRecord, "cut short before its command count", pszWhy);
    if (in.Remaining() < 4 * static_cast<int64_t>(nCount))
        return LListFile::Damaged(nRecord,
                                  "cut short: " + std::to_string(nCount) + " commands need " +
                                      std::to_string(4 * nCount) + " bytes, the file holds " +
                                      std::to_string(in.Remaining()),
                                  pszWhy);
    if (macro.uKey == 0)
        return LListFile::Damaged(nRecord, "key code 0 is no key", pszWhy);
    if (nCount == 0)
        return LListFile::Damaged(nRecord, "a macro without commands", pszWhy);
    for (const LKeyMacro& m : vBefore)
        if (m.uKey == macro.uKey)
            return LListFile::Damaged(nRecord, "its key already runs an earlier macro", pszWhy);
    for (uint8_t i = 0; i < nCount; ++i) {
        uint32_t uId = 0;
        if (!in.U32(uId))
            return LListFile::Damaged(nRecord, "cannot be read", pszWhy);
        if (uId == 0)
            return LListFile::Damaged(nRecord, "command id 0 is no command", pszWhy);
        macro.vCommands.push_back(uId);
    }
    return LListLoad::Loaded;
}
} // namespace

LListLoad LKeyMacroFile::Parse(LByteReader& reader, std::vector<LKeyMacro>& vMacros, std::string* pszWhy)
{
    vMacros.clear();
    const LListLoad version = LListFile::ReadVersion(reader, "LKeyMacroFile::Parse");
    if (version != LListLoad::Loaded)
        return version;
    std::vector<LKeyMacro> vRead;
    while (reader.Remaining() > 0) {
        LKeyMacro macro;
        const LListLoad r = ReadMacro(reader, vRead.size() + 1, vRead, macro, pszWhy);
        if (r != LListLoad::Loaded)
            return r;
        vRead.push_back(std::move(macro));
    }
    vMacros = std::move(vRead);
    return LListLoad::Loaded;
}

std::vector<uint8_t> LKeyMacroFile::Serialize(const std::vector<LKeyMacro>& vMacros)
{
    LByteWriter out;
    out.U8(LListFile::kVersion);
    for (const LKeyMacro& m : vMacros) {
        out.U32(m.uKey);
        out.U8(static_cast<uint8_t>(std::min(m.vCommands.size(), kMaxCommands)));
        for (uint32_t uId : m.vCommands)
            out.U32(uId);
    }
    return out.Bytes();
}

bool LKeyMacroFile::Save(const std::string& szPath, const std::vector<LKeyMacro>& vMacros, std::string* pszError)
{
    for (const LKeyMacro& m : vMacros)
        if (m.vCommands.size() > kMaxCommands) {
            if (pszError)
                *pszError = "a macro holds at most 255 commands; one holds " + std::to_string(m.vCommands.size());
            return false;
        }
    return LAtomicFile::Write(szPath, Serialize(vMacros), pszError, LAtomicFile::MakeFolder);
}

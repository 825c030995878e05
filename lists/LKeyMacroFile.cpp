#include "lists/LKeyMacroFile.h"

#include <algorithm>

#include "core/LSettings.h"
#include "core/LTrace.h"

std::string LKeyMacroFile::DefaultPath()
{
    return LSettings::DataFilePath(kFileName);
}

LListLoad LKeyMacroFile::Load(const std::string& szPath, std::vector<LKeyMacro>& vMacros)
{
    vMacros.clear();
    LFile file;
    if (!file.Open(szPath, LFile::ReadExisting))
        return LListLoad::Missing;
    LFileByteReader reader(file);
    return Parse(reader, vMacros);
}

LListLoad LKeyMacroFile::Parse(LByteReader& reader, std::vector<LKeyMacro>& vMacros)
{
    vMacros.clear();
    uint8_t nVersion = 0xFF;
    if (reader.Read(&nVersion, 1) != 1 || nVersion != LListFile::kVersion) {
        LTRACE("LKeyMacroFile::Parse bad version");
        return LListLoad::BadVersion;
    }
    for (;;) {
        LKeyMacro macro;
        uint8_t nCount = 0;
        // A record cut short before its count is dropped.
        if (!reader.ReadU32(macro.uKey) || reader.Read(&nCount, 1) != 1)
            break;
        bool bShort = false;
        for (uint8_t i = 0; i < nCount; ++i) {
            uint32_t uId = 0;
            if (!reader.ReadU32(uId)) {
                bShort = true;
                break;
            }
            macro.vCommands.push_back(uId);
        }
        // Cut short inside its command list: kept with the commands read so far.
        vMacros.push_back(std::move(macro));
        if (bShort)
            break;
    }
    return LListLoad::Loaded;
}

std::vector<uint8_t> LKeyMacroFile::Serialize(const std::vector<LKeyMacro>& vMacros)
{
    LByteWriter out;
    out.U8(LListFile::kVersion);
    for (const LKeyMacro& m : vMacros) {
        out.U32(m.uKey);
        out.U8(static_cast<uint8_t>(std::min<size_t>(m.vCommands.size(), 255)));
        for (uint32_t uId : m.vCommands)
            out.U32(uId);
    }
    return out.Get();
}

bool LKeyMacroFile::Save(const std::string& szPath, const std::vector<LKeyMacro>& vMacros)
{
    LByteWriter out;
    out.Bytes(Serialize(vMacros));
    return out.SaveTo(szPath);
}

#include "formats/LAudioFormat.h"

#include "core/LFile.h"
#include "formats/LWaveFormat.h"

const std::vector<const LAudioFormat*>& LAudioFormat::All()
{
    // A new format module is added here.
    static const LWaveFormat wave;
    static const std::vector<const LAudioFormat*> vFormats = {&wave};
    return vFormats;
}

const LAudioFormat* LAudioFormat::ByExtension(const std::string& szPath)
{
    const std::string szExt = LFile::ExtensionOf(szPath);
    for (const LAudioFormat* p : All())
        if (!szExt.empty() && p->HasExtension(szExt))
            return p;
    return nullptr;
}

const LAudioFormat* LAudioFormat::ByContent(const uint8_t* pHead, size_t nBytes)
{
    for (const LAudioFormat* p : All())
        if (p->MatchesContent(pHead, nBytes))
            return p;
    return nullptr;
}

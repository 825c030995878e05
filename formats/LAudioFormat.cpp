#include "formats/LAudioFormat.h"

#include <algorithm>

#include "core/LFile.h"
#include "formats/LAifFormat.h"
#include "formats/LAuFormat.h"
#include "formats/LExternalFormat.h"
#include "formats/LGSMFormat.h"
#include "formats/LVoxRawFormat.h"
#include "formats/LWaveFormat.h"
#include "formats/mp3/LMP3Format.h"

namespace {

// "*.wav;*.wave" -> {".wav", ".wave"}
std::vector<std::string> ExtensionsOf(const std::string& szPatterns)
{
    std::vector<std::string> v;
    size_t nStart = 0;
    while (nStart <= szPatterns.size()) {
        size_t nEnd = szPatterns.find(';', nStart);
        if (nEnd == std::string::npos)
            nEnd = szPatterns.size();
        const std::string szOne = szPatterns.substr(nStart, nEnd - nStart);
        if (szOne.size() > 2 && szOne[0] == '*' && szOne[1] == '.')
            v.push_back(szOne.substr(1));
        nStart = nEnd + 1;
    }
    return v;
}

} // namespace

const std::vector<const LAudioFormat*>& LAudioFormat::All()
{
    // A new format module is added here; the order is the order of the file dialogs' filters.
    static const LWaveFormat wave;
    static const LMP3Format mp3;
    static const LVoxRawFormat vox(true);
    static const LGSMFormat gsm;
    static const LExternalFormat other({"Other",
                                        {{"Real Audio Files(*.rm;*.ram;*.rm)", "*.rm;*.ram;*.ra"},
                                         {"Olympus Files(*.dss)", "*.dss"},
                                         {"Windows Media Audio Files(*.wma)", "*.wma"},
                                         {"Dictation Files(*.dct)", "*.dct"},
                                         {"AAC Files(*.aac)", "*.aac;*.m4a"},
                                         {"Opus Files(*.opus)", "*.opus"}},
                                        nullptr, true, {"ffmpeg"}, {}, nullptr, 0});
    static const LVoxRawFormat raw(false);
    static const LAifFormat aif;
    static const LAuFormat au;
    static const LExternalFormat flac({"FLAC", {{"FLAC Files(*.flac)", "*.flac"}}, "fLaC", false, {"flac", "ffmpeg"},
                                       {"flac", "ffmpeg-flac"}, "FlacCompression", 5});
    static const LExternalFormat ogg({"OGG", {{"OGG Files(*.ogg)", "*.ogg;*.oga"}}, "OggS", false,
                                      {"oggdec", "ffmpeg"}, {"oggenc", "ffmpeg-vorbis"}, "OggQuality", 5});
    static const LExternalFormat mp2({"MP2", {{"MPEG Layer-1/2 Files(*.mp2;*.mp1)", "*.mp2;*.mp1;*.mpa"}}, nullptr,
                                      false, {"ffmpeg"}, {}, nullptr, 0});
    static const std::vector<const LAudioFormat*> vFormats = {&wave, &mp3, &vox, &gsm, &other, &raw,
                                                              &aif,  &au,  &flac, &ogg, &mp2};
    return vFormats;
}

bool LAudioFormat::HasExtension(const std::string& szExt) const
{
    for (const LAudioFileType& type : GetFileTypes())
        for (const std::string& sz : ExtensionsOf(type.szPatterns))
            if (sz == szExt)
                return true;
    return false;
}

bool LAudioFormat::CanWrite(const LAudioEncoding& encoding) const
{
    const std::vector<std::string> v = GetEncodings();
    if (v.empty() || (!encoding.szFormat.empty() && encoding.szFormat != GetName()))
        return false;
    return encoding.szName.empty() || std::find(v.begin(), v.end(), encoding.szName) != v.end();
}

std::string LAudioFormat::GetDefaultExtension() const
{
    for (const LAudioFileType& type : GetFileTypes())
        for (const std::string& sz : ExtensionsOf(type.szPatterns))
            return sz;
    return std::string();
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

const LAudioFormat* LAudioFormat::ByName(const std::string& szName)
{
    for (const LAudioFormat* p : All())
        if (szName == p->GetName())
            return p;
    return nullptr;
}

std::vector<LAudioFileType> LAudioFormat::OpenTypes()
{
    std::vector<LAudioFileType> v;
    for (const LAudioFormat* p : All())
        for (const LAudioFileType& type : p->GetFileTypes())
            v.push_back(type);
    return v;
}

std::vector<LAudioFileType> LAudioFormat::SaveTypes()
{
    std::vector<LAudioFileType> v;
    for (const LAudioFormat* p : All())
        if (p->CanWrite())
            for (const LAudioFileType& type : p->GetFileTypes())
                v.push_back(type);
    return v;
}

std::string LAudioFormat::AllPatterns(const std::vector<LAudioFileType>& vTypes)
{
    std::vector<std::string> vSeen;
    std::string sz;
    for (const LAudioFileType& type : vTypes) {
        for (const std::string& szExt : ExtensionsOf(type.szPatterns)) {
            if (std::find(vSeen.begin(), vSeen.end(), szExt) != vSeen.end())
                continue;
            vSeen.push_back(szExt);
            sz += (sz.empty() ? "*" : ";*") + szExt;
        }
    }
    return sz;
}

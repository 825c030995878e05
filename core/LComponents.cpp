#include "core/LComponents.h"

#include <cctype>
#include <cstdlib>
#include <unistd.h>

#include "core/LSettings.h"

std::string LComponents::GetPath(const std::string& szName)
{
    return LSettings::GetString(kSection, szName + "/Path");
}

void LComponents::SetPath(const std::string& szName, const std::string& szPath)
{
    LSettings::SetString(kSection, szName + "/Path", szPath);
}

std::string LComponents::FindOnPath(const std::string& szProgram)
{
    const char* szPath = std::getenv("PATH");
    if (!szPath || szProgram.empty() || szProgram.find('/') != std::string::npos)
        return std::string();
    const std::string sz(szPath);
    size_t nStart = 0;
    while (nStart <= sz.size()) {
        size_t nEnd = sz.find(':', nStart);
        if (nEnd == std::string::npos)
            nEnd = sz.size();
        const std::string szDir = sz.substr(nStart, nEnd - nStart);
        if (!szDir.empty()) {
            const std::string szFull = szDir + (szDir.back() == '/' ? "" : "/") + szProgram;
            if (::access(szFull.c_str(), X_OK) == 0)
                return szFull;
        }
        nStart = nEnd + 1;
    }
    return std::string();
}

std::string LComponents::Find(const std::string& szProgram)
{
    const std::string szSet = GetPath(szProgram);
    if (!szSet.empty() && ::access(szSet.c_str(), X_OK) == 0)
        return szSet;
    return FindOnPath(szProgram);
}

std::string LComponents::MissingText(const std::string& szProgram, const std::string& szPackage)
{
    return "the program '" + szProgram + "' is not installed (install the package '" + szPackage +
           "', e.g. sudo apt-get install " + szPackage + ")";
}

std::string LComponents::ProgramFor(const std::string& szName)
{
    return szName == kMp3Encoder ? "lame" : szName;
}

std::string LComponents::Resolve(const std::string& szName)
{
    const std::string szSet = GetPath(szName);
    if (!szSet.empty() && ::access(szSet.c_str(), X_OK) == 0)
        return szSet;
    const std::string szFound = FindOnPath(ProgramFor(szName));
    if (!szFound.empty())
        SetPath(szName, szFound);
    return szFound;
}

std::string LComponents::DisplayName(const std::string& szName)
{
    const std::string szProgram = ProgramFor(szName);
    return szName == kMp3Encoder ? "the MP3 encoder (" + szProgram + ")" : "the component \"" + szName + "\"";
}

std::string LComponents::NotInstalledText(const std::string& szName)
{
    const std::string szPackage = ProgramFor(szName);
    return DisplayName(szName) + " is not installed: install the package \"" + szPackage +
           "\" (for example: sudo apt-get install " + szPackage + ")";
}

std::string LComponents::NotInstalledMessage(const std::string& szName)
{
    std::string szText = DisplayName(szName);
    szText[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(szText[0])));
    const std::string szPackage = ProgramFor(szName);
    return szText + " has not yet been installed.\n\nThis free component is installed with the system's package "
                    "manager: install the package \"" +
           szPackage + "\" (for example: sudo apt-get install " + szPackage + ").";
}

#include "platform/engine/LComponents.h"

#include "core/LSettings.h"
#include "platform/engine/LChildProcess.h"

std::string LComponents::Find(const std::string& szProgram)
{
    const std::string szSet = LSettings::GetString("Components", szProgram + "/Path");
    if (!szSet.empty()) {
        const std::string szFound = LChildProcess::FindOnPath(szSet);
        if (!szFound.empty())
            return szFound;
    }
    return LChildProcess::FindOnPath(szProgram);
}

std::string LComponents::MissingText(const std::string& szProgram, const std::string& szPackage)
{
    return "the program '" + szProgram + "' is not installed (install the package '" + szPackage +
           "', e.g. sudo apt-get install " + szPackage + ")";
}

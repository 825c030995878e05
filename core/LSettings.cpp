#include "core/LSettings.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include "core/LFile.h"

bool LMemorySettings::GetValue(const std::string& szSection, const std::string& szName, std::string& szValue)
{
    std::lock_guard<std::mutex> lock(mtx);
    auto it = mapValues.find(szSection + '\n' + szName);
    if (it == mapValues.end())
        return false;
    szValue = it->second;
    return true;
}

void LMemorySettings::SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue)
{
    std::lock_guard<std::mutex> lock(mtx);
    mapValues[szSection + '\n' + szName] = szValue;
}

void LMemorySettings::DeleteValue(const std::string& szSection, const std::string& szName)
{
    std::lock_guard<std::mutex> lock(mtx);
    mapValues.erase(szSection + '\n' + szName);
}

static std::atomic<LSettingsStore*> g_pStore{nullptr};

LSettingsStore& LSettings::Store()
{
    static LMemorySettings memory;
    LSettingsStore* p = g_pStore.load();
    return p ? *p : memory;
}

void LSettings::SetStore(LSettingsStore* pStore)
{
    g_pStore.store(pStore);
}

std::string LSettings::GetString(const std::string& szSection, const std::string& szName, const std::string& szDefault)
{
    std::string szValue;
    return Store().GetValue(szSection, szName, szValue) ? szValue : szDefault;
}

int32_t LSettings::GetInt(const std::string& szSection, const std::string& szName, int32_t nDefault)
{
    std::string szValue;
    if (!Store().GetValue(szSection, szName, szValue) || szValue.empty())
        return nDefault;
    errno = 0;
    char* pEnd = nullptr;
    long long n = std::strtoll(szValue.c_str(), &pEnd, 10);
    if (errno != 0 || pEnd == szValue.c_str() || n < INT32_MIN || n > INT32_MAX)
        return nDefault;
    return static_cast<int32_t>(n);
}

bool LSettings::GetBool(const std::string& szSection, const std::string& szName, bool bDefault)
{
    return GetInt(szSection, szName, bDefault ? 1 : 0) != 0;
}

void LSettings::SetString(const std::string& szSection, const std::string& szName, const std::string& szValue)
{
    Store().SetValue(szSection, szName, szValue);
}

void LSettings::SetInt(const std::string& szSection, const std::string& szName, int32_t nValue)
{
    Store().SetValue(szSection, szName, std::to_string(nValue));
}

void LSettings::SetBool(const std::string& szSection, const std::string& szName, bool bValue)
{
    Store().SetValue(szSection, szName, bValue ? "1" : "0");
}

std::string LSettings::DataFolder()
{
    const std::string szFolder = GetString("Folders", "Current");
    return szFolder.empty() ? DefaultDataFolder() : szFolder;
}

std::string LSettings::DefaultDataFolder()
{
    const char* szConfig = std::getenv("XDG_CONFIG_HOME");
    const char* szHome = std::getenv("HOME");
    const std::string szBase = szConfig && *szConfig ? szConfig : std::string(szHome ? szHome : ".") + "/.config";
    return szBase + "/Korvane/Sonitra/Current";
}

std::string LSettings::DataFilePath(const std::string& szName)
{
    std::string szPath;
    if (!LFile::FilePathCat(szPath, DataFolder(), szName))
        return std::string();
    return szPath;
}

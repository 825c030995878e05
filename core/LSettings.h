// The settings store: one section per area ("Settings", "StoredValues", "Recent", ...), values
// held as text. Booleans are "0"/"1", integers decimal text; a missing value means the default.
// The engine sees only this interface; the programs plug in a persistent store.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

class LSettingsStore
{
public:
    virtual ~LSettingsStore() = default;
    virtual bool GetValue(const std::string& szSection, const std::string& szName, std::string& szValue) = 0;
    virtual void SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue) = 0;
    virtual void DeleteValue(const std::string& szSection, const std::string& szName) = 0;
};

// Kept in memory only: the default store, and what tests use.
class LMemorySettings : public LSettingsStore
{
public:
    bool GetValue(const std::string& szSection, const std::string& szName, std::string& szValue) override;
    void SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue) override;
    void DeleteValue(const std::string& szSection, const std::string& szName) override;

private:
    std::mutex mtx;
    std::map<std::string, std::string> mapValues;
};

// Typed access to the store in use.
class LSettings
{
public:
    static LSettingsStore& Store();
    // The store is not owned; null restores the built-in memory store.
    static void SetStore(LSettingsStore* pStore);

    static std::string GetString(const std::string& szSection, const std::string& szName, const std::string& szDefault = "");
    static int32_t GetInt(const std::string& szSection, const std::string& szName, int32_t nDefault);
    static bool GetBool(const std::string& szSection, const std::string& szName, bool bDefault);
    static void SetString(const std::string& szSection, const std::string& szName, const std::string& szValue);
    static void SetInt(const std::string& szSection, const std::string& szName, int32_t nValue);
    static void SetBool(const std::string& szSection, const std::string& szName, bool bValue);

    // The folder of the program's own data files (curves, key macros, remembered formats):
    // "Folders"/"Current" when set, else "Current" under the user's configuration folder.
    static std::string DataFolder();
    // Where the data folder is when "Folders"/"Current" is not set.
    static std::string DefaultDataFolder();
    // A file in it; empty when the path would be too long.
    static std::string DataFilePath(const std::string& szName);
};

// The headerless-file options every verb takes (--raw-format, --raw-rate, --raw-channels):
// taken out of the arguments before the verb sees them, and laid over the stored settings for
// the run only, so a verb that opens or saves ".vox" or ".raw" files uses them without
// changing what is stored.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/LSettings.h"

class LCliRawOptions : public LSettingsStore
{
public:
    LCliRawOptions() = default;
    ~LCliRawOptions() override;

    // Removes the options from vArgs; false after saying what is wrong with one.
    bool Take(std::vector<std::string>& vArgs);
    // Lays the options over the store in use until destruction.
    void Install();

    bool GetValue(const std::string& szSection, const std::string& szName, std::string& szValue) override;
    void SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue) override;
    void DeleteValue(const std::string& szSection, const std::string& szName) override;

    static const char* const kHelp;

private:
    bool TakeOne(const std::string& szName, const std::string& szValue);

    std::map<std::string, std::string> mapOverrides; // value name in "Settings" -> value
    LSettingsStore* pUnder = nullptr;
};

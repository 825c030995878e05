// The settings store on QSettings("Korvane", "Sonitra"), one group per section.
#pragma once

#include <memory>

#include "core/LSettings.h"

class QSettings;

class LQtSettingsStore : public LSettingsStore
{
public:
    LQtSettingsStore();
    ~LQtSettingsStore() override;

    bool GetValue(const std::string& szSection, const std::string& szName, std::string& szValue) override;
    void SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue) override;
    void DeleteValue(const std::string& szSection, const std::string& szName) override;

private:
    std::unique_ptr<QSettings> pSettings;
};

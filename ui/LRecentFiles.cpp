#include "ui/LRecentFiles.h"

#include <algorithm>
#include <cstdlib>

#include "core/LSettings.h"

namespace {
const char* const kSection = "Recent";

std::string PathKey(int i)
{
    return "RecentFile " + std::to_string(i);
}

std::string DateKey(int i)
{
    return "RecentFileDate" + std::to_string(i);
}
} // namespace

void LRecentFiles::Load()
{
    vEntries.clear();
    for (int i = 0; i < kMaxEntries; ++i) {
        std::string szPath = LSettings::GetString(kSection, PathKey(i));
        if (szPath.empty())
            continue;
        std::string szDate = LSettings::GetString(kSection, DateKey(i), "0");
        vEntries.push_back({szPath, std::strtoll(szDate.c_str(), nullptr, 10)});
    }
}

void LRecentFiles::Add(const std::string& szPath, int64_t nNow)
{
    vEntries.erase(std::remove_if(vEntries.begin(), vEntries.end(), [&](const Entry& e) { return e.szPath == szPath; }),
                   vEntries.end());
    vEntries.insert(vEntries.begin(), {szPath, nNow});
    if (vEntries.size() > static_cast<size_t>(kMaxEntries))
        vEntries.resize(kMaxEntries);
    Save();
}

void LRecentFiles::Remove(const std::string& szPath)
{
    vEntries.erase(std::remove_if(vEntries.begin(), vEntries.end(), [&](const Entry& e) { return e.szPath == szPath; }),
                   vEntries.end());
    Save();
}

void LRecentFiles::Save() const
{
    for (int i = 0; i < kMaxEntries; ++i) {
        if (i < static_cast<int>(vEntries.size())) {
            LSettings::SetString(kSection, PathKey(i), vEntries[i].szPath);
            LSettings::SetString(kSection, DateKey(i), std::to_string(vEntries[i].nOpened));
        } else {
            LSettings::Store().DeleteValue(kSection, PathKey(i));
            LSettings::Store().DeleteValue(kSection, DateKey(i));
        }
    }
}

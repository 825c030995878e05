// The recent-file list: at most eleven paths, newest first, kept in the "Recent" section as
// "RecentFile %d" (the path) and "RecentFileDate%d" (when it was last opened, seconds since 1970).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class LRecentFiles
{
public:
    static constexpr int kMaxEntries = 11;

    struct Entry
    {
        std::string szPath;
        int64_t nOpened = 0;
    };

    // Reads the list from the settings store.
    void Load();
    // Moves the path to the top (adding it if new); the eleventh entry falls off. Saves the list.
    void Add(const std::string& szPath, int64_t nNow);
    void Remove(const std::string& szPath);
    const std::vector<Entry>& GetEntries() const { return vEntries; }

private:
    void Save() const;
    std::vector<Entry> vEntries;
};

// The audio a project keeps with it: the segment files its cut lists refer to, placed in a data
// folder beside the ".snp" as "%d.aud" and "%d.grf" under numbers of the project's own. A
// segment is written once and never changed, so a hard link to the tank's file is as good as a
// copy; a copy is made only where the file system refuses the link.
//
// While a project is open its store holds one tank reference on every segment it has placed or
// brought in, so a tank number it knows can never be handed out for other audio: saving again
// places only segments it has not seen, and the files no longer used are removed after the
// new project file is in place.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

class LProjectSegments
{
public:
    // Over a data folder (created when the first segment is placed).
    explicit LProjectSegments(const std::string& szFolder);
    LProjectSegments(const LProjectSegments&) = delete;
    LProjectSegments& operator=(const LProjectSegments&) = delete;
    // Releases every reference the store holds (the files in the folder stay).
    ~LProjectSegments();

    // "<folder of the project>/<its name without extension>_audio/".
    static std::string FolderFor(const std::string& szProjectPath);
    const std::string& GetFolder() const { return szFolder; }

    // Saving. BeginSave forgets which numbers the last save used; Keep gives the number under
    // which the tank segment is kept, placing it first when it is new (false when it cannot be
    // placed; a segment whose own file has gone is kept as silence); EndSave, after a successful
    // save, removes the files and references that save did not use.
    void BeginSave();
    bool Keep(uint16_t nTankRef, uint16_t& nStored);
    void EndSave(bool bSucceeded);

    // Loading: a tank reference over the kept segment nStored, taken for the caller (it owns it).
    // The silent reference when the folder has no such segment or the tank is full.
    uint16_t Restore(uint16_t nStored);

    // Segments the last save or the loads placed by link and by copy (tests and the benchmark).
    int32_t GetLinked() const { return nLinked; }
    int32_t GetCopied() const { return nCopied; }
    // How many segments the store knows.
    size_t GetCount() const { return mapByTank.size(); }

private:
    bool Place(const std::string& szFrom, const std::string& szTo);
    std::string StoredPath(uint16_t nStored, const char* szExt) const;
    uint16_t NewNumber();
    void ScanFolder();

    std::string szFolder;
    std::map<uint16_t, uint16_t> mapByTank;   // tank reference -> stored number
    std::map<uint16_t, uint16_t> mapByStored; // stored number -> tank reference
    std::set<uint16_t> setUsed;               // numbers the save under way has written
    std::set<uint16_t> setOnDisk;             // numbers found in the folder
    bool bScanned = false;
    uint16_t nNextNumber = 0;
    int32_t nLinked = 0;
    int32_t nCopied = 0;
};

// The audio a project keeps with it: the segment files its cut lists refer to, placed in a data
// folder beside the ".snp" as "%d.aud" and "%d.grf" under numbers of the project's own. A
// segment is written once and never changed, so a hard link to the tank's file is as good as a
// copy; a copy is made only where the file system refuses the link.
//
// While a project is open its store holds one tank reference on every segment it has placed or
// brought in, so a tank number it knows can never be handed out for other audio: saving again
// places only segments it has not seen, and the files it knows that are no longer used are
// removed after the new project file is in place. A file in the folder the store never placed
// or brought in is never removed, and never placed over.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

class LProjectSegments
{
public:
    // Over a data folder (created when the first segment is placed).
    explicit LProjectSegments(const std::string& szFolder);
    LProjectSegments(const LProjectSegments&) = delete;
    LProjectSegments& operator=(const LProjectSegments&) = delete;
    // Releases every reference the store holds (the files in the folder stay).
    ~LProjectSegments();

    // "<folder of the project>/<its name without extension>_audio/": where a project whose file
    // does not record its folder keeps its audio.
    static std::string FolderFor(const std::string& szProjectPath);
    // The folder for a project saved anew at szProjectPath: "<name>_audio", or "<name>_audio_2"
    // and on when that exists, so a new project never shares the folder of another (a long name
    // is cut to leave the result room in a file entry).
    static std::string NewFolderFor(const std::string& szProjectPath);
    const std::string& GetFolder() const { return szFolder; }
    // The folder's own name when it lies beside the project file; empty otherwise.
    std::string NameBeside(const std::string& szProjectPath) const;

    // Saving. BeginSave forgets which numbers the last save used; Keep gives the number under
    // which the tank segment is kept, placing it first when it is new (false when it cannot be
    // placed; a segment whose own file has gone is kept as silence); EndSave, after a successful
    // save, removes the files and references that save did not use, and after a failed one the
    // folder BeginSave made when nothing was placed in it.
    void BeginSave();
    bool Keep(uint16_t nTankRef, uint16_t& nStored);
    void EndSave(bool bSucceeded);

    // Loading: a tank reference over the kept segment nStored, taken for the caller (it owns it).
    // The silent reference when the folder has no such segment or the tank is full; the segment
    // is then counted missing.
    uint16_t Restore(uint16_t nStored);
    bool HasMissing() const { return !vMissing.empty(); }
    // What is missing, for a message: the folder, or the segment files not found in it.
    std::string DescribeMissing() const;

    // Segments the last save or the loads placed by link and by copy (tests and the benchmark).
    int32_t GetLinked() const { return nLinked; }
    int32_t GetCopied() const { return nCopied; }
    // How many segments the store knows.
    size_t GetCount() const { return mapByTank.size(); }

private:
    static constexpr size_t kMaxStem = 80;

    bool Place(const std::string& szFrom, const std::string& szTo);
    std::string StoredPath(uint16_t nStored, const char* szExt) const;
    uint16_t NewNumber();
    void ScanFolder();

    std::string szFolder;
    std::map<uint16_t, uint16_t> mapByTank;   // tank reference -> stored number
    std::map<uint16_t, uint16_t> mapByStored; // stored number -> tank reference
    std::set<uint16_t> setUsed;               // numbers the save under way has written
    std::set<uint16_t> setOnDisk;             // numbers found in the folder
    std::vector<uint16_t> vMissing;           // numbers a load could not bring in
    bool bScanned = false;
    bool bCreatedFolder = false; // by a save that has not yet succeeded
    uint16_t nNextNumber = 0;
    int32_t nLinked = 0;
    int32_t nCopied = 0;
};

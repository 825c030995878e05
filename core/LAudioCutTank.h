// The one store of audio segments. Each segment is written once into "%d.aud" (raw frames) and
// "%d.grf" (its overview) in the working folder and shared by reference count; the files go
// with the last reference. Counts are touched from any thread and guarded by one mutex.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

class LAudioCutTank
{
public:
    static constexpr uint16_t kSilentRef = 0xFFFF;
    static constexpr uint16_t kMaxCount = 0xFFFF;

    // The program's tank. Its folder is chosen on first use: the "Folders" setting
    // "WorkingFolder" when present, otherwise the user's cache folder; in both cases a
    // sub-folder of this process, so that two running programs never sweep each other. Folders
    // left there by runs of this machine that no longer exist are swept then.
    static LAudioCutTank& Instance();

    // A tank over a folder of the caller's choice (created on first use).
    explicit LAudioCutTank(const std::string& szFolder);
    LAudioCutTank(const LAudioCutTank&) = delete;
    LAudioCutTank& operator=(const LAudioCutTank&) = delete;
    // Sweeps the working folder: every segment file in it is deleted.
    ~LAudioCutTank();

    // Claims the lowest free number with a count of 1. When none is free, returns 0 claiming
    // nothing; *pbClaimed (when given) tells the two apart.
    uint16_t GetNewRefAndIncRef(bool* pbClaimed = nullptr);
    // A count saturates at 65535; from then on the segment is pinned, since releases can no
    // longer be matched with the references taken.
    void IncRef(uint16_t nRef);
    // The last release deletes both files of the segment. A pinned segment is never deleted
    // (its count stops at 1 and its number stays claimed) until the tank sweeps its folder.
    void DecRef(uint16_t nRef);
    bool IsPinned(uint16_t nRef);
    uint16_t GetRefCount(uint16_t nRef);
    // Tells the segments a number has held apart: each claim of a number gets a serial never
    // given before in this process (by any tank), so what was derived from a segment's audio can
    // be kept under it. 0 for a number not in use and for silence.
    uint64_t GetSerial(uint16_t nRef);
    // How many numbers are in use (tests and leak checks).
    int32_t CountUsedRefs();

    // Empty for the silent reference.
    std::string GetAudFilePath(uint16_t nRef);
    std::string GetGrfFilePath(uint16_t nRef);
    // The folder with its trailing separator; created when first asked for.
    std::string GetWorkingFolder();

    // Deletes every "*.aud" and "*.grf" file in the working folder; false when one could not go.
    bool Sweep();

    // Where the program's per-process folders go ("Folders"/"WorkingFolder" or the cache), with
    // a separator, and how their names begin ("segments-<host>-"; the process id follows).
    // A folder left by a run that ended abnormally is swept at the next start unless it holds
    // a file named kKeepMarker (the editor's recovery project), which the editor deals with.
    static std::string DefaultBase();
    static std::string FolderPrefix();
    static constexpr const char* kKeepMarker = "recovery.snp";

private:
    LAudioCutTank();
    std::string SegmentPath(uint16_t nRef, const char* szExt);
    void DeleteSegmentFiles(uint16_t nRef);
    static std::string DefaultFolder();
    static void SweepAbandoned(const std::string& szBase, const std::string& szPrefix);

    std::mutex mtxFolder;
    std::string szWorkingFolder;
    std::string szChosenFolder; // what the folder will be; empty until the default is chosen
    bool bFolderReady = false;
    bool bOwnsFolder = false; // a per-process folder is removed by the sweep
    std::mutex mtxCounts;
    uint16_t vCounts[65536] = {};
    bool vPinned[65536] = {};
    std::unique_ptr<uint64_t[]> vSerials{new uint64_t[65536]()};
};

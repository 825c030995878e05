// A file handle wrapper with 64-bit positions, and path helpers that refuse over-long paths.
#pragma once

#include <cstdint>
#include <string>

class LFile
{
public:
    enum OpenMode
    {
        ReadExisting,      // read only, the file must exist
        ReadWriteExisting, // read and write, the file must exist
        ReadWriteKeep,     // read and write, created if absent, kept if present
        ReadWriteCreate,   // read and write, created anew (emptied if present)
        CreateNew,         // read and write, a new file: fails when the name exists, even as a link
    };
    enum SeekFrom
    {
        FromBegin,
        FromCurrent,
        FromEnd,
    };

    static constexpr size_t kMaxPath = 4096;

    LFile() = default;
    LFile(const LFile&) = delete;
    LFile& operator=(const LFile&) = delete;
    // Taking over a handle leaves the other holding an invalid one.
    LFile(LFile&& other) noexcept : hFile(other.hFile) { other.hFile = -1; }
    LFile& operator=(LFile&& other) noexcept;
    ~LFile() { Close(); }

    bool Open(const std::string& szPath, OpenMode mode);
    // False when the system reports that what was written may not have reached the file (a
    // delayed write error); the handle is released either way.
    bool Close();
    bool IsOpen() const { return hFile >= 0; }

    // Both return the bytes moved (0 on error or end of file); short only at the end or on error.
    int64_t Read(void* pBuffer, int64_t nBytes);
    int64_t Write(const void* pBuffer, int64_t nBytes);
    // Returns the new position, or -1.
    int64_t Seek(int64_t nOffset, SeekFrom from = FromBegin);
    int64_t Tell();
    int64_t Size();
    // Cuts the file at the current position.
    bool Truncate();
    // Flushes what was written to the disk itself (not only to the system's cache).
    bool Sync();

    static bool Exists(const std::string& szPath);
    static bool Delete(const std::string& szPath);
    static bool Rename(const std::string& szFrom, const std::string& szTo);
    // Flushes a folder's entries (a rename into it) to the disk.
    static bool SyncFolder(const std::string& szFolderPath);

    // The system's reason for the last failed Write, Sync, SyncFolder or Rename of this thread
    // (an errno value; 0 when none failed since the last ClearLastError).
    static int GetLastError();
    static void ClearLastError();

    // Fault injection for tests: Write, Sync, SyncFolder and Rename calls of the whole process are
    // counted from the moment of arming, and call number nCall (from 1) fails with ENOSPC, or for
    // a short write delivers only part of the bytes. nCall 0 only counts.
    enum Fault
    {
        FaultFail,
        FaultShortWrite,
    };
    static void InjectFault(int64_t nCall, Fault fault = FaultFail);
    static void ClearFault();
    // The calls counted since arming.
    static int64_t GetFaultCalls();
    // For writes that go elsewhere than an LFile (the pipe into an encoder that writes the file
    // itself): counts one call as Write does and returns how many of nBytes the write may
    // deliver, nBytes unless the armed fault strikes.
    static int64_t FaultAllows(int64_t nBytes);

    // Replaces (or adds) the extension of szPath; szExt includes the dot.
    static bool ApplyNewFileExtension(std::string& szPath, const std::string& szExt);
    // szOut = folder + name, with a separator between them when the folder lacks one.
    static bool FilePathCat(std::string& szOut, const std::string& szFolderPath, const std::string& szName);
    static std::string FileNameOf(const std::string& szPath);
    static std::string FolderOf(const std::string& szPath);
    static std::string ExtensionOf(const std::string& szPath); // lower case, with the dot

private:
    int hFile = -1;
};

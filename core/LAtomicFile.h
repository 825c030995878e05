// Writing a small file whole or not at all, the way audio files are saved: the bytes go to a new
// file of an unguessable name in the same folder, reach the disk, and only then take the old
// file's name; the folder is flushed last. A crash or a full disk at any moment leaves either the
// old file or the new one, never a mix.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LAtomicFile {

enum Folder
{
    FolderMustExist,
    MakeFolder, // the folders on the way are made when missing (the program's own data folders)
};

// False, with the reason in *pszError, when anything fails; the old file is then untouched,
// except when only the final flush of the folder failed (the new file is in place but may not
// survive a crash, and the save still counts as failed).
bool Write(const std::string& szPath, const std::vector<uint8_t>& vBytes, std::string* pszError = nullptr,
           Folder folder = FolderMustExist);

} // namespace LAtomicFile

// What the small list files (key macros, batch scripts) share: a one-byte version that must be 0,
// then whole records up to the end of the file, integers little-endian. A file whose records do
// not fill it exactly, or that holds a value no record can have, is damaged and loads nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LAtomicFile.h"
#include "project/LBytes.h"

enum class LListLoad
{
    Loaded,     // every record read
    Missing,    // no such file: an empty list, not an error
    BadVersion, // the version byte is not 0, or the file is empty
    Damaged,    // a record cut short or holding a value out of range: nothing loaded
};

namespace LListFile {
constexpr const char* kCaption = "File Error";
constexpr const char* kVersionMessage =
    "This file does not have the same version with the current Sonitra version or it is corrupted.";
constexpr const char* kCannotCreateMessage =
    "Sonitra cannot open this file. The file does not exist or may be corrupted.";
constexpr uint8_t kVersion = 0;

// Opens szPath for a reader; Missing when it cannot be opened.
LListLoad Open(const std::string& szPath, LFile& file);
// Reads the version byte: Loaded when it is 0.
LListLoad ReadVersion(LByteReader& in, const char* szWho);
// Damaged, with "record N: why" in *pszWhy.
LListLoad Damaged(size_t nRecord, const std::string& szWhy, std::string* pszWhy);

// What the user is told about a damaged file, naming it and the record.
std::string DamagedMessage(const std::string& szPath, const std::string& szWhy);
// What the user is told about a save that failed, naming the file and the reason.
std::string SaveFailedMessage(const std::string& szPath, const std::string& szWhy);
// The message for a load result other than Loaded (empty for Loaded).
std::string LoadMessage(LListLoad result, const std::string& szPath, const std::string& szWhy);

// Moves a file that could not be loaded out of the way before a new list takes its name, so
// the records the user had in it are not overwritten: it becomes "NAME.damaged" (or
// "NAME.damaged-2"...), never replacing another file. True with the new name in *pszKeptAs when
// moved or when there was nothing to move (*pszKeptAs empty); false with the reason.
bool KeepAside(const std::string& szPath, std::string* pszKeptAs, std::string* pszError);
// What the user is told once a damaged file was kept aside.
std::string KeptAsideMessage(const std::string& szPath, const std::string& szKeptAs);
} // namespace LListFile

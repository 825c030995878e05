// The bookmark list kept beside an audio file: the file's name with ".snm" for its extension,
// holding a version byte (0), a count byte (the low 8 bits of the number of records) and the
// 529-byte records.
#pragma once

#include <string>
#include <vector>

#include "project/LEdBookMark.h"

class LByteReader;

namespace LBookmarkFile {

constexpr uint8_t kVersion = 0;
// The count is one byte: a file never holds more.
constexpr size_t kMaxBookmarks = 255;

enum Result
{
    Loaded,
    NoFile,     // there is no list beside the file (or it cannot be opened)
    BadVersion, // the version byte is not 0: nothing is read
    Damaged,    // cut short, a count that disagrees with the file's size, or a value out of range
};

std::string PathFor(const std::string& szAudioPath);
// How many of vAll belong to the audio file.
size_t CountOf(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll);

// Appends the records of the list beside the audio file, all or none: a list whose records do not
// fill it exactly as its count says, or that holds a negative position, is Damaged, with the
// reason naming the record in *pszWhy.
Result Load(const std::string& szAudioPath, std::vector<LEdBookMark>& vOut, std::string* pszWhy = nullptr);
Result Read(LByteReader& in, std::vector<LEdBookMark>& vOut, std::string* pszWhy = nullptr);

// Writes the bookmarks among vAll whose path is szAudioPath; when vAll is empty the list beside
// the file is deleted instead. False, with the reason, when the file cannot be written or would
// hold more records than its count can say.
bool Save(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll, std::string* pszError = nullptr);
std::vector<uint8_t> Serialize(const std::string& szAudioPath, const std::vector<LEdBookMark>& vAll);

} // namespace LBookmarkFile

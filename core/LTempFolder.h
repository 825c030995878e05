// Where short-lived helper files go (an external program's messages, text handed to a program):
// $TMPDIR when it names a folder this program can write, otherwise the system's own.
#pragma once

#include <string>

namespace LTempFolder {

// The folder, without a trailing separator.
std::string Path();

// Creates a new file in the folder named szPrefix, some random letters, then szSuffix: always a
// new file, never one that exists or a link planted in its place. The descriptor (closed on
// exec, mode 0600) with the path in szPath; -1 with the reason in *pszError when it cannot.
int CreateFile(const std::string& szPrefix, const std::string& szSuffix, std::string& szPath,
               std::string* pszError = nullptr);

} // namespace LTempFolder

// The programs Sonitra hands work to (decoders, encoders, speech): where each one is. The
// settings section "Components" may name a path per program ("<name>/Path"); otherwise the
// program is looked up on PATH.
#pragma once

#include <string>

namespace LComponents {
// The full path of the program, or empty when it is not installed.
std::string Find(const std::string& szProgram);
// The text a user sees when a program is missing: what to install, and how.
std::string MissingText(const std::string& szProgram, const std::string& szPackage);
} // namespace LComponents

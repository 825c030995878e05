// Writing a file whole or not at all: the bytes go to a file beside it, which then takes its name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LAtomicFile {
// False (and the old file untouched) when anything fails.
bool Write(const std::string& szPath, const std::vector<uint8_t>& vBytes);
} // namespace LAtomicFile

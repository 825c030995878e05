// cdrdao .toc files name their audio files relative to themselves, but the reader takes them
// relative to the working folder: the text is rewritten with those names made absolute.
#pragma once

#include <string>

namespace LCdTocPaths {
// The .toc text with every relative name after FILE, AUDIOFILE or DATAFILE prefixed by szFolder.
std::string Resolve(const std::string& szToc, const std::string& szFolder);
} // namespace LCdTocPaths

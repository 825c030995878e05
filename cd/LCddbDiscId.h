// The CDDB disc id of a table of contents and the arguments of a "cddb query" for it.
#pragma once

#include <cstdint>
#include <string>

#include "cd/LCdToc.h"

namespace LCddb {
// Every track counts, data tracks too, as the servers computed it when the entries were made.
uint32_t DiscId(const LCdToc& toc);
std::string DiscIdText(uint32_t nId); // "7a0c0b0c"
// "7a0c0b0c 12 150 21035 ... 2827": id, track count, each start in frames (lead-in included), seconds.
std::string QueryArguments(const LCdToc& toc);
} // namespace LCddb

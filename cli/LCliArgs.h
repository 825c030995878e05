// Argument readers shared by the verbs.
#pragma once

#include <cstdint>
#include <string>

// A plain number is seconds here; LSoundTime reads the other forms ("1.5s", "1:30"). Negative times are refused.
bool LCliParseTime(const std::string& szText, int32_t& nMs);

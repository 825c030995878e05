// The image reader trusts its sheets: a track without a known mode, for one, makes it divide by
// zero. Sheets are checked here first and refused with a reason when they hold such things.
#pragma once

#include <string>

namespace LCdSheetCheck {
constexpr size_t kMaxSheet = 1 << 20; // a longer sheet is not a sheet

bool CheckCue(const std::string& szText, std::string& szReason);
bool CheckToc(const std::string& szText, std::string& szReason);
} // namespace LCdSheetCheck

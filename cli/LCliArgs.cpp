#include "cli/LCliArgs.h"

#include <cstdlib>

#include "core/LSoundTime.h"

bool LCliParseTime(const std::string& szText, int32_t& nMs)
{
    char* pEnd = nullptr;
    const double f = std::strtod(szText.c_str(), &pEnd);
    if (!szText.empty() && *pEnd == '\0' && f >= 0 && f < 2e6) {
        nMs = static_cast<int32_t>(f * 1000 + 0.5);
        return true;
    }
    LSoundTime time;
    if (!LSoundTime::Parse(szText, time) || time.GetMilliseconds() < 0)
        return false;
    nMs = time.GetMilliseconds();
    return true;
}

#include "cli/LCliArgs.h"

#include <algorithm>
#include <cstdlib>

#include "cli/LCliVerb.h"
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

bool LCliParseInt(const std::string& szText, long nMin, long nMax, int32_t& nValue)
{
    char* pEnd = nullptr;
    const long n = std::strtol(szText.c_str(), &pEnd, 10);
    if (szText.empty() || *pEnd != '\0' || n < nMin || n > nMax)
        return false;
    nValue = static_cast<int32_t>(n);
    return true;
}

bool LCliReadOptions(const std::vector<std::string>& vArgs, std::string& szFile, const LCliOptionTaker& take,
                     const std::function<bool(const std::string&)>& usage, const std::string& szCountText)
{
    std::vector<std::string> vPlain;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& s = vArgs[i];
        if (s.size() < 2 || s[0] != '-' || s[1] != '-') {
            vPlain.push_back(s);
            continue;
        }
        if (i + 1 >= vArgs.size())
            return usage(s + " needs a value");
        if (!take(s, vArgs[++i]))
            return false;
    }
    if (vPlain.size() != 1)
        return usage(szCountText);
    szFile = vPlain[0];
    return true;
}

std::string LCliMeter(int nDb, int nFloorDb)
{
    const int nCells = std::clamp((nDb - nFloorDb) / 3, 0, 20);
    return std::string(nCells, '#') + std::string(20 - nCells, '.');
}

bool LCliFrameRange::Parse(const std::string& szText)
{
    const size_t nComma = szText.find(',');
    bGiven = nComma != std::string::npos && LCliParseInt(szText.substr(0, nComma), 0, INT32_MAX, sStart) &&
             LCliParseInt(szText.substr(nComma + 1), 0, INT32_MAX, sEnd) && sStart < sEnd;
    return bGiven;
}

bool LCliFrameRange::Fit(const std::string& szVerb, int32_t nLength)
{
    if (!bGiven) {
        sStart = 0;
        sEnd = nLength;
        return true;
    }
    if (sEnd <= nLength)
        return true;
    LCliError(szVerb + ": the range ends past the end of the file (" + std::to_string(nLength) + " frames)");
    return false;
}

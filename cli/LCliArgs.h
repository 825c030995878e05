// Argument readers shared by the verbs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// A plain number is seconds here; LSoundTime reads the other forms ("1.5s", "1:30"). Negative times are refused.
bool LCliParseTime(const std::string& szText, int32_t& nMs);

// A whole decimal number from nMin to nMax.
bool LCliParseInt(const std::string& szText, long nMin, long nMax, int32_t& nValue);

// The callback for one "--name value" option: false after saying what is wrong.
using LCliOptionTaker = std::function<bool(const std::string& szName, const std::string& szValue)>;

// Reads "--name value" options, each through take, and the one plain argument (a file) the verb
// wants. Complaints go to usage: an option without its value, or szCountText when there is not
// exactly one plain argument. False as soon as anything is refused.
bool LCliReadOptions(const std::vector<std::string>& vArgs, std::string& szFile, const LCliOptionTaker& take,
                     const std::function<bool(const std::string& szText)>& usage, const std::string& szCountText);

// The "--range S,E" option in frames: the whole file when not given.
struct LCliFrameRange
{
    bool bGiven = false;
    int32_t sStart = 0;
    int32_t sEnd = 0;

    // Reads "S,E" with S < E; false when the text is not that.
    bool Parse(const std::string& szText);
    // Sets the whole file when no range was given; false, after saying so for szVerb, when the
    // range ends past nLength.
    bool Fit(const std::string& szVerb, int32_t nLength);
};

// A level meter of 20 cells over the 60 dB above nFloorDb.
std::string LCliMeter(int nDb, int nFloorDb);

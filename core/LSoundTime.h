// A time in milliseconds, with the text forms shown to the user.
#pragma once

#include <cstdint>
#include <string>

class LSoundTime
{
public:
    LSoundTime() = default;
    explicit LSoundTime(int32_t nMs) : nMilliseconds(nMs) {}

    // Split so that hours of audio at high rates never overflow 32 bits. A rate <= 0 gives 0.
    void SetSamples(int32_t sSamples, int32_t nSampleRate);
    int32_t GetSamples(int32_t nSampleRate) const;
    static int32_t MsToSamples(int32_t nMs, int32_t nSampleRate);

    int32_t GetMilliseconds() const { return nMilliseconds; }
    void SetMilliseconds(int32_t nMs) { nMilliseconds = nMs; }

    std::string FormatMinSec() const;       // "00:01"
    std::string FormatTenths() const;       // "0:00:01.5"
    std::string FormatMilliseconds() const; // "0:00:01.500"
    std::string FormatHundredths() const;   // "0:00:01.50", rounded to the nearest hundredth
    std::string FormatTenthsLong() const;   // "0:00:01.5", rounded as the hundredths form
    std::string FormatSeconds() const;      // "0:00:01"

    // Reads "1500" (plain frames are not times: returns false), "1.5s", "250ms", "0:01.500",
    // "1:02:03.5". A leading "-" is allowed.
    static bool Parse(const std::string& szText, LSoundTime& time);

private:
    int32_t nMilliseconds = 0;
};

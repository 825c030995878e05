#include "core/LSoundTime.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "core/LTrace.h"

void LSoundTime::SetSamples(int32_t sSamples, int32_t nSampleRate)
{
    if (nSampleRate <= 0) {
        LTRACE("LSoundTime::SetSamples samplerate <= 0");
        nMilliseconds = 0;
        return;
    }
    // Worked in 64 bits: a very low rate (files read from outside may claim any) must not
    // overflow; times beyond the 32-bit range are held at its ends.
    const int64_t nMs = static_cast<int64_t>(sSamples / nSampleRate) * 1000 +
                        (static_cast<int64_t>(sSamples % nSampleRate) * 1000) / nSampleRate;
    nMilliseconds = static_cast<int32_t>(std::clamp<int64_t>(nMs, -INT32_MAX, INT32_MAX));
}

int32_t LSoundTime::MsToSamples(int32_t nMs, int32_t nSampleRate)
{
    int64_t v = static_cast<int64_t>(nMs / 1000) * nSampleRate + (static_cast<int64_t>(nMs % 1000) * nSampleRate) / 1000;
    return static_cast<int32_t>(v);
}

int32_t LSoundTime::GetSamples(int32_t nSampleRate) const
{
    return MsToSamples(nMilliseconds, nSampleRate);
}

namespace {
// The forms write a negative time as "-" followed by the positive form.
struct Parts
{
    const char* szSign;
    int64_t ms;
};

Parts Split(int32_t nMs)
{
    if (nMs < 0)
        return {"-", -static_cast<int64_t>(nMs)};
    return {"", static_cast<int64_t>(nMs)};
}

std::string Print(const char* szFormat, const char* szSign, long a, long b, long c, long d = 0)
{
    char sz[64];
    int n = std::snprintf(sz, sizeof(sz), "%s", szSign);
    std::snprintf(sz + n, sizeof(sz) - n, szFormat, a, b, c, d);
    return sz;
}
} // namespace

std::string LSoundTime::FormatMinSec() const
{
    Parts p = Split(nMilliseconds);
    char sz[32];
    std::snprintf(sz, sizeof(sz), "%s%.2d:%.2d", p.szSign, static_cast<int>((p.ms / 60000) % 60),
                  static_cast<int>((p.ms / 1000) % 60));
    return sz;
}

std::string LSoundTime::FormatTenths() const
{
    Parts p = Split(nMilliseconds);
    char sz[48];
    std::snprintf(sz, sizeof(sz), "%s%d:%.2d:%.2d.%.1d", p.szSign, static_cast<int>(p.ms / 3600000),
                  static_cast<int>((p.ms / 60000) % 60), static_cast<int>((p.ms / 1000) % 60),
                  static_cast<int>((p.ms % 1000) / 100));
    return sz;
}

std::string LSoundTime::FormatMilliseconds() const
{
    Parts p = Split(nMilliseconds);
    return Print("%ld:%.2ld:%.2ld.%.3ld", p.szSign, static_cast<long>(p.ms / 3600000), static_cast<long>((p.ms / 60000) % 60),
                 static_cast<long>((p.ms / 1000) % 60), static_cast<long>(p.ms % 1000));
}

std::string LSoundTime::FormatHundredths() const
{
    Parts p = Split(nMilliseconds);
    int64_t ms = p.ms + 5;
    return Print("%ld:%.2ld:%.2ld.%.2ld", p.szSign, static_cast<long>(ms / 3600000), static_cast<long>((ms / 60000) % 60),
                 static_cast<long>((ms / 1000) % 60), static_cast<long>((ms % 1000) / 10));
}

std::string LSoundTime::FormatTenthsLong() const
{
    Parts p = Split(nMilliseconds);
    int64_t ms = p.ms + 5;
    return Print("%ld:%.2ld:%.2ld.%.1ld", p.szSign, static_cast<long>(ms / 3600000), static_cast<long>((ms / 60000) % 60),
                 static_cast<long>((ms / 1000) % 60), static_cast<long>((ms % 1000) / 100));
}

std::string LSoundTime::FormatSeconds() const
{
    Parts p = Split(nMilliseconds);
    return Print("%ld:%.2ld:%.2ld", p.szSign, static_cast<long>(p.ms / 3600000), static_cast<long>((p.ms / 60000) % 60),
                 static_cast<long>((p.ms / 1000) % 60));
}

namespace {
// Reads digits with an optional fraction; returns the value in milliseconds for the given unit.
bool ReadNumber(const char*& p, int64_t nUnitMs, int64_t& nMs)
{
    if (!std::isdigit(static_cast<unsigned char>(*p)))
        return false;
    int64_t nWhole = 0;
    while (std::isdigit(static_cast<unsigned char>(*p))) {
        nWhole = nWhole * 10 + (*p++ - '0');
        if (nWhole > 1000000000)
            return false;
    }
    int64_t nFrac = 0, nScale = 1;
    if (*p == '.') {
        ++p;
        while (std::isdigit(static_cast<unsigned char>(*p))) {
            if (nScale < 1000000) {
                nFrac = nFrac * 10 + (*p - '0');
                nScale *= 10;
            }
            ++p;
        }
    }
    nMs = nWhole * nUnitMs + (nFrac * nUnitMs) / nScale;
    return true;
}
} // namespace

bool LSoundTime::Parse(const std::string& szText, LSoundTime& time)
{
    const char* p = szText.c_str();
    bool bNegative = false;
    if (*p == '-') {
        bNegative = true;
        ++p;
    }
    int64_t nMs = 0;
    if (szText.find(':') != std::string::npos) {
        // h:mm:ss.fff or m:ss.fff: whole fields, the last one may carry a fraction.
        int64_t nFields[3] = {0, 0, 0};
        int nCount = 0;
        while (true) {
            if (nCount == 3)
                return false;
            const char* q = p;
            int64_t v = 0;
            while (std::isdigit(static_cast<unsigned char>(*q))) {
                v = v * 10 + (*q++ - '0');
                if (v > 1000000)
                    return false;
            }
            if (q == p)
                return false;
            if (*q == ':') {
                nFields[nCount++] = v;
                p = q + 1;
                continue;
            }
            int64_t nLast = 0;
            if (!ReadNumber(p, 1000, nLast) || *p != '\0')
                return false;
            int64_t nUnits[2] = {60000, 3600000};
            nMs = nLast;
            for (int i = 0; i < nCount; ++i)
                nMs += nFields[nCount - 1 - i] * nUnits[i];
            break;
        }
    } else {
        if (!ReadNumber(p, 1000, nMs))
            return false;
        std::string szUnit(p);
        if (szUnit == "ms") {
            const char* q = szText.c_str() + (bNegative ? 1 : 0);
            if (!ReadNumber(q, 1, nMs))
                return false;
        } else if (szUnit != "s") {
            return false;
        }
    }
    if (nMs > INT32_MAX)
        return false;
    time.SetMilliseconds(static_cast<int32_t>(bNegative ? -nMs : nMs));
    return true;
}

// Amplitude factors of whole decibels in 8.24 fixed point (16777216 is 0 dB), shared by every
// stage that turns a level in decibels into a gain or a threshold.
#pragma once

#include <cstdint>

class LDecibelTable
{
public:
    static constexpr int32_t kMinDb = -128;
    static constexpr int32_t kMaxDb = 127;

    // round(16777216 x 10^(dB / 20)); levels outside the table are taken at its nearest end.
    static int64_t Factor(int32_t nDb);
};

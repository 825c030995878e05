// The 16- and 32-bit fixed-point operations of the GSM full-rate codec. Each one saturates,
// rounds and truncates exactly as the codec's reference arithmetic does: a codec that wraps
// or rounds anywhere else drifts from every other implementation within a few frames.
#pragma once

#include <bit>
#include <cstdint>

namespace gsmarith {

inline constexpr int32_t kMinWord = -32768;
inline constexpr int32_t kMaxWord = 32767;
inline constexpr int64_t kMinLong = INT32_MIN;
inline constexpr int64_t kMaxLong = INT32_MAX;

inline constexpr int16_t Saturate(int32_t v)
{
    return static_cast<int16_t>(v < kMinWord ? kMinWord : (v > kMaxWord ? kMaxWord : v));
}

// Keeps the low 16 bits, as a store into a 16-bit cell does.
inline constexpr int16_t Wrap(int32_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

inline constexpr int16_t Add(int16_t a, int16_t b) { return Saturate(int32_t{a} + b); }
inline constexpr int16_t Sub(int16_t a, int16_t b) { return Saturate(int32_t{a} - b); }

// a x b / 2^15, truncated; only -1 x -1 leaves the range and gives the largest value.
inline constexpr int16_t Mult(int16_t a, int16_t b)
{
    if (a == kMinWord && b == kMinWord)
        return kMaxWord;
    return static_cast<int16_t>((int32_t{a} * b) >> 15);
}

// a x b / 2^15, rounded.
inline constexpr int16_t MultR(int16_t a, int16_t b)
{
    if (a == kMinWord && b == kMinWord)
        return kMaxWord;
    return static_cast<int16_t>((int32_t{a} * b + 16384) >> 15);
}

inline constexpr int16_t Abs(int16_t a) { return a < 0 ? (a == kMinWord ? kMaxWord : static_cast<int16_t>(-a)) : a; }

inline constexpr int32_t LAdd(int32_t a, int32_t b)
{
    const int64_t v = int64_t{a} + b;
    return static_cast<int32_t>(v < kMinLong ? kMinLong : (v > kMaxLong ? kMaxLong : v));
}

// The left shifts that bring a positive value's top bit next to the sign bit. The codec only
// asks this of values above zero.
inline constexpr int Norm(int32_t a) { return a > 0 ? std::countl_zero(static_cast<uint32_t>(a)) - 1 : 0; }

// num / denum as a 15-bit fraction, for 0 <= num <= denum (equal values give 32767).
inline constexpr int16_t Div(int16_t num, int16_t denum)
{
    if (num == 0 || denum <= 0)
        return 0;
    int32_t nRest = num;
    int32_t nQuotient = 0;
    for (int k = 0; k < 15; ++k) {
        nQuotient <<= 1;
        nRest <<= 1;
        if (nRest >= denum) {
            nRest -= denum;
            ++nQuotient;
        }
    }
    return static_cast<int16_t>(nQuotient);
}

} // namespace gsmarith

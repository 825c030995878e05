// Little-endian fields of codec data, whatever the machine's order.
#pragma once

#include <cstdint>

inline uint16_t LGet16(const uint8_t* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}
inline int16_t LGetS16(const uint8_t* p)
{
    return static_cast<int16_t>(LGet16(p));
}
inline void LPut16(uint8_t* p, uint32_t v)
{
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}

// Saturates to the 16-bit range.
inline int16_t LClamp16(int32_t v)
{
    return static_cast<int16_t>(v < -32768 ? -32768 : (v > 32767 ? 32767 : v));
}

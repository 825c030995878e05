// Integer arithmetic shared by the whole pipeline. Every operation that may overflow is
// written to wrap in two's complement through unsigned arithmetic, never left to signed overflow.
#pragma once

#include <cstdint>

// Reinterprets the low 32 bits as signed (modular since C++20).
inline constexpr int32_t LWrapToInt32(int64_t v)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v)));
}

inline constexpr int32_t LWrapAdd(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

inline constexpr int32_t LWrapMul(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

inline constexpr int32_t kGainUnity = 0x1000000; // 8.24 fixed point
inline constexpr int32_t kFullScale16 = 0x7FFF0; // 16-bit full scale in the internal layout

// s x g / 2^24 from 12-bit halves. The product of the two low halves is left out: every
// stage that applies a gain uses this same approximation, so results agree bit for bit.
inline constexpr int32_t LMulGain824(int32_t s, int32_t g)
{
    const int32_t sHi = s >> 12;
    const int32_t gHi = g >> 12;
    const int32_t hiHi = LWrapMul(sHi, gHi);
    const int32_t loHi = LWrapMul(s & 0xFFF, gHi) >> 12;
    const int32_t hiLo = LWrapMul(sHi, g & 0xFFF) >> 12;
    return LWrapAdd(LWrapAdd(hiHi, loHi), hiLo);
}

// 16-bit and 8-bit file samples to and from the internal layout. Writers round and wrap.
inline constexpr int32_t LFrom16(int16_t v) { return static_cast<int32_t>(v) * 16; }
inline constexpr int32_t LFrom8(uint8_t u) { return (static_cast<int32_t>(u) - 128) * 4096; }
inline constexpr int16_t LTo16(int32_t s) { return static_cast<int16_t>(static_cast<uint16_t>(LWrapAdd(s, 8) >> 4)); }
inline constexpr uint8_t LTo8(int32_t s) { return static_cast<uint8_t>((LWrapAdd(s, 2048) >> 12) + 128); }

// Multiplies nFrames interleaved frames by a gain that grows by d after each frame; returns the
// gain for the frame after the last. Mono and stereo have their own loops for speed.
inline int32_t LApplyGainRamp(const int32_t* pIn, int32_t* pOut, int32_t nFrames, uint8_t nChans, int32_t g, int32_t d)
{
    if (nChans == 1) {
        for (int32_t i = 0; i < nFrames; ++i) {
            pOut[i] = LMulGain824(pIn[i], g);
            g = LWrapAdd(g, d);
        }
    } else if (nChans == 2) {
        for (int32_t i = 0; i < 2 * nFrames; i += 2) {
            pOut[i] = LMulGain824(pIn[i], g);
            pOut[i + 1] = LMulGain824(pIn[i + 1], g);
            g = LWrapAdd(g, d);
        }
    } else {
        for (int32_t i = 0; i < nFrames; ++i) {
            for (uint8_t c = 0; c < nChans; ++c, ++pIn, ++pOut)
                *pOut = LMulGain824(*pIn, g);
            g = LWrapAdd(g, d);
        }
    }
    return g;
}

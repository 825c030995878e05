// Samples wider than 16 bits (24- and 32-bit integers, 32- and 64-bit floats) in either byte
// order, to and from the internal layout. The internal sample holds 20 bits: reading keeps the
// top 20 of a wide integer (a 24-bit value v becomes v >> 4) and writing puts them back on top
// (s << 4), so a 16-bit value survives exactly and a wide one loses less than one internal step.
// Reading stops at 16-bit full scale, so that no sample read leaves the range a 16-bit writer
// holds; floats are scaled so that 1.0 is full scale.
#pragma once

#include <cstddef>
#include <cstdint>

enum class LWideSample
{
    Pcm24,
    Pcm32,
    Float32,
    Float64,
};

using LWideToSamplesFn = void (*)(const uint8_t* pIn, int32_t* pOut, size_t n);
using LWideFromSamplesFn = void (*)(const int32_t* pIn, uint8_t* pOut, size_t n);

size_t LWideBytes(LWideSample kind);
LWideToSamplesFn LWideReader(LWideSample kind, bool bBigEndian);
LWideFromSamplesFn LWideWriter(LWideSample kind, bool bBigEndian);

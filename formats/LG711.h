// The G.711 sample codecs: one byte per sample, µ-law and A-law, to and from the internal
// sample layout (a 16-bit value times 16). The one G.711 implementation of the program.
#pragma once

#include <cstdint>

class LG711
{
public:
    static int32_t ULawToSample(uint8_t nByte);
    static uint8_t SampleToULaw(int32_t s);
    static int32_t ALawToSample(uint8_t nByte);
    static uint8_t SampleToALaw(int32_t s);
};

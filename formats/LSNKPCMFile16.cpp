#include "formats/LSNKPCMFile16.h"

#include "core/LFixed.h"

void LSNKPCMFile16::Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const
{
    for (size_t i = 0; i < nSamples; ++i) {
        const uint16_t v = static_cast<uint16_t>(LTo16(pIn[i]));
        pBytes[2 * i] = static_cast<uint8_t>(v);
        pBytes[2 * i + 1] = static_cast<uint8_t>(v >> 8);
    }
}

#include "formats/LSRCPCMFile16.h"

#include "core/LFixed.h"

void LSRCPCMFile16::Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const
{
    // Little-endian in the file whatever the machine's order.
    for (size_t i = 0; i < nSamples; ++i)
        pOut[i] = LFrom16(static_cast<int16_t>(pBytes[2 * i] | (pBytes[2 * i + 1] << 8)));
}

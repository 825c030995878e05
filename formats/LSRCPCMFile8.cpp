#include "formats/LSRCPCMFile8.h"

#include "core/LFixed.h"

void LSRCPCMFile8::Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const
{
    for (size_t i = 0; i < nSamples; ++i)
        pOut[i] = LFrom8(pBytes[i]);
}

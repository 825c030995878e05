#include "formats/LSNKPCMFile8.h"

#include "core/LFixed.h"

void LSNKPCMFile8::Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const
{
    for (size_t i = 0; i < nSamples; ++i)
        pBytes[i] = LTo8(pIn[i]);
}

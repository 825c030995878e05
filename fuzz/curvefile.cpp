// Feeds arbitrary bytes to the curve-file parser and uses whatever list it accepts.
#include <cstddef>
#include <cstdint>

#include "dsp/effects/LCurveFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    LPointList list = LCurveFile::DefaultEnvelope();
    if (LCurveFile::Parse(pData, nSize, list)) {
        for (int32_t x = -10; x < 1010; x += 7)
            (void)list.YAt(x);
    }
    return 0;
}

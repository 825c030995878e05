#include "dsp/effects/LCompressorLabels.h"

namespace {
const char* const kLabels[] = {"1:1", "3:2", "2:1", "3:1", "4:1", "5:1", "Limit"};
}

const char* LCompressorRatioLabel(int32_t nIndex)
{
    if (nIndex < 0 || nIndex >= static_cast<int32_t>(sizeof kLabels / sizeof kLabels[0]))
        return "?";
    return kLabels[nIndex];
}

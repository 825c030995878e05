#include "dsp/CompressorRatioList.h"

#include "core/LTrace.h"

const CompressorRatioItem CompressorRatioList[kCompressorRatioCount] = {
    {"1:1", 1.0},
    {"3:2", 0.9623506263981255},
    {"2:1", 0.9440608762859234},
    {"3:1", 0.9261187281287935},
    {"4:1", 0.9172759353897796},
    {"5:1", 0.9120108393559098},
    {"Limit", 0.8912509382363546},
};

const CompressorRatioItem& LCompressorRatio(int32_t nIndex)
{
    if (nIndex < 0 || nIndex >= kCompressorRatioCount) {
        LTRACE("CompressorRatio > sizeof(CompressorRatioList) / sizeof(CompressorRatioItem)");
        return CompressorRatioList[0];
    }
    return CompressorRatioList[nIndex];
}

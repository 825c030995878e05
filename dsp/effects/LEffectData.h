// The parameter record every effect process takes: the document, the range (end before start)
// and two effect-specific integers.
#pragma once

#include <cstdint>

#include "core/LCutListAudio.h"

struct LEffectData
{
    LCutListAudioPtr pCutList;
    int32_t sEnd = 0;
    int32_t sStart = 0;
    int32_t nParam1 = 0;
    int32_t nParam2 = 0;
};

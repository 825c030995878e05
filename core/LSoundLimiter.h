// The peak limiter that keeps a stream inside 16-bit full scale, as the stream layer sees it:
// the signal-processing layer, which builds it, registers its maker here, so that the pump
// uses it without knowing that layer.
#pragma once

#include <cstdint>

#include "core/LSoundSourceBase.h"

class LSoundLimiter
{
public:
    using Maker = LSoundSourceBase* (*)(LSoundSourceBase* pInput, int32_t nCeiling);

    static void Register(Maker fnMake);
    // The input behind the limiter; the input itself when no limiter is registered.
    static LSoundSourcePtr Wrap(LSoundSourceBase* pInput, int32_t nCeiling);
};

#include "core/LSoundLimiter.h"

#include <atomic>

#include "core/LTrace.h"

namespace {
std::atomic<LSoundLimiter::Maker> g_fnMake{nullptr};
} // namespace

void LSoundLimiter::Register(Maker fnMake)
{
    g_fnMake = fnMake;
}

LSoundSourcePtr LSoundLimiter::Wrap(LSoundSourceBase* pInput, int32_t nCeiling)
{
    const Maker fnMake = g_fnMake.load();
    if (!fnMake) {
        LTRACE("LSoundLimiter::Wrap no limiter registered");
        return LSoundSourcePtr(pInput);
    }
    return LSoundSourcePtr(fnMake(pInput, nCeiling));
}

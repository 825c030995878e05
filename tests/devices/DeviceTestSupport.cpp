#include "devices/DeviceTestSupport.h"

namespace devtest {

std::vector<int32_t> Ramp(int32_t nFrames, uint8_t nChans)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int32_t i = 0; i < nFrames; ++i)
        for (uint8_t c = 0; c < nChans; ++c)
            v[static_cast<size_t>(i) * nChans + c] = (i % 20000) * 16 - 160000 + c * 16;
    return v;
}

} // namespace devtest

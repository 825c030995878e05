#include "dsp/LSRCBlockOutput.h"

#include <algorithm>

#include "core/LFixed.h"

void LSRCBlockOutput::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        sPosition += nFrames;
        return;
    }
    BeforeRead();
    while (nFrames > 0) {
        if (FramesLeftInBlock() == 0)
            NextBlock();
        const int32_t n = std::min(nFrames, FramesLeftInBlock());
        HandOut(pBuffer, n);
        sPosition += n;
        pBuffer += static_cast<size_t>(n) * nChans;
        nFrames -= n;
    }
}

#include "core/LMemorySound.h"

#include <algorithm>
#include <cstring>

LSRCMemory::LSRCMemory(std::vector<int32_t> vData, int32_t nRate, uint8_t nChannels, int32_t nMax)
    : LSoundSourceBase(nRate, nChannels, nMax), vSamples(std::move(vData))
{
    sLength = static_cast<int32_t>(vSamples.size() / nChans);
}

void LSRCMemory::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sStart = sPosition;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sStart + nFrames, INT32_MAX));
    for (int32_t i = 0; i < nFrames; ++i) {
        const int64_t f = sStart + i;
        int32_t* pOut = pBuffer + static_cast<size_t>(i) * nChans;
        if (f < 0 || f >= sLength)
            std::memset(pOut, 0, nChans * sizeof(int32_t));
        else
            std::memcpy(pOut, &vSamples[static_cast<size_t>(f) * nChans], nChans * sizeof(int32_t));
    }
}

void LSNKMemory::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    vSamples.insert(vSamples.end(), pBuffer, pBuffer + static_cast<size_t>(nFrames) * nChans);
    sPosition += nFrames;
}

void LSNKMemory::SetPosition(int32_t sNewPosition)
{
    if (sNewPosition < 0 || sNewPosition > sPosition)
        return;
    sPosition = sNewPosition;
    vSamples.resize(static_cast<size_t>(sPosition) * nChans);
}

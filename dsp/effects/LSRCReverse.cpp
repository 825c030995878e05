#include "dsp/effects/LSRCReverse.h"

#include <algorithm>
#include <cstring>

LSRCReverse::LSRCReverse(LSoundSourceBase* pIn)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      vChunk(static_cast<size_t>(kChunkFrames) * pIn->GetChannels()), sLength(std::max(pIn->GetLength(), 0))
{
    if (pIn->IsError())
        SetError();
}

void LSRCReverse::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    nChunkFrames = 0;
}

void LSRCReverse::LoadChunkEndingAt(int32_t sInputEnd)
{
    const int32_t sInputStart = std::max(sInputEnd - kChunkFrames, 0);
    nChunkFrames = sInputEnd - sInputStart;
    sChunkStart = sLength - sInputEnd;
    pInput->SetPosition(sInputStart);
    pInput->Read(vChunk.data(), nChunkFrames);
    // Reverse the frame order in place, keeping the channel order within each frame.
    const size_t nC = nChans;
    int32_t* pLo = vChunk.data();
    int32_t* pHi = vChunk.data() + (static_cast<size_t>(nChunkFrames) - 1) * nC;
    if (nC == 1) {
        std::reverse(pLo, pLo + nChunkFrames);
        return;
    }
    for (; pLo < pHi; pLo += nC, pHi -= nC)
        std::swap_ranges(pLo, pLo + nC, pHi);
}

void LSRCReverse::Read(int32_t* pBuffer, int32_t nFrames)
{
    const size_t nC = nChans;
    while (nFrames > 0) {
        if (sPosition < 0 || sPosition >= sLength) {
            // Before the start and past the end read as silence.
            const int32_t n = sPosition < 0 ? static_cast<int32_t>(std::min<int64_t>(-static_cast<int64_t>(sPosition), nFrames)) : nFrames;
            LZeroFrames(pBuffer, n, nChans);
            pBuffer += n * nC;
            nFrames -= n;
            sPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sPosition) + n, INT32_MAX));
            continue;
        }
        if (nChunkFrames == 0 || sPosition < sChunkStart || sPosition >= sChunkStart + nChunkFrames)
            LoadChunkEndingAt(sLength - sPosition);
        const int32_t nInto = sPosition - sChunkStart;
        const int32_t n = std::min(nFrames, nChunkFrames - nInto);
        std::memcpy(pBuffer, vChunk.data() + static_cast<size_t>(nInto) * nC, static_cast<size_t>(n) * nC * sizeof(int32_t));
        pBuffer += n * nC;
        nFrames -= n;
        sPosition += n;
    }
}

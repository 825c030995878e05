#include "core/LCutListAudioSource.h"

#include <algorithm>
#include <bit>
#include <climits>

#include "core/LAudioCutTank.h"
#include "core/LFixed.h"
#include "core/LTrace.h"

LCutListAudioSource::LCutListAudioSource(const LList<LAudioCut>& lstList, int32_t nSampleRate, uint8_t nChannels,
                                         int32_t sTotal)
    : LSoundSourceBase(nSampleRate, nChannels, kMaxAmplitude),
      lstCuts(lstList),
      itNext(lstCuts),
      sLength(sTotal)
{
}

int32_t LCutListAudioSource::GetPosition()
{
    return static_cast<int32_t>(std::clamp<int64_t>(sPosition, INT32_MIN, INT32_MAX));
}

void LCutListAudioSource::OpenCut(const LAudioCut& cut, int64_t sInto)
{
    nCutLeft = cut.sLength - sInto;
    bCutHasData = false;
    if (cut.IsSilent())
        return;
    if (!fileAud.IsOpen() || nOpenRef != cut.nRef) {
        nOpenRef = cut.nRef;
        // A segment that cannot be opened reads as silence for its cut.
        if (!fileAud.Open(LAudioCutTank::Instance().GetAudFilePath(cut.nRef), LFile::ReadExisting)) {
            LTRACE("LCutListAudioSource::OpenCut cannot open segment %u", cut.nRef);
            return;
        }
    }
    const int64_t nFrameBytes = static_cast<int64_t>(nChans) * 4;
    if (fileAud.Seek((cut.sOffset + sInto) * nFrameBytes) < 0)
        return;
    nGain = cut.nGain;
    bCutHasData = true;
}

void LCutListAudioSource::ReadCutFrames(int32_t* pBuffer, int32_t nFrames)
{
    const int64_t nSamples = static_cast<int64_t>(nFrames) * nChans;
    const int64_t nGot = bCutHasData ? fileAud.Read(pBuffer, nSamples * 4) / 4 : 0;
    std::fill(pBuffer + nGot, pBuffer + nSamples, 0);
    if constexpr (std::endian::native == std::endian::big) {
        for (int64_t i = 0; i < nGot; ++i)
            pBuffer[i] = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(pBuffer[i])));
    }
    if (nGain != kGainUnity) {
        const int32_t g = nGain;
        for (int64_t i = 0; i < nGot; ++i)
            pBuffer[i] = LMulGain824(pBuffer[i], g);
    }
}

void LCutListAudioSource::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    int64_t nLeft = nFrames;
    if (sPosition < 0) {
        const int64_t nZeros = std::min(-sPosition, nLeft);
        LZeroFrames(pBuffer, static_cast<int32_t>(nZeros), nChans);
        pBuffer += nZeros * nChans;
        nLeft -= nZeros;
        sPosition += nZeros;
    }
    sPosition += nLeft;
    while (nLeft > 0) {
        const int64_t nTake = std::min(nCutLeft, nLeft);
        if (nTake > 0) {
            ReadCutFrames(pBuffer, static_cast<int32_t>(nTake));
            pBuffer += nTake * nChans;
            nLeft -= nTake;
            nCutLeft -= nTake;
        }
        if (nCutLeft == 0) {
            bCutHasData = false;
            if (!itNext.IsValid())
                break;
            OpenCut(*itNext, 0);
            itNext.Next();
        }
    }
    LZeroFrames(pBuffer, static_cast<int32_t>(nLeft), nChans);
}

void LCutListAudioSource::SetPosition(int32_t sNewPosition)
{
    bCutHasData = false;
    sPosition = sNewPosition;
    nCutLeft = 0;
    itNext.First();
    if (sNewPosition < 1)
        return;
    int64_t p = sNewPosition;
    while (itNext.IsValid() && p >= itNext->sLength) {
        p -= itNext->sLength;
        itNext.Next();
    }
    if (!itNext.IsValid())
        return; // past the end: everything reads as zeros
    OpenCut(*itNext, p);
    itNext.Next();
}

#include "formats/LRawFileDataSoundSourceBase.h"

#include <algorithm>
#include <climits>

#include "core/LTrace.h"

LRawFileDataSoundSourceBase::LRawFileDataSoundSourceBase(LFile&& fileIn, size_t nSizeofT, int32_t nRate,
                                                         int64_t nDataBytes, uint8_t nChannels)
    : LSoundSourceBase(nRate, nChannels, 0x7FFF0), file(std::move(fileIn))
{
    if (nSizeofT == 0 || nChannels == 0) {
        LTRACE("LRawFileDataSoundSourceBase::LRawFileDataSoundSourceBase sizeofT or nChans == 0");
        SetError();
        return;
    }
    if (!file.IsOpen()) {
        LTRACE("LRawFileDataSoundSourceBase::LRawFileDataSoundSourceBase File not opened");
        SetError();
        return;
    }
    nFrameSize = static_cast<int64_t>(nSizeofT) * nChannels;
    nDataStart = file.Tell();
    if (nDataStart < 0) {
        SetError();
        return;
    }
    sFileFrame = 0;
    if (nDataBytes < 0) {
        LTRACE("LRawFileDataSoundSourceBase::LRawFileDataSoundSourceBase File Length is Unspecified - use the length");
        nDataBytes = std::max<int64_t>(0, file.Size() - nDataStart);
    }
    // A trailing part frame is dropped; a size beyond the file is believed (its tail reads as zeros).
    sLength = static_cast<int32_t>(std::min<int64_t>(nDataBytes / nFrameSize, INT32_MAX));
    vBuffer.resize(static_cast<size_t>(kBlockFrames * nFrameSize));
}

void LRawFileDataSoundSourceBase::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sFrom = sPosition;
    const int64_t sTo = sFrom + nFrames;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX));
    if (IsError() || sTo <= 0) {
        LZeroFrames(pBuffer, nFrames, nChans);
        return;
    }
    const int64_t nLead = sFrom < 0 ? -sFrom : 0;
    LZeroFrames(pBuffer, static_cast<int32_t>(nLead), nChans);
    int32_t* pOut = pBuffer + nLead * nChans;
    const int64_t sStart = sFrom + nLead;
    const int64_t nInData = std::max<int64_t>(0, std::min<int64_t>(sTo, sLength) - sStart);
    ReadFromFile(pOut, sStart, nInData);
    LZeroFrames(pOut + nInData * nChans, static_cast<int32_t>(sTo - sStart - nInData), nChans);
}

void LRawFileDataSoundSourceBase::ReadFromFile(int32_t* pOut, int64_t sFrom, int64_t nFrames)
{
    if (nFrames > 0 && sFileFrame != sFrom && !SeekFileTo(sFrom)) {
        LZeroFrames(pOut, static_cast<int32_t>(nFrames), nChans);
        return;
    }
    while (nFrames > 0) {
        const int64_t nWant = std::min<int64_t>(nFrames, kBlockFrames);
        const int64_t nGot = file.Read(vBuffer.data(), nWant * nFrameSize);
        const int64_t nWhole = nGot / nFrameSize;
        Convert(vBuffer.data(), pOut, static_cast<size_t>(nWhole * nChans));
        if (nWhole < nWant) {
            // The file ended early: the rest is silence, and the pointer is no longer where the
            // next read expects it.
            LZeroFrames(pOut + nWhole * nChans, static_cast<int32_t>(nFrames - nWhole), nChans);
            sFileFrame = -1;
            return;
        }
        sFileFrame += nWant;
        pOut += nWant * nChans;
        nFrames -= nWant;
    }
}

bool LRawFileDataSoundSourceBase::SeekFileTo(int64_t sFrame)
{
    const int64_t nTarget = nDataStart + sFrame * nFrameSize;
    const bool bOk = file.Seek(nTarget) == nTarget;
    sFileFrame = bOk ? sFrame : -1;
    return bOk;
}

void LRawFileDataSoundSourceBase::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    if (!IsError())
        SeekFileTo(sNewPosition > 0 ? std::min(sNewPosition, sLength) : 0);
}

int32_t LRawFileDataSoundSourceBase::GetLengthInFile()
{
    if (IsError())
        return 0;
    const int64_t nHeld = std::max<int64_t>(0, file.Size() - nDataStart) / nFrameSize;
    return static_cast<int32_t>(std::min<int64_t>(nHeld, sLength));
}

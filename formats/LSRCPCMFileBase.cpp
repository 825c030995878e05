#include "formats/LSRCPCMFileBase.h"

#include <algorithm>
#include <climits>

#include "core/LTrace.h"

LSRCPCMFileBase::LSRCPCMFileBase(LFile&& fileIn, uint32_t nDataSize, int32_t nRate, uint8_t nChannels,
                                 int nBytes)
    : LSoundSourceBase(nRate, nChannels, 0x7FFF0), file(std::move(fileIn)), nBytesPerSample(nBytes)
{
    if (!file.IsOpen()) {
        LTRACE("LSRCPCMFileBase::LSRCPCMFileBase File Not Open");
        SetError();
        return;
    }
    if (nChannels == 0) {
        LTRACE("LSRCPCMFileBase::LSRCPCMFileBase nChans == 0");
        SetError();
    }
    nFrameSize = nChannels * nBytesPerSample;
    if (nFrameSize == 0) {
        SetError();
        nFrameSize = 2;
    }
    nDataStart = file.Tell();
    if (nDataStart < 0) {
        SetError();
        return;
    }
    sFileFrame = 0;
    int64_t nBytesOfData = nDataSize;
    if (nDataSize == kStreamingSize) {
        LTRACE("LSRCPCMFileBase::LSRCPCMFileBase Wav File Is Streaming");
        nBytesOfData = std::max<int64_t>(0, file.Size() - nDataStart);
    }
    // A trailing part frame is dropped; a size beyond the file is believed (its tail reads as zeros).
    sLength = static_cast<int32_t>(std::min<int64_t>(nBytesOfData / nFrameSize, INT32_MAX));
    if (!IsError())
        vBuffer.resize(static_cast<size_t>(kBlockFrames) * nFrameSize);
}

void LSRCPCMFileBase::Read(int32_t* pBuffer, int32_t nFrames)
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
    // Frames before frame 0 are silence.
    const int64_t nLead = sFrom < 0 ? -sFrom : 0;
    LZeroFrames(pBuffer, static_cast<int32_t>(nLead), nChans);
    int32_t* pOut = pBuffer + nLead * nChans;
    const int64_t sStart = sFrom + nLead;
    const int64_t nInData = std::max<int64_t>(0, std::min<int64_t>(sTo, sLength) - sStart);
    ReadFromFile(pOut, sStart, nInData);
    // Frames behind the end are zeros.
    LZeroFrames(pOut + nInData * nChans, static_cast<int32_t>(sTo - sStart - nInData), nChans);
}

void LSRCPCMFileBase::ReadFromFile(int32_t* pOut, int64_t sFrom, int64_t nFrames)
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
            // The file ended early: what it did not deliver is silence, and the pointer is
            // no longer where the next read expects it.
            LZeroFrames(pOut + nWhole * nChans, static_cast<int32_t>(nFrames - nWhole), nChans);
            sFileFrame = -1;
            return;
        }
        sFileFrame += nWant;
        pOut += nWant * nChans;
        nFrames -= nWant;
    }
}

bool LSRCPCMFileBase::SeekFileTo(int64_t sFrame)
{
    const int64_t nTarget = nDataStart + sFrame * nFrameSize;
    const bool bOk = file.Seek(nTarget) == nTarget;
    sFileFrame = bOk ? sFrame : -1;
    return bOk;
}

void LSRCPCMFileBase::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    if (!IsError())
        SeekFileTo(sNewPosition > 0 ? std::min(sNewPosition, sLength) : 0);
}

int32_t LSRCPCMFileBase::GetLengthInFile()
{
    if (IsError())
        return 0;
    const int64_t nHeld = std::max<int64_t>(0, file.Size() - nDataStart) / nFrameSize;
    return static_cast<int32_t>(std::min<int64_t>(nHeld, sLength));
}

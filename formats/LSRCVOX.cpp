#include "formats/LSRCVOX.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "core/LTrace.h"

LSRCVOX::LSRCVOX(const std::string& szFileName, int32_t nRate) : LSoundSourceBase(nRate, 1, 0x7FFF0)
{
    if (!file.Open(szFileName, LFile::ReadExisting)) {
        LTRACE("LSRCVOX::LSRCVOX unable to open file: %s", szFileName.c_str());
        SetError();
        return;
    }
    const int64_t nSize = file.Size();
    sLength = nSize < 0 ? 0 : static_cast<int32_t>(std::min<int64_t>(nSize * 2, INT32_MAX));
}

void LSRCVOX::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sFrom = sPosition;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sFrom + nFrames, INT32_MAX));
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, 1);
        return;
    }
    // Samples before the start are silence; the file pointer already stands at byte 0.
    const int32_t nLead = static_cast<int32_t>(std::clamp<int64_t>(-sFrom, 0, nFrames));
    LZeroFrames(pBuffer, nLead, 1);
    int32_t* pOut = pBuffer + nLead;
    int32_t nLeft = nFrames - nLead;
    if (nLeft > 0 && bPending) {
        *pOut++ = adpcm.Decode(nPendingByte & 15);
        bPending = false;
        --nLeft;
    }
    DecodeFromFile(pOut, nLeft);
}

void LSRCVOX::DecodeFromFile(int32_t* pOut, int32_t nSamples)
{
    while (nSamples > 0) {
        const int32_t nBytes = std::min((nSamples + 1) / 2, kBlockBytes);
        const int32_t nGot = static_cast<int32_t>(file.Read(aBuffer, nBytes));
        const int32_t nDecoded = std::min(nGot * 2, nSamples);
        for (int32_t i = 0; i < nDecoded; i += 2) {
            const uint8_t b = aBuffer[i / 2];
            pOut[i] = adpcm.Decode(b >> 4);
            if (i + 1 < nDecoded) {
                pOut[i + 1] = adpcm.Decode(b & 15);
            } else {
                // The request ended after a high nibble: the low one opens the next read.
                bPending = true;
                nPendingByte = b;
            }
        }
        pOut += nDecoded;
        nSamples -= nDecoded;
        if (nGot < nBytes) {
            LZeroFrames(pOut, nSamples, 1);
            return;
        }
    }
}

void LSRCVOX::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    if (!IsError())
        file.Seek(sNewPosition > 0 ? sNewPosition / 2 : 0);
}

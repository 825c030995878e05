#include "cd/LSNKCdAudio.h"

#include <cstring>

#include "cd/LCdToc.h"
#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"

LSNKCdAudio::LSNKCdAudio(std::FILE* p) : LSoundSinkBase(LCd::kSampleRate, 2), pFile(p)
{
    vBytes.resize(static_cast<size_t>(LPRSourceToSink::kBlockFrames) * 4);
    if (!pFile)
        SetError();
}

void LSNKCdAudio::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || nFrames <= 0)
        return;
    while (nFrames > 0) {
        const int32_t nChunk = nFrames < LPRSourceToSink::kBlockFrames ? nFrames : LPRSourceToSink::kBlockFrames;
        uint8_t* pOut = vBytes.data();
        for (int32_t i = 0; i < nChunk * 2; ++i) {
            // Back to 16 bits with rounding; out-of-range values wrap, as every writer's do.
            const int32_t v = static_cast<int32_t>(static_cast<uint32_t>(pBuffer[i]) + 8u) >> 4;
            const uint16_t w = static_cast<uint16_t>(v);
            pOut[2 * i] = static_cast<uint8_t>(w & 0xFF);
            pOut[2 * i + 1] = static_cast<uint8_t>(w >> 8);
        }
        if (std::fwrite(pOut, 4, static_cast<size_t>(nChunk), pFile) != static_cast<size_t>(nChunk)) {
            LTRACE("LSNKCdAudio::Write fwrite failed");
            SetError();
            return;
        }
        pBuffer += nChunk * 2;
        nFrames -= nChunk;
        nFramesWritten += nChunk;
        sPosition += nChunk;
    }
}

bool LSNKCdAudio::Complete()
{
    if (!IsError() && std::fflush(pFile) != 0) {
        LTRACE("LSNKCdAudio::Complete fflush failed");
        SetError();
    }
    return !IsError();
}

bool LSNKCdAudio::PadToSector()
{
    const int32_t nRest = static_cast<int32_t>(nFramesWritten % LCd::kFramesPerSector);
    if (nRest == 0 || IsError())
        return !IsError();
    const size_t nBytes = static_cast<size_t>(LCd::kFramesPerSector - nRest) * 4;
    std::memset(vBytes.data(), 0, nBytes);
    if (std::fwrite(vBytes.data(), 1, nBytes, pFile) != nBytes) {
        SetError();
        return false;
    }
    nFramesWritten += LCd::kFramesPerSector - nRest;
    return true;
}

bool LSNKCdAudio::WriteSilence(std::FILE* pFile, int32_t nSectors)
{
    static const uint8_t aZero[LCd::kBytesPerSector] = {};
    for (int32_t i = 0; i < nSectors; ++i)
        if (std::fwrite(aZero, 1, sizeof aZero, pFile) != sizeof aZero)
            return false;
    return true;
}

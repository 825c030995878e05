// What the file-reader fuzz targets share: the input written to a file each reader can open, and
// a source read whole in pump-sized blocks, then at odd sizes around seeks to its edges.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <vector>

#include "core/LSoundSourceBase.h"

namespace fuzzsupport {

// A file in memory-backed storage when there is one, so each run costs no disk writes; removed at
// exit. szStem names the target ("au"), szExt the extension its reader expects (".au").
inline const char* FuzzPath(const char* szStem, const char* szExt)
{
    static char szPath[96];
    if (!szPath[0]) {
        std::snprintf(szPath, sizeof(szPath), "%s/sonitra-fuzz-%s-%d%s",
                      ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp", szStem, static_cast<int>(::getpid()),
                      szExt);
        std::atexit([] { std::remove(szPath); });
    }
    return szPath;
}

inline bool WriteInput(const char* szPath, const uint8_t* pData, size_t nSize)
{
    FILE* f = std::fopen(szPath, "wb");
    if (!f)
        return false;
    const bool bOk = std::fwrite(pData, 1, nSize, f) == nSize;
    return std::fclose(f) == 0 && bOk;
}

inline void ReadSome(LSoundSourceBase& src, std::vector<int32_t>& vBuffer, int32_t nBlock, int32_t nBlocks)
{
    for (int32_t i = 0; i < nBlocks; ++i)
        src.Read(vBuffer.data(), nBlock);
}

// A lying length is believed, so at most nMaxFramesRead are read straight through.
inline void Exercise(LSoundSourceBase& src, int32_t nMaxFramesRead)
{
    const int32_t nLength = src.GetLength();
    const int32_t nBlock = 8192;
    std::vector<int32_t> vBuffer(static_cast<size_t>(nBlock) * src.GetChannels());
    ReadSome(src, vBuffer, nBlock, std::min(nLength, nMaxFramesRead) / nBlock + 1);
    const int64_t vSeeks[] = {-5000, -1, 0, 1, nLength / 2, nLength - 3, nLength, int64_t{nLength} + 7, INT32_MAX - 10};
    for (int64_t sTo : vSeeks) {
        src.SetPosition(static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX)));
        ReadSome(src, vBuffer, 4097, 2);
        ReadSome(src, vBuffer, 1, 3);
    }
    volatile int64_t nSink = static_cast<int64_t>(src.GetPosition()) + src.GetSampleRate() + vBuffer[0];
    (void)nSink;
}

} // namespace fuzzsupport

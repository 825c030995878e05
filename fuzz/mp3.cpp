// Feeds arbitrary bytes to the MP3 reader as a file, reads the whole source and seeks around.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include "formats/mp3/LMP3Source.h"

namespace {

char g_szPath[64];

// A file in memory-backed storage when there is one, so each run costs no disk writes; removed at exit.
const char* FuzzPath()
{
    if (!g_szPath[0]) {
        std::snprintf(g_szPath, sizeof(g_szPath), "%s/sonitra-fuzz-mp3-%d.mp3",
                      ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp", static_cast<int>(::getpid()));
        std::atexit([] { std::remove(g_szPath); });
    }
    return g_szPath;
}

bool WriteInput(const uint8_t* pData, size_t nSize)
{
    FILE* f = std::fopen(FuzzPath(), "wb");
    if (!f)
        return false;
    const bool bOk = std::fwrite(pData, 1, nSize, f) == nSize;
    return std::fclose(f) == 0 && bOk;
}

// A long estimate from a few frames is believed, so reading is capped to keep each run short.
constexpr int32_t kMaxFramesRead = 1 << 15;

void ReadSome(LSoundSourceBase& src, std::vector<int32_t>& vBuffer, int32_t nBlock, int32_t nBlocks)
{
    for (int32_t i = 0; i < nBlocks; ++i)
        src.Read(vBuffer.data(), nBlock);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    if (!WriteInput(pData, nSize))
        return 0;
    LSoundSourcePtr pSrc(new LMP3Source(FuzzPath()));
    const int32_t nLength = pSrc->GetLength();
    const int32_t nBlock = 8192;
    std::vector<int32_t> vBuffer(static_cast<size_t>(nBlock) * pSrc->GetChannels());
    // The whole source in pump-sized blocks, then odd sizes at the edges.
    const int32_t nWhole = std::min(nLength, kMaxFramesRead) / nBlock + 1;
    ReadSome(*pSrc, vBuffer, nBlock, nWhole);
    const int64_t vSeeks[] = {-5000, -1, 0, 1, nLength / 2, nLength - 3, nLength, int64_t{nLength} + 7, INT32_MAX - 10};
    for (int64_t sTo : vSeeks) {
        pSrc->SetPosition(static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX)));
        ReadSome(*pSrc, vBuffer, 4097, 2);
        ReadSome(*pSrc, vBuffer, 1, 3);
    }
    volatile int64_t nSink = static_cast<int64_t>(pSrc->GetPosition()) + pSrc->GetSampleRate() + vBuffer[0];
    (void)nSink;
    return 0;
}

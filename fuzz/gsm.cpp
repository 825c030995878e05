// Feeds arbitrary bytes to the GSM readers: as a ".gsm" file through the audio-file door (read
// whole, then seeks around), as 65-byte blocks of GSM in WAV, and as samples to the encoder. Each
// frame's unpacking is checked to be undone exactly by packing.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

#include "formats/LAudioFile.h"
#include "formats/LGSMFrame.h"
#include "formats/LGSMParams.h"

namespace {

char g_szPath[64];

// A file in memory-backed storage when there is one, so each run costs no disk writes; removed at exit.
const char* FuzzPath()
{
    if (!g_szPath[0]) {
        std::snprintf(g_szPath, sizeof(g_szPath), "%s/sonitra-fuzz-gsm-%d.gsm",
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

void ReadFile(const uint8_t* pData, size_t nSize)
{
    if (!WriteInput(pData, nSize))
        return;
    LSoundSourcePtr pSrc = LAudioFile::OpenSource(FuzzPath());
    const int32_t nLength = pSrc->GetLength();
    std::vector<int32_t> vBuffer(8192 * static_cast<size_t>(pSrc->GetChannels()));
    for (int32_t n = 0; n <= std::min(nLength, 1 << 18); n += 8192)
        pSrc->Read(vBuffer.data(), 8192);
    const int64_t vSeeks[] = {-5000, -1, 0, 1, 159, 160, nLength / 2, nLength - 3, nLength, int64_t{nLength} + 7,
                              INT32_MAX - 10};
    for (int64_t sTo : vSeeks) {
        pSrc->SetPosition(static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX)));
        pSrc->Read(vBuffer.data(), 4097);
        pSrc->Read(vBuffer.data(), 1);
    }
}

void CheckFramePacking(const uint8_t* pData, size_t nSize)
{
    for (size_t i = 0; i + kGSMFrameBytes <= nSize; i += kGSMFrameBytes) {
        LGSMParams params;
        uint8_t again[kGSMFrameBytes];
        if (LGSMUnpack(pData + i, params)) {
            LGSMPack(params, again);
            if (std::memcmp(again, pData + i, kGSMFrameBytes) != 0)
                std::abort();
        }
    }
}

void DecodeWavBlocks(const uint8_t* pData, size_t nSize)
{
    LGSMFrame codec;
    int16_t aSamples[LGSMFrame::kWavBlockSamples];
    uint8_t again[kGSMWavBlockBytes];
    for (size_t i = 0; i + kGSMWavBlockBytes <= nSize; i += kGSMWavBlockBytes) {
        codec.DecodeWavBlock(pData + i, aSamples);
        LGSMParams first, second;
        LGSMUnpackWavBlock(pData + i, first, second);
        LGSMPackWavBlock(first, second, again);
        if (std::memcmp(again, pData + i, kGSMWavBlockBytes) != 0)
            std::abort();
    }
}

// Any 16-bit samples, extremes included, must code without overflow.
void Encode(const uint8_t* pData, size_t nSize)
{
    LGSMFrame codec;
    int16_t aSamples[LGSMFrame::kSamples];
    uint8_t aFrame[kGSMFrameBytes];
    for (size_t i = 0; i + sizeof(aSamples) <= nSize; i += sizeof(aSamples)) {
        std::memcpy(aSamples, pData + i, sizeof(aSamples));
        codec.EncodeNormal(aSamples, aFrame);
        int16_t aDecoded[LGSMFrame::kSamples];
        if (!codec.DecodeNormal(aFrame, aDecoded))
            std::abort(); // what the encoder writes always carries the signature
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    ReadFile(pData, nSize);
    CheckFramePacking(pData, nSize);
    DecodeWavBlocks(pData, nSize);
    Encode(pData, nSize);
    return 0;
}

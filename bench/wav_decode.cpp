// Decodes an audio file to raw 16-bit little-endian samples through the audio-file door, the same
// job as `sox IN -t s16 OUT`; bench/wav_codecs.sh runs both on compressed WAV files.
#include <cstdio>
#include <string>
#include <vector>

#include "core/LFixed.h"
#include "formats/LAudioFile.h"

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_wav_decode IN.wav OUT.raw\n");
        return 64;
    }
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(argv[1], &szError);
    if (pSource->IsError()) {
        std::fprintf(stderr, "bench_wav_decode: %s: %s\n", argv[1], szError.c_str());
        return 2;
    }
    FILE* pOut = std::fopen(argv[2], "wb");
    if (!pOut)
        return 2;
    constexpr int32_t kBlock = 8192;
    const size_t nChans = pSource->GetChannels();
    std::vector<int32_t> vIn(kBlock * nChans);
    std::vector<int16_t> vOut(kBlock * nChans);
    const int32_t nLength = pSource->GetLength();
    for (int32_t n = 0; n < nLength; n += kBlock) {
        const int32_t nNow = std::min(kBlock, nLength - n);
        pSource->Read(vIn.data(), nNow);
        for (size_t i = 0; i < nNow * nChans; ++i)
            vOut[i] = LTo16(vIn[i]);
        std::fwrite(vOut.data(), 2, nNow * nChans, pOut);
    }
    return std::fclose(pOut) == 0 ? 0 : 2;
}

// Opens an audio file through the door and writes its samples as raw 32-bit integers, the work
// of `sox IN -t raw -e signed -b 32 OUT`; bench/au_open.sh runs both on a 10-minute µ-law AU.
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "core/LFile.h"
#include "formats/LAudioFile.h"

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_au_decode IN OUT.raw\n");
        return 64;
    }
    const auto t0 = std::chrono::steady_clock::now();
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(argv[1], &szError);
    if (pSource->IsError()) {
        std::fprintf(stderr, "bench_au_decode: %s: %s\n", argv[1], szError.c_str());
        return 2;
    }
    LFile out;
    if (!out.Open(argv[2], LFile::ReadWriteCreate)) {
        std::fprintf(stderr, "bench_au_decode: cannot write %s\n", argv[2]);
        return 2;
    }
    constexpr int32_t kBlock = 8192;
    std::vector<int32_t> v(static_cast<size_t>(kBlock) * pSource->GetChannels());
    for (int32_t nLeft = pSource->GetLength(); nLeft > 0; nLeft -= kBlock) {
        const int32_t n = nLeft < kBlock ? nLeft : kBlock;
        pSource->Read(v.data(), n);
        const int64_t nBytes = static_cast<int64_t>(n) * pSource->GetChannels() * 4;
        if (out.Write(v.data(), nBytes) != nBytes)
            return 2;
    }
    const std::chrono::duration<double> d = std::chrono::steady_clock::now() - t0;
    std::printf("%.4f %d\n", d.count(), pSource->GetLength());
    return 0;
}

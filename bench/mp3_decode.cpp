// Decodes MP3 files to the end through the MP3 source, the way loading a file reads them.
// Usage: bench_mp3_decode FILE... ; prints the frames decoded per file.
#include <cstdio>
#include <vector>

#include "formats/mp3/LMP3Source.h"

int main(int argc, char** argv)
{
    std::vector<int32_t> vBlock(8192 * 2);
    for (int i = 1; i < argc; ++i) {
        LMP3Source src(argv[i]);
        if (src.IsError()) {
            std::fprintf(stderr, "%s: not an MP3 file\n", argv[i]);
            return 2;
        }
        int64_t nSum = 0;
        while (src.GetPosition() < src.GetLength()) {
            src.Read(vBlock.data(), 8192);
            nSum += vBlock[0];
        }
        std::printf("%s: %d frames (%lld)\n", argv[i], src.GetLength(), static_cast<long long>(nSum & 1));
    }
    return 0;
}

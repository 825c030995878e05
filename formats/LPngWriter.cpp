#include "formats/LPngWriter.h"

#include <algorithm>
#include <array>

#include "core/LAtomicFile.h"

namespace {
void Put32(std::vector<uint8_t>& v, uint32_t n)
{
    v.push_back(static_cast<uint8_t>(n >> 24));
    v.push_back(static_cast<uint8_t>(n >> 16));
    v.push_back(static_cast<uint8_t>(n >> 8));
    v.push_back(static_cast<uint8_t>(n));
}

void PutChunk(std::vector<uint8_t>& v, const char* szType, const std::vector<uint8_t>& vData)
{
    Put32(v, static_cast<uint32_t>(vData.size()));
    const size_t nTypeAt = v.size();
    v.insert(v.end(), szType, szType + 4);
    v.insert(v.end(), vData.begin(), vData.end());
    Put32(v, LPngWriter::Crc32(v.data() + nTypeAt, v.size() - nTypeAt));
}

// The zlib stream of the filtered rows: a header, stored blocks of at most 65535 bytes, Adler-32.
std::vector<uint8_t> StoredZlib(const std::vector<uint8_t>& vRaw)
{
    std::vector<uint8_t> v{0x78, 0x01};
    size_t nAt = 0;
    do {
        const size_t n = std::min<size_t>(vRaw.size() - nAt, 65535);
        const bool bLast = nAt + n == vRaw.size();
        v.push_back(bLast ? 1 : 0);
        v.push_back(static_cast<uint8_t>(n));
        v.push_back(static_cast<uint8_t>(n >> 8));
        v.push_back(static_cast<uint8_t>(~n));
        v.push_back(static_cast<uint8_t>(~n >> 8));
        v.insert(v.end(), vRaw.begin() + static_cast<std::ptrdiff_t>(nAt),
                 vRaw.begin() + static_cast<std::ptrdiff_t>(nAt + n));
        nAt += n;
    } while (nAt < vRaw.size());
    Put32(v, LPngWriter::Adler32(vRaw.data(), vRaw.size()));
    return v;
}
} // namespace

uint32_t LPngWriter::Crc32(const uint8_t* p, size_t n, uint32_t nCrc)
{
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    uint32_t c = ~nCrc;
    for (size_t i = 0; i < n; ++i)
        c = table[(c ^ p[i]) & 0xFF] ^ (c >> 8);
    return ~c;
}

uint32_t LPngWriter::Adler32(const uint8_t* p, size_t n, uint32_t nAdler)
{
    uint32_t a = nAdler & 0xFFFF, b = nAdler >> 16;
    while (n > 0) {
        // 5552 bytes keep the sums below 2^32 before the reduction.
        const size_t nRun = std::min<size_t>(n, 5552);
        for (size_t i = 0; i < nRun; ++i) {
            a += p[i];
            b += a;
        }
        a %= 65521;
        b %= 65521;
        p += nRun;
        n -= nRun;
    }
    return (b << 16) | a;
}

std::vector<uint8_t> LPngWriter::Encode(int32_t nWidth, int32_t nHeight, const std::vector<uint8_t>& vRgb)
{
    const size_t nRow = static_cast<size_t>(std::max(nWidth, 0)) * 3;
    if (nWidth <= 0 || nHeight <= 0 || vRgb.size() < nRow * nHeight)
        return {};
    std::vector<uint8_t> vRaw;
    vRaw.reserve((nRow + 1) * nHeight);
    for (int32_t y = 0; y < nHeight; ++y) {
        vRaw.push_back(0); // no filter
        vRaw.insert(vRaw.end(), vRgb.begin() + static_cast<std::ptrdiff_t>(nRow * y),
                    vRgb.begin() + static_cast<std::ptrdiff_t>(nRow * (y + 1)));
    }
    std::vector<uint8_t> v{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<uint8_t> vHeader;
    Put32(vHeader, static_cast<uint32_t>(nWidth));
    Put32(vHeader, static_cast<uint32_t>(nHeight));
    vHeader.insert(vHeader.end(), {8, 2, 0, 0, 0}); // 8 bits, RGB, deflate, no filter set, no interlace
    PutChunk(v, "IHDR", vHeader);
    PutChunk(v, "IDAT", StoredZlib(vRaw));
    PutChunk(v, "IEND", {});
    return v;
}

bool LPngWriter::Write(const std::string& szPath, int32_t nWidth, int32_t nHeight, const std::vector<uint8_t>& vRgb,
                       std::string* pszError)
{
    const std::vector<uint8_t> v = Encode(nWidth, nHeight, vRgb);
    if (v.empty()) {
        if (pszError)
            *pszError = "no picture to write";
        return false;
    }
    return LAtomicFile::Write(szPath, v, pszError);
}

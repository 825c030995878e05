// Writes 8-bit RGB pictures as PNG files. The image data goes out as stored (uncompressed)
// deflate blocks, which every reader accepts and which need no compression library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LPngWriter {

// The whole file: signature, header, image data and end chunks. vRgb holds nWidth x nHeight
// pixels, three bytes each, row by row from the top. Empty for a size of 0 or a short buffer.
std::vector<uint8_t> Encode(int32_t nWidth, int32_t nHeight, const std::vector<uint8_t>& vRgb);

// Encodes and writes the file whole or not at all; false with the reason on failure.
bool Write(const std::string& szPath, int32_t nWidth, int32_t nHeight, const std::vector<uint8_t>& vRgb,
           std::string* pszError = nullptr);

// The checksums the format uses (CRC-32 of chunks, Adler-32 of the zlib stream).
uint32_t Crc32(const uint8_t* p, size_t n, uint32_t nCrc = 0);
uint32_t Adler32(const uint8_t* p, size_t n, uint32_t nAdler = 1);

} // namespace LPngWriter

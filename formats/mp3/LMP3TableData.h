// Constant tables of MPEG audio Layer III, as the standards print them.
#pragma once

#include <cstdint>

namespace LMP3Data {

// One Huffman code book: xlen values per row, linbits for escapes (x or y of 15), code words
// and their lengths indexed by x * xlen + y. Books 0, 4 and 14 carry no codes.
struct HuffBook
{
    uint8_t nXLen;
    uint8_t nLinBits;
    const uint16_t* pCodes;
    const uint8_t* pLengths;
};

extern const HuffBook kBooks[32];
extern const HuffBook kCount1A;
extern const uint16_t kLongBands[9][23];
extern const uint8_t kShortBands[9][14];
extern const uint8_t kPretab[22];
extern const uint8_t kSlen[2][16];
extern const uint8_t kLsfPartitions[6][3][4];
extern const float kAliasCoef[8];
extern const double kSynthWindow[257];

} // namespace LMP3Data

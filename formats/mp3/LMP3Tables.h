// The lookup tables the Layer III decoder computes once: requantisation powers, Huffman decoding
// tables, IMDCT and synthesis matrices and windows. Shared read-only by every decoder.
#pragma once

#include <cstdint>

class LMP3Tables
{
public:
    // Builds the tables on first use; false when the Huffman code books prove inconsistent.
    bool InitTables();

    static constexpr int kPow43Size = 8207; // 15 + 2^13 - 1 is the largest coded magnitude
    static constexpr int kGainOffset = 400;  // fGain[q + kGainOffset] = 2^(q / 4)
    static constexpr int kGainSize = 512;

    float fPow43[kPow43Size];
    float fGain[kGainSize];

    // Huffman decoding: multi-level lookup. An entry with bit 31 clear is a leaf: bits 8..12 give
    // the bits it takes at its level, bits 0..7 the value (x << 4 | y, or vwxy). With bit 31 set it
    // points to a subtable: bits 24..28 give the subtable's index width, bits 0..23 its start.
    static constexpr int kHuffEntries = 12288;
    uint32_t aHuff[kHuffEntries];
    uint16_t aBookStart[34]; // books 0..31, then count1 A (32) and B (33)
    uint8_t aBookBits[34];

    // The long IMDCT as an 18-point DCT-IV, itself a DCT-II of scaled inputs split in two 9-point
    // halves: 1 / 2cos(pi (2n + 1) / 72), 1 / 2cos(pi (2n + 1) / 36), cos(pi (2n + 1) k / 18).
    float fImdctInv72[18];
    float fImdctInv36[9];
    float fImdctDct9[9][9]; // [input n][output k]
    float fImdct12[6][12];  // [input line][output], the short window applied
    float fWindow[4][36];   // long windows by block type (short: unused)
    float fAliasCs[8];
    float fAliasCa[8];
    // 1 / (2 cos(pi (2n + 1) / 2N)) for the fast 32-point DCT: N = 32 at 0..15, 16 at 16..23,
    // 8 at 24..27, 4 at 28..29, 2 at 30.
    float fDctInv[31];
    float fSynth[512]; // the synthesis window, scaled to the internal sample layout
    // Intensity stereo: left and right factors by position; MPEG-1 positions 0..6, and for the
    // lower sampling frequencies by intensity scale and position.
    float fIsLeft1[7];
    float fIsRight1[7];
    float fIsLeft2[2][32];
    float fIsRight2[2][32];

private:
    bool BuildHuffman();
    bool bReady = false;
    bool bOk = false;
};

extern LMP3Tables MP3LT;

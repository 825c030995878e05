// The 76 coded parameters of one GSM full-rate frame and the two ways files pack them:
// the 33-byte frame of ".gsm" files (a 0xD signature nibble, then the parameters most
// significant bit first) and the 65-byte block of GSM in WAV (two frames, least significant
// bit first, no signature). Each packer and its unpacker are exact inverses.
#pragma once

#include <cstddef>
#include <cstdint>

struct LGSMParams
{
    static constexpr int kCount = 76;
    static constexpr int kSubframes = 4;
    static constexpr int kPulses = 13;
    static constexpr int kPerSubframe = 4 + kPulses;

    // In the order they are sent: eight log-area ratios, then for each 40-sample subframe the
    // lag, the gain, the grid, the block maximum and the thirteen pulses.
    int16_t aValue[kCount] = {};

    int16_t& LARc(int i) { return aValue[i]; }
    int16_t& Nc(int j) { return aValue[8 + kPerSubframe * j]; }
    int16_t& bc(int j) { return aValue[9 + kPerSubframe * j]; }
    int16_t& Mc(int j) { return aValue[10 + kPerSubframe * j]; }
    int16_t& xmaxc(int j) { return aValue[11 + kPerSubframe * j]; }
    int16_t* xMc(int j) { return aValue + 12 + kPerSubframe * j; }
    int16_t LARc(int i) const { return aValue[i]; }
    int16_t Nc(int j) const { return aValue[8 + kPerSubframe * j]; }
    int16_t bc(int j) const { return aValue[9 + kPerSubframe * j]; }
    int16_t Mc(int j) const { return aValue[10 + kPerSubframe * j]; }
    int16_t xmaxc(int j) const { return aValue[11 + kPerSubframe * j]; }
    const int16_t* xMc(int j) const { return aValue + 12 + kPerSubframe * j; }

    // The bits each parameter takes, in order.
    static int Width(int nIndex);

    bool operator==(const LGSMParams&) const = default;
};

inline constexpr size_t kGSMFrameBytes = 33;
inline constexpr size_t kGSMWavBlockBytes = 65;
inline constexpr uint8_t kGSMSignature = 0xD;

// Only the bits of each parameter's width are kept.
void LGSMPack(const LGSMParams& params, uint8_t* pFrame);
// False when the frame does not start with the signature nibble; the parameters are filled anyway.
bool LGSMUnpack(const uint8_t* pFrame, LGSMParams& params);

void LGSMPackWavBlock(const LGSMParams& first, const LGSMParams& second, uint8_t* pBlock);
void LGSMUnpackWavBlock(const uint8_t* pBlock, LGSMParams& first, LGSMParams& second);

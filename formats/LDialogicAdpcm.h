// The Dialogic (OKI) 4-bit ADPCM state shared by the VOX reader and writer. Both pull the
// predictor towards 0 by 1/64 each sample: a decoder that starts in the wrong state, after a
// seek, settles by itself.
#pragma once

#include <cstdint>

class LDialogicAdpcm
{
public:
    static constexpr int kSteps = 49;

    // The sample of one 4-bit code (bit 3 the sign), unclipped, in the internal layout.
    int32_t Decode(uint8_t nCode)
    {
        ClampIndex();
        const int64_t v = static_cast<int64_t>(nPredictor) + kStep[nIndex] * kMultiplier[nCode & 15] - (nPredictor >> 6);
        nPredictor = static_cast<int32_t>(v);
        nIndex += kIndexChange[nCode & 7];
        return nPredictor;
    }

    // The 4-bit code of one sample in the internal layout.
    uint8_t Encode(int32_t s)
    {
        ClampIndex();
        nPredictor -= nPredictor >> 6;
        int64_t d = (static_cast<int64_t>(s) - nPredictor) / kStep[nIndex];
        uint8_t nCode = 0;
        if (d < 0) {
            nCode = 8;
            d = -d;
        }
        // Slightly above 128, 64 and 32 on purpose: the coder leans to the smaller step.
        if (d >= 132) {
            nCode |= 4;
            d -= 132;
        }
        if (d >= 66) {
            nCode |= 2;
            d -= 66;
        }
        if (d >= 33)
            nCode |= 1;
        nPredictor = static_cast<int32_t>(static_cast<int64_t>(nPredictor) + kStep[nIndex] * kMultiplier[nCode]);
        nIndex += kIndexChange[nCode & 7];
        return nCode;
    }

    int32_t GetPredictor() const { return nPredictor; }
    int32_t GetIndex() const { return nIndex; }

private:
    void ClampIndex() { nIndex = nIndex < 0 ? 0 : (nIndex >= kSteps ? kSteps - 1 : nIndex); }

    static constexpr int32_t kStep[kSteps] = {
        16,  17,  19,  21,  23,  25,  28,  31,  34,  37,  41,  45,  50,  55,   60,   66,   73,
        80,  88,  97,  107, 118, 130, 143, 157, 173, 190, 209, 230, 253, 279,  307,  337,  371,
        408, 449, 494, 544, 598, 658, 724, 796, 876, 963, 1060, 1166, 1282, 1411, 1552,
    };
    static constexpr int32_t kMultiplier[16] = {16,  48,  80,  112,  144,  176,  208,  240,
                                                -16, -48, -80, -112, -144, -176, -208, -240};
    static constexpr int32_t kIndexChange[8] = {-1, -1, -1, -1, 2, 4, 6, 8};

    int32_t nIndex = 0;
    int32_t nPredictor = 0;
};

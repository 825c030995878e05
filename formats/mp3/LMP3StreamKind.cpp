#include "formats/mp3/LMP3StreamKind.h"

namespace {

// Kilobits per second by bit-rate index 1..14: MPEG-1 Layers I, II, III, then the lower
// sampling frequencies' Layer I, and their Layers II and III.
const int kKbps[5][15] = {
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
};
const int kRates[3] = {44100, 48000, 32000};
constexpr int kConfirmFrames = 3;

int Layer(const uint8_t* p) { return 4 - ((p[1] >> 1) & 3); } // 4 for the reserved code

// The fields that stay the same from frame to frame of one stream.
bool SameStream(const uint8_t* a, const uint8_t* b)
{
    return a[0] == b[0] && (a[1] & 0xFE) == (b[1] & 0xFE) && (a[2] & 0x0C) == (b[2] & 0x0C);
}

} // namespace

int LMP3StreamKind::FrameBytes(const uint8_t* p)
{
    if (p[0] != 0xFF || (p[1] & 0xE0) != 0xE0)
        return 0;
    const int nVersionBits = (p[1] >> 3) & 3; // 0 MPEG-2.5, 1 reserved, 2 MPEG-2, 3 MPEG-1
    const int nLayer = Layer(p);
    const int nBitIndex = p[2] >> 4;
    const int nRateIndex = (p[2] >> 2) & 3;
    if (nVersionBits == 1 || nLayer == 4 || nBitIndex == 15 || nRateIndex == 3)
        return 0;
    if (nBitIndex == 0)
        return -1;
    const bool bMpeg1 = nVersionBits == 3;
    const int nRate = kRates[nRateIndex] >> (bMpeg1 ? 0 : nVersionBits == 2 ? 1 : 2);
    const int nRow = bMpeg1 ? nLayer - 1 : (nLayer == 1 ? 3 : 4);
    const int nBits = kKbps[nRow][nBitIndex] * 1000;
    const int nPadding = (p[2] >> 1) & 1;
    if (nLayer == 1)
        return (12 * nBits / nRate + nPadding) * 4;
    return (nLayer == 3 && !bMpeg1 ? 72 : 144) * nBits / nRate + nPadding;
}

bool LMP3StreamKind::FollowedByFrames(const uint8_t* p, size_t nBytes, size_t i)
{
    size_t nAt = i;
    for (int k = 0; k < kConfirmFrames; ++k) {
        const int n = FrameBytes(p + nAt);
        if (n <= 0)
            return false;
        nAt += static_cast<size_t>(n);
        if (nAt + 4 > nBytes)
            return k > 0;
        if (!SameStream(p + i, p + nAt))
            return false;
    }
    return true;
}

bool LMP3StreamKind::FreeFormatRepeats(const uint8_t* p, size_t nBytes, size_t i)
{
    // The next header of the same stream, then one more at the same distance (give or take the
    // padding byte).
    constexpr size_t kLongestFrame = 4000;
    for (size_t j = i + 4; j + 4 <= nBytes && j < i + kLongestFrame; ++j) {
        if (!SameStream(p + i, p + j) || (p[j + 2] >> 4) != 0)
            continue;
        const size_t nStep = j - i;
        for (size_t k = j + nStep - 1; k <= j + nStep + 1 && k + 4 <= nBytes; ++k)
            if (SameStream(p + i, p + k) && (p[k + 2] >> 4) == 0)
                return true;
    }
    return false;
}

LMP3StreamKind::Kind LMP3StreamKind::Classify(const uint8_t* p, size_t nBytes)
{
    for (size_t i = 0; i + 4 <= nBytes; ++i) {
        const int n = FrameBytes(p + i);
        if (n == 0)
            continue;
        if (n < 0) {
            if (FreeFormatRepeats(p, nBytes, i))
                return FreeFormat;
            continue;
        }
        if (FollowedByFrames(p, nBytes, i))
            return static_cast<Kind>(Layer(p + i));
    }
    return None;
}

std::string LMP3StreamKind::Describe(Kind kind)
{
    switch (kind) {
    case Layer1:
        return "MPEG audio Layer I";
    case Layer2:
        return "MPEG audio Layer II";
    case Layer3:
        return "MPEG audio Layer III";
    case FreeFormat:
        return "free-format MPEG audio (no bit rate in its frame headers)";
    default:
        return std::string();
    }
}

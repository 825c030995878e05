#include "formats/codec/LCodecIMA.h"

#include <algorithm>

#include "formats/codec/LCodecBytes.h"

namespace {
constexpr uint32_t kMaxChannels = LCodecAdpcm::kMaxChannels;

const int16_t kStep[89] = {
    7,     8,     9,     10,    11,    12,    13,    14,    16,    17,    19,    21,    23,    25,    28,
    31,    34,    37,    41,    45,    50,    55,    60,    66,    73,    80,    88,    97,    107,   118,
    130,   143,   157,   173,   190,   209,   230,   253,   279,   307,   337,   371,   408,   449,   494,
    544,   598,   658,   724,   796,   876,   963,   1060,  1166,  1282,  1411,  1552,  1707,  1878,  2066,
    2272,  2499,  2749,  3024,  3327,  3660,  4026,  4428,  4871,  5358,  5894,  6484,  7132,  7845,  8630,
    9493,  10442, 11487, 12635, 13899, 15289, 16818, 18500, 20350, 22385, 24623, 27086, 29794, 32767};
const int8_t kIndexChange[16] = {-1, -1, -1, -1, 2, 4, 6, 8, -1, -1, -1, -1, 2, 4, 6, 8};
constexpr int kMaxIndex = 88;

struct LImaState
{
    int32_t nPredictor = 0;
    int32_t nIndex = 0;

    int16_t Decode(uint32_t nCode)
    {
        const int32_t nStep = kStep[nIndex];
        int32_t nDiff = nStep >> 3;
        if (nCode & 4)
            nDiff += nStep;
        if (nCode & 2)
            nDiff += nStep >> 1;
        if (nCode & 1)
            nDiff += nStep >> 2;
        nPredictor = LClamp16((nCode & 8) ? nPredictor - nDiff : nPredictor + nDiff);
        nIndex = std::clamp(nIndex + kIndexChange[nCode], 0, kMaxIndex);
        return static_cast<int16_t>(nPredictor);
    }

    // The prediction decoders that multiply instead of adding shifts would make, one code on.
    int32_t PredictByProduct(uint32_t nCode) const
    {
        const int32_t nDiff = ((2 * static_cast<int32_t>(nCode & 7) + 1) * kStep[nIndex]) >> 3;
        return LClamp16((nCode & 8) ? nPredictor - nDiff : nPredictor + nDiff);
    }
};

// What the encoder keeps per channel: our decoder's state and the predictor of a decoder that
// multiplies. Both see the same codes and so the same step index.
struct LImaEncodeState
{
    LImaState ours;
    int32_t nOtherPredictor = 0;

    // The nearest code, unless a neighbour of it errs about as little while keeping the other
    // decoder closer to ours.
    uint32_t Encode(int32_t nSample)
    {
        const uint32_t nBest = Nearest(nSample);
        uint32_t nChosen = nBest;
        int64_t nLeast = INT64_MAX;
        for (uint32_t nCode : {nBest, Neighbour(nBest, -1), Neighbour(nBest, 1)}) {
            LImaState s = ours;
            const int32_t nOther = LImaState{nOtherPredictor, ours.nIndex}.PredictByProduct(nCode);
            const int64_t nOurs = s.Decode(nCode);
            const int64_t nCost = (nSample - nOurs) * (nSample - nOurs) + kDriftWeight * (nOurs - nOther) * (nOurs - nOther);
            if (nCost < nLeast) {
                nLeast = nCost;
                nChosen = nCode;
            }
        }
        nOtherPredictor = LImaState{nOtherPredictor, ours.nIndex}.PredictByProduct(nChosen);
        ours.Decode(nChosen);
        return nChosen;
    }

private:
    static constexpr int64_t kDriftWeight = 2;

    uint32_t Nearest(int32_t nSample) const
    {
        int32_t nDiff = nSample - ours.nPredictor;
        uint32_t nCode = 0;
        if (nDiff < 0) {
            nCode = 8;
            nDiff = -nDiff;
        }
        int32_t nStep = kStep[ours.nIndex];
        for (uint32_t nBit = 4; nBit; nBit >>= 1, nStep >>= 1) {
            if (nDiff >= nStep) {
                nCode |= nBit;
                nDiff -= nStep;
            }
        }
        return nCode;
    }
    // One magnitude up or down with the same sign; the same code at the ends of the range.
    static uint32_t Neighbour(uint32_t nCode, int nBy)
    {
        const int nMagnitude = static_cast<int>(nCode & 7) + nBy;
        return nMagnitude < 0 || nMagnitude > 7 ? nCode : (nCode & 8) | static_cast<uint32_t>(nMagnitude);
    }
};

// Reads the headers; returns the first frame's samples through pOut.
void StartBlock(const uint8_t* pIn, uint32_t nChans, LImaState* pState, int16_t* pOut)
{
    for (uint32_t c = 0; c < nChans; ++c) {
        pState[c].nPredictor = LGetS16(pIn + 4 * c);
        pState[c].nIndex = std::min<int32_t>(pIn[4 * c + 2], kMaxIndex);
        pOut[c] = static_cast<int16_t>(pState[c].nPredictor);
    }
}

// Decodes nGroups groups of 8 frames that follow the headers.
void DecodeGroups(const uint8_t* pIn, uint32_t nGroups, uint32_t nChans, LImaState* pState, int16_t* pOut)
{
    if (nChans == 1) {
        LImaState& s = pState[0];
        for (uint32_t i = 0; i < 4 * nGroups; ++i) {
            const uint32_t b = pIn[i];
            pOut[2 * i] = s.Decode(b & 15);
            pOut[2 * i + 1] = s.Decode(b >> 4);
        }
        return;
    }
    for (uint32_t g = 0; g < nGroups; ++g) {
        for (uint32_t c = 0; c < nChans; ++c, pIn += 4) {
            int16_t* pFrame = pOut + (8 * g) * nChans + c;
            for (uint32_t k = 0; k < 4; ++k) {
                pFrame[(2 * k) * nChans] = pState[c].Decode(pIn[k] & 15);
                pFrame[(2 * k + 1) * nChans] = pState[c].Decode(pIn[k] >> 4);
            }
        }
    }
}

class LImaDecoder : public LCodecDecoder
{
public:
    explicit LImaDecoder(const LCodecShape& shape) : shape(shape) {}

    void DecodeBlocks(const uint8_t* pIn, uint32_t nBlocks, int16_t* pOut) override
    {
        const uint32_t nGroups = (shape.nBlockFrames - 1) / 8;
        for (uint32_t i = 0; i < nBlocks; ++i) {
            DecodeOne(pIn, nGroups, pOut);
            pIn += shape.nBlockBytes;
            pOut += shape.nBlockFrames * shape.nChans;
        }
    }
    uint32_t PartFrames(uint32_t nBytes) const override { return LCodecIMA::FramesIn(nBytes, shape.nChans); }
    void DecodePart(const uint8_t* pIn, uint32_t nBytes, int16_t* pOut) override
    {
        if (PartFrames(nBytes))
            DecodeOne(pIn, (PartFrames(nBytes) - 1) / 8, pOut);
    }

private:
    void DecodeOne(const uint8_t* pIn, uint32_t nGroups, int16_t* pOut)
    {
        StartBlock(pIn, shape.nChans, state, pOut);
        DecodeGroups(pIn + 4 * shape.nChans, nGroups, shape.nChans, state, pOut + shape.nChans);
    }

    LCodecShape shape;
    LImaState state[kMaxChannels];
};

class LImaEncoder : public LCodecEncoder
{
public:
    explicit LImaEncoder(const LCodecShape& shape) : LCodecEncoder(shape) {}

    void Reset() override
    {
        for (LImaEncodeState& s : state)
            s = LImaEncodeState();
    }

    void EncodeBlocks(const int16_t* pIn, uint32_t nBlocks, uint8_t* pOut) override
    {
        const uint32_t nChans = shape.nChans;
        const uint32_t nGroups = (shape.nBlockFrames - 1) / 8;
        for (uint32_t i = 0; i < nBlocks; ++i) {
            // The header holds the first frame exactly and the index the last block ended on.
            for (uint32_t c = 0; c < nChans; ++c) {
                state[c].ours.nPredictor = pIn[c];
                state[c].nOtherPredictor = pIn[c];
                LPut16(pOut + 4 * c, static_cast<uint16_t>(pIn[c]));
                pOut[4 * c + 2] = static_cast<uint8_t>(state[c].ours.nIndex);
                pOut[4 * c + 3] = 0;
            }
            uint8_t* pData = pOut + 4 * nChans;
            for (uint32_t g = 0; g < nGroups; ++g) {
                for (uint32_t c = 0; c < nChans; ++c, pData += 4) {
                    const int16_t* pFrame = pIn + (1 + 8 * g) * nChans + c;
                    for (uint32_t k = 0; k < 4; ++k) {
                        const uint32_t nLow = state[c].Encode(pFrame[(2 * k) * nChans]);
                        const uint32_t nHigh = state[c].Encode(pFrame[(2 * k + 1) * nChans]);
                        pData[k] = static_cast<uint8_t>(nLow | (nHigh << 4));
                    }
                }
            }
            pIn += shape.nBlockFrames * nChans;
            pOut += shape.nBlockBytes;
        }
    }

    // A short last block keeps only the groups its frames need.
    uint32_t EncodePart(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut) override
    {
        if (nFrames == 0)
            return 0;
        LCodecEncoder::EncodePart(pIn, nFrames, pOut);
        const uint32_t nGroups = (nFrames - 1 + 7) / 8;
        return 4 * shape.nChans * (1 + nGroups);
    }

private:
    LImaEncodeState state[kMaxChannels];
};

} // namespace

uint32_t LCodecIMA::FramesIn(uint32_t nBytes, uint32_t nChans)
{
    if (nChans == 0 || nBytes < 4 * nChans)
        return 0;
    return 1 + (nBytes - 4 * nChans) / (4 * nChans) * 8;
}

bool LCodecIMA::TakesBlock(uint32_t nBytes, uint32_t nChans) const
{
    return nBytes % (4 * nChans) == 0 && nBytes > 4 * nChans;
}

std::vector<uint8_t> LCodecIMA::RecordExtra(uint32_t nFrames) const
{
    std::vector<uint8_t> vExtra(2);
    LPut16(vExtra.data(), nFrames);
    return vExtra;
}

std::unique_ptr<LCodecDecoder> LCodecIMA::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LImaDecoder>(shape);
}

std::unique_ptr<LCodecEncoder> LCodecIMA::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LImaEncoder>(shape);
}


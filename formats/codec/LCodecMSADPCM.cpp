#include "formats/codec/LCodecMSADPCM.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "formats/codec/LCodecBytes.h"

namespace {
constexpr uint32_t kMaxChannels = LCodecAdpcm::kMaxChannels;

constexpr int kStdCoefs = 7;
const int16_t kCoef1[kStdCoefs] = {256, 512, 0, 192, 240, 460, 392};
const int16_t kCoef2[kStdCoefs] = {0, -256, 0, 64, 0, -208, -232};
const int32_t kAdapt[16] = {230, 230, 230, 230, 307, 409, 512, 614, 768, 614, 512, 409, 307, 230, 230, 230};
constexpr int32_t kMinDelta = 16;
// How much a sample of drift between dividing and shifting decoders counts against a predictor.
constexpr int64_t kDriftWeight = 4;
// Keeps code x step and the next step within 32 bits whatever a damaged header says.
constexpr int32_t kMaxDelta = INT_MAX / 768;

struct LCoefs
{
    int32_t n = kStdCoefs;
    int32_t c1[256];
    int32_t c2[256];
};

// The record's own table when it has a usable one, else the standard seven pairs.
void ReadCoefs(const LWaveFormatRecord& record, LCoefs& coefs)
{
    coefs.n = kStdCoefs;
    for (int i = 0; i < kStdCoefs; ++i) {
        coefs.c1[i] = kCoef1[i];
        coefs.c2[i] = kCoef2[i];
    }
    const uint8_t* p = record.Extra();
    const size_t nExtra = record.ExtraBytes();
    if (!p || nExtra < 4)
        return;
    const uint32_t nCoefs = LGet16(p + 2);
    if (nCoefs == 0 || nCoefs > 256 || nExtra < 4 + 4 * size_t{nCoefs})
        return;
    coefs.n = static_cast<int32_t>(nCoefs);
    for (uint32_t i = 0; i < nCoefs; ++i) {
        coefs.c1[i] = LGetS16(p + 4 + 4 * i);
        coefs.c2[i] = LGetS16(p + 6 + 4 * i);
    }
}

struct LMsState
{
    int32_t c1 = 256, c2 = 0;
    int32_t nDelta = kMinDelta;
    int32_t s1 = 0, s2 = 0; // the last sample and the one before

    // In 64 bits: a record's own coefficients may be any 16-bit values.
    int32_t Predict() const { return static_cast<int32_t>((int64_t{s1} * c1 + int64_t{s2} * c2) / 256); }
    // The prediction of decoders that shift instead of dividing (rounding toward minus infinity).
    int32_t PredictByShift() const { return static_cast<int32_t>((int64_t{s1} * c1 + int64_t{s2} * c2) >> 8); }

    void Take(int32_t nCode, int32_t nPredicted)
    {
        const int32_t nSigned = nCode >= 8 ? nCode - 16 : nCode;
        s2 = s1;
        s1 = LClamp16(nPredicted + nSigned * nDelta);
        nDelta = std::min((kAdapt[nCode] * nDelta) >> 8, kMaxDelta);
        if (nDelta < kMinDelta)
            nDelta = kMinDelta;
    }

    int16_t Decode(int32_t nCode)
    {
        Take(nCode, Predict());
        return static_cast<int16_t>(s1);
    }

    // The code whose step lands nearest the sample.
    int32_t Encode(int32_t nSample)
    {
        const int32_t nPredicted = Predict();
        const int32_t nError = nSample - nPredicted;
        int32_t nSigned = (nError >= 0 ? nError + nDelta / 2 : nError - nDelta / 2) / nDelta;
        nSigned = std::clamp(nSigned, -8, 7);
        const int32_t nCode = nSigned & 15;
        Take(nCode, nPredicted);
        return nCode;
    }
};

// The header is laid out field by field across the channels.
uint32_t ReadHeader(const uint8_t* pIn, uint32_t nChans, const LCoefs& coefs, LMsState* pState, int16_t* pOut)
{
    for (uint32_t c = 0; c < nChans; ++c) {
        const uint32_t nPred = pIn[c] < coefs.n ? pIn[c] : 0;
        LMsState& s = pState[c];
        s.c1 = coefs.c1[nPred];
        s.c2 = coefs.c2[nPred];
        s.nDelta = LGetS16(pIn + nChans + 2 * c);
        s.s1 = LGetS16(pIn + 3 * nChans + 2 * c);
        s.s2 = LGetS16(pIn + 5 * nChans + 2 * c);
        pOut[c] = static_cast<int16_t>(s.s2);
        pOut[nChans + c] = static_cast<int16_t>(s.s1);
    }
    return 7 * nChans;
}

class LMsDecoder : public LCodecDecoder
{
public:
    LMsDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) : shape(shape) { ReadCoefs(record, coefs); }

    void DecodeBlocks(const uint8_t* pIn, uint32_t nBlocks, int16_t* pOut) override
    {
        for (uint32_t i = 0; i < nBlocks; ++i) {
            DecodeOne(pIn, shape.nBlockFrames, pOut);
            pIn += shape.nBlockBytes;
            pOut += shape.nBlockFrames * shape.nChans;
        }
    }
    uint32_t PartFrames(uint32_t nBytes) const override { return LCodecMSADPCM::FramesIn(nBytes, shape.nChans); }
    void DecodePart(const uint8_t* pIn, uint32_t nBytes, int16_t* pOut) override
    {
        if (const uint32_t nFrames = PartFrames(nBytes))
            DecodeOne(pIn, nFrames, pOut);
    }

private:
    void DecodeOne(const uint8_t* pIn, uint32_t nFrames, int16_t* pOut)
    {
        const uint32_t nChans = shape.nChans;
        pIn += ReadHeader(pIn, nChans, coefs, state, pOut);
        pOut += 2 * nChans;
        // Codes run across channels in frame order, two to a byte, high nibble first.
        const uint32_t nCodes = (nFrames - 2) * nChans;
        if (nChans == 1) {
            LMsState& s = state[0];
            for (uint32_t i = 0; i < nCodes / 2; ++i) {
                pOut[2 * i] = s.Decode(pIn[i] >> 4);
                pOut[2 * i + 1] = s.Decode(pIn[i] & 15);
            }
            return;
        }
        for (uint32_t i = 0; i < nCodes / 2; ++i) {
            pOut[2 * i] = state[0].Decode(pIn[i] >> 4);
            pOut[2 * i + 1] = state[1].Decode(pIn[i] & 15);
        }
    }

    LCodecShape shape;
    LCoefs coefs;
    LMsState state[kMaxChannels];
};

class LMsEncoder : public LCodecEncoder
{
public:
    LMsEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) : LCodecEncoder(shape)
    {
        ReadCoefs(record, coefs);
    }

    void EncodeBlocks(const int16_t* pIn, uint32_t nBlocks, uint8_t* pOut) override
    {
        for (uint32_t i = 0; i < nBlocks; ++i) {
            EncodeOne(pIn, pOut);
            pIn += shape.nBlockFrames * shape.nChans;
            pOut += shape.nBlockBytes;
        }
    }

    // A short last block keeps only the bytes its frames need (at least the two header frames).
    uint32_t EncodePart(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut) override
    {
        if (nFrames == 0)
            return 0;
        LCodecEncoder::EncodePart(pIn, nFrames, pOut);
        const uint32_t nCodes = (std::max<uint32_t>(nFrames, 2) - 2) * shape.nChans;
        return 7 * shape.nChans + (nCodes + 1) / 2;
    }

private:
    // Each channel tries every predictor over the whole block and keeps the one that errs least.
    void EncodeOne(const int16_t* pIn, uint8_t* pOut)
    {
        const uint32_t nChans = shape.nChans;
        for (uint32_t c = 0; c < nChans; ++c) {
            const int32_t nDelta = StartDelta(pIn, c);
            int64_t nBest = INT64_MAX;
            int32_t nBestPred = 0;
            for (int32_t p = 0; p < coefs.n && p < kStdCoefs; ++p) {
                const int64_t nErr = Trial(pIn, c, p, nDelta, nullptr);
                if (nErr < nBest) {
                    nBest = nErr;
                    nBestPred = p;
                }
            }
            pOut[c] = static_cast<uint8_t>(nBestPred);
            LPut16(pOut + nChans + 2 * c, static_cast<uint16_t>(nDelta));
            LPut16(pOut + 3 * nChans + 2 * c, static_cast<uint16_t>(pIn[nChans + c]));
            LPut16(pOut + 5 * nChans + 2 * c, static_cast<uint16_t>(pIn[c]));
            Trial(pIn, c, nBestPred, nDelta, pOut + 7 * nChans);
        }
    }

    // The first step follows how fast the block starts to move.
    int32_t StartDelta(const int16_t* pIn, uint32_t c) const
    {
        const uint32_t nChans = shape.nChans;
        const uint32_t nLook = std::min<uint32_t>(shape.nBlockFrames, 10);
        int32_t nSum = 0;
        for (uint32_t i = 2; i < nLook; ++i)
            nSum += std::abs(pIn[i * nChans + c] - pIn[(i - 1) * nChans + c]);
        const int32_t nAvg = nLook > 2 ? nSum / static_cast<int32_t>(nLook - 2) : 0;
        return std::clamp(nAvg / 2, kMinDelta, 32767);
    }

    // Encodes channel c with predictor p; writes its nibbles into pCodes when given. Returns the
    // sum of squared errors, counting also how far a decoder that shifts instead of dividing
    // would drift from ours: among predictors that do about as well, the ones that keep every
    // reader of the file together win.
    int64_t Trial(const int16_t* pIn, uint32_t c, int32_t p, int32_t nDelta, uint8_t* pCodes)
    {
        const uint32_t nChans = shape.nChans;
        LMsState s;
        s.c1 = coefs.c1[p];
        s.c2 = coefs.c2[p];
        s.nDelta = nDelta;
        s.s1 = pIn[nChans + c];
        s.s2 = pIn[c];
        LMsState other = s;
        int64_t nErr = 0;
        for (uint32_t i = 2; i < shape.nBlockFrames; ++i) {
            const int32_t x = pIn[i * nChans + c];
            const int32_t nCode = s.Encode(x);
            other.Take(nCode, other.PredictByShift());
            const int64_t d = x - s.s1;
            const int64_t nDrift = s.s1 - other.s1;
            nErr += d * d + kDriftWeight * nDrift * nDrift;
            if (pCodes) {
                const uint32_t nAt = (i - 2) * nChans + c; // position in the code stream
                uint8_t& b = pCodes[nAt / 2];
                b = (nAt & 1) ? static_cast<uint8_t>((b & 0xF0) | nCode) : static_cast<uint8_t>((b & 0x0F) | (nCode << 4));
            }
        }
        return nErr;
    }

    LCoefs coefs;
};

} // namespace

uint32_t LCodecMSADPCM::FramesIn(uint32_t nBytes, uint32_t nChans)
{
    if (nChans == 0 || nBytes < 7 * nChans)
        return 0;
    return 2 + (nBytes - 7 * nChans) * 2 / nChans;
}

bool LCodecMSADPCM::TakesBlock(uint32_t nBytes, uint32_t nChans) const
{
    return nBytes >= 7 * nChans + 1;
}

std::vector<uint8_t> LCodecMSADPCM::RecordExtra(uint32_t nFrames) const
{
    std::vector<uint8_t> vExtra(4 + 4 * kStdCoefs);
    LPut16(vExtra.data(), nFrames);
    LPut16(vExtra.data() + 2, kStdCoefs);
    for (int i = 0; i < kStdCoefs; ++i) {
        LPut16(vExtra.data() + 4 + 4 * i, static_cast<uint16_t>(kCoef1[i]));
        LPut16(vExtra.data() + 6 + 4 * i, static_cast<uint16_t>(kCoef2[i]));
    }
    return vExtra;
}

std::unique_ptr<LCodecDecoder> LCodecMSADPCM::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LMsDecoder>(record, shape);
}

std::unique_ptr<LCodecEncoder> LCodecMSADPCM::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LMsEncoder>(record, shape);
}


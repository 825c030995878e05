#include "dsp/LSRCNoiseGates.h"

#include <algorithm>
#include <cmath>

#include "core/LFixed.h"
#include "core/LTrace.h"
#include "dsp/LDecibelTable.h"

namespace {

constexpr int64_t kUnity = 1 << 16; // band gains carry 16 fractional bits
// A band is open when its peak times its threshold reaches this: the gate level taken
// against 16-bit full scale.
constexpr int64_t kOpenProduct = static_cast<int64_t>(kFullScale16) << 16;

} // namespace

struct LSRCNoiseGates::Impl
{
    int32_t nBlock = 0;
    uint8_t nChans = 1;
    std::array<int32_t, kSections> anCoef{};
    std::array<int64_t, kBands> anThreshold{};
    // Low-pass memories per channel and section, 8 fractional bits.
    std::vector<int64_t> vLowPass;
    // Band-split samples of the block being output and of the next one:
    // [(frame x channels + channel) x bands + band].
    std::vector<int32_t> vCurrent, vNext;
    std::vector<int32_t> vRead;
    std::array<bool, kBands> abOpenCurrent{}, abOpenNext{};
    // Band gains at the start of the current block and at its end; the running gain in 32 fractional bits.
    std::array<int64_t, kBands> anGainStart{}, anGainEnd{}, anGain{}, anStep{};
    int32_t nOutPos = 0;
    bool bRestart = true;

    void Split(std::vector<int32_t>& vBands, std::array<bool, kBands>& abOpen);
    void PlanBlock();
    void Restart(LSoundSourceBase* pIn);
    void Advance(LSoundSourceBase* pIn);
    void Mix(int32_t* pOut, int32_t nFrames);
};

// Splits vRead into bands, one-pole section by section: the bands sum back to the input exactly.
void LSRCNoiseGates::Impl::Split(std::vector<int32_t>& vBands, std::array<bool, kBands>& abOpen)
{
    std::array<int64_t, kBands> anPeak{};
    for (int32_t i = 0; i < nBlock; ++i) {
        for (uint8_t c = 0; c < nChans; ++c) {
            const int64_t x = vRead[static_cast<size_t>(i) * nChans + c];
            int64_t* pLow = &vLowPass[static_cast<size_t>(c) * kSections];
            int32_t* pBand = &vBands[(static_cast<size_t>(i) * nChans + c) * kBands];
            int64_t nBelow = 0;
            for (int32_t k = 0; k < kSections; ++k) {
                pLow[k] += ((x * 256 - pLow[k]) * anCoef[k]) / 256;
                const int64_t nLow = pLow[k] / 256;
                pBand[k] = static_cast<int32_t>(nLow - nBelow);
                nBelow = nLow;
            }
            pBand[kSections] = static_cast<int32_t>(x - nBelow);
            for (int32_t b = 0; b < kBands; ++b)
                anPeak[b] = std::max<int64_t>(anPeak[b], std::abs(static_cast<int64_t>(pBand[b])));
        }
    }
    for (int32_t b = 0; b < kBands; ++b)
        abOpen[b] = anPeak[b] * anThreshold[b] >= kOpenProduct;
}

// A band opens fully by the end of a block that comes before signal (look-ahead), stays open
// through a block with signal, and closes over two blocks after it.
void LSRCNoiseGates::Impl::PlanBlock()
{
    for (int32_t b = 0; b < kBands; ++b) {
        anGainStart[b] = anGainEnd[b];
        if (abOpenNext[b] || abOpenCurrent[b])
            anGainEnd[b] = kUnity;
        else
            anGainEnd[b] = std::max<int64_t>(0, anGainStart[b] - kUnity / 2);
        anGain[b] = anGainStart[b] << 16;
        anStep[b] = ((anGainEnd[b] - anGainStart[b]) << 16) / nBlock;
    }
    nOutPos = 0;
}

void LSRCNoiseGates::Impl::Restart(LSoundSourceBase* pIn)
{
    std::fill(vLowPass.begin(), vLowPass.end(), 0);
    pIn->Read(vRead.data(), nBlock);
    Split(vCurrent, abOpenCurrent);
    pIn->Read(vRead.data(), nBlock);
    Split(vNext, abOpenNext);
    for (int32_t b = 0; b < kBands; ++b)
        anGainEnd[b] = abOpenCurrent[b] ? kUnity : 0;
    PlanBlock();
    bRestart = false;
}

void LSRCNoiseGates::Impl::Advance(LSoundSourceBase* pIn)
{
    vCurrent.swap(vNext);
    abOpenCurrent = abOpenNext;
    pIn->Read(vRead.data(), nBlock);
    Split(vNext, abOpenNext);
    PlanBlock();
}

void LSRCNoiseGates::Impl::Mix(int32_t* pOut, int32_t nFrames)
{
    for (int32_t i = 0; i < nFrames; ++i, ++nOutPos) {
        const int32_t* pBand = &vCurrent[static_cast<size_t>(nOutPos) * nChans * kBands];
        std::array<int64_t, kBands> anNow;
        const bool bLast = nOutPos == nBlock - 1;
        for (int32_t b = 0; b < kBands; ++b) {
            anGain[b] += anStep[b];
            anNow[b] = bLast ? anGainEnd[b] : anGain[b] >> 16;
        }
        for (uint8_t c = 0; c < nChans; ++c, pBand += kBands) {
            int64_t nSum = 0;
            for (int32_t b = 0; b < kBands; ++b)
                nSum += (pBand[b] * anNow[b]) >> 16;
            *pOut++ = LWrapToInt32(nSum);
        }
    }
}

LSRCNoiseGates::LSRCNoiseGates(LSoundSourceBase* pIn, int32_t nGateLevelDb)
    : LSRCBlockOutput(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn)
{
    const int8_t n = static_cast<int8_t>(std::clamp(nGateLevelDb, -128, 127));
    Init({n, n, n, n});
}

LSRCNoiseGates::LSRCNoiseGates(LSoundSourceBase* pIn, const std::array<int8_t, kSections>& anLevelsDb)
    : LSRCBlockOutput(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn)
{
    Init(anLevelsDb);
}

LSRCNoiseGates::~LSRCNoiseGates() = default;

void LSRCNoiseGates::Init(const std::array<int8_t, kSections>& anLevelsDb)
{
    if (pInput->IsError()) {
        LTRACE("LSRCNoiseGates::LSRCNoiseGates input error");
        SetError();
    }
    sPosition = pInput->GetPosition();
    pImpl = std::make_unique<Impl>();
    Impl& im = *pImpl;
    im.nBlock = BlockFrames(nSampleRate);
    im.nChans = nChans;
    im.anCoef = Coefficients(nSampleRate);
    im.anThreshold[0] = Threshold(anLevelsDb[0]);
    for (int32_t k = 0; k < kSections; ++k)
        im.anThreshold[k + 1] = Threshold(anLevelsDb[k]);
    const size_t nSamples = static_cast<size_t>(im.nBlock) * nChans;
    im.vLowPass.assign(static_cast<size_t>(nChans) * kSections, 0);
    im.vCurrent.assign(nSamples * kBands, 0);
    im.vNext.assign(nSamples * kBands, 0);
    im.vRead.assign(nSamples, 0);
}

int32_t LSRCNoiseGates::GetBlockFrames() const
{
    return pImpl->nBlock;
}

void LSRCNoiseGates::BeforeRead()
{
    if (pImpl->bRestart)
        pImpl->Restart(pInput.Get());
}

int32_t LSRCNoiseGates::FramesLeftInBlock() const
{
    return pImpl->nBlock - pImpl->nOutPos;
}

void LSRCNoiseGates::NextBlock()
{
    pImpl->Advance(pInput.Get());
}

void LSRCNoiseGates::HandOut(int32_t* pOut, int32_t nFrames)
{
    pImpl->Mix(pOut, nFrames);
}

void LSRCNoiseGates::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    pInput->SetPosition(sNewPosition);
    pImpl->bRestart = true;
}

std::array<int32_t, LSRCNoiseGates::kSections> LSRCNoiseGates::Coefficients(int32_t nRate)
{
    static constexpr double kCorners[kSections] = {314.15926535, 2513.2741228, 6911.5038377, 16336.2817982};
    std::array<int32_t, kSections> a{};
    if (nRate < 1)
        return a;
    for (int32_t i = 0; i < kSections; ++i)
        a[i] = static_cast<int32_t>(std::lround((1.0 - std::exp(-kCorners[i] / nRate)) * 256.0));
    return a;
}

int64_t LSRCNoiseGates::Threshold(int8_t nLevelDb)
{
    const double f = static_cast<double>(LDecibelTable::Factor(nLevelDb));
    return static_cast<int64_t>(8589934592.0 / (f * 5.9604645e-8 * 131072.0));
}

int32_t LSRCNoiseGates::BlockFrames(int32_t nRate)
{
    return std::clamp(nRate / 30, kMinBlockFrames, kMaxBlockFrames);
}

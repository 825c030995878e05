#include "dsp/LSRCNoiseGates.h"

#include <algorithm>
#include <cmath>

#include "core/LTrace.h"
#include "dsp/LDecibelTable.h"

struct LSRCNoiseGates::Impl
{
};

LSRCNoiseGates::LSRCNoiseGates(LSoundSourceBase* pIn, int32_t nGateLevelDb)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn)
{
    const int8_t n = static_cast<int8_t>(std::clamp(nGateLevelDb, -128, 127));
    Init({n, n, n, n});
}

LSRCNoiseGates::LSRCNoiseGates(LSoundSourceBase* pIn, const std::array<int8_t, kSections>& anLevelsDb)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn)
{
    Init(anLevelsDb);
}

LSRCNoiseGates::~LSRCNoiseGates()
{
    delete pImpl;
}

void LSRCNoiseGates::Init(const std::array<int8_t, kSections>& anLevelsDb)
{
    if (pInput->IsError())
        SetError();
    pImpl = new Impl;
}

void LSRCNoiseGates::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
    sPosition += nFrames;
}

void LSRCNoiseGates::SetPosition(int32_t sNewPosition)
{
    sPosition = sNewPosition;
    pInput->SetPosition(sNewPosition);
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

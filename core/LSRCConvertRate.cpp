#include "core/LSRCConvertRate.h"

#include "core/LTrace.h"

// Interim: nearest-frame resampling. The windowed-sinc interpolator replaces this.
struct LSRCConvertRate::State
{
    int32_t sPosition = 0;
    std::vector<int32_t> vFrame;
};

LSRCConvertRate::LSRCConvertRate(LSoundSourceBase* pIn, int32_t nTargetRate)
    : LSoundSourceBase(nTargetRate < 1 ? 44100 : nTargetRate, pIn->GetChannels(),
                       pIn->GetMaxAmplitude() <= 0x100000 ? pIn->GetMaxAmplitude() * 2 : pIn->GetMaxAmplitude()),
      pInput(pIn), pState(new State)
{
    if (nTargetRate < 1 || pIn->IsError())
        SetError();
    pState->vFrame.resize(pIn->GetChannels());
}

LSRCConvertRate::~LSRCConvertRate()
{
    delete pState;
}

void LSRCConvertRate::Read(int32_t* pBuffer, int32_t nFrames)
{
    for (int32_t i = 0; i < nFrames; ++i) {
        int64_t sIn = static_cast<int64_t>(pState->sPosition) * pInput->GetSampleRate() / nSampleRate;
        pInput->SetPosition(static_cast<int32_t>(sIn));
        pInput->Read(pState->vFrame.data(), 1);
        for (uint8_t c = 0; c < nChans; ++c)
            pBuffer[i * nChans + c] = pState->vFrame[c];
        ++pState->sPosition;
    }
}

int32_t LSRCConvertRate::GetPosition()
{
    return pState->sPosition;
}

int32_t LSRCConvertRate::GetLength()
{
    return static_cast<int32_t>(static_cast<int64_t>(pInput->GetLength()) * nSampleRate / pInput->GetSampleRate());
}

void LSRCConvertRate::SetPosition(int32_t sPosition)
{
    pState->sPosition = sPosition;
}

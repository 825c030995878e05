#include "dsp/LSRCEq.h"

#include <cmath>

#include "core/LTrace.h"

struct LSRCEq::Impl
{
};

LSRCEq::LSRCEq(LSoundSourceBase* pIn, const LPointList& points)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      pImpl(std::make_unique<Impl>())
{
    if (pIn->IsError())
        SetError();
    if (nChans > 2) {
        LTRACE("LSRCEq::LSRCEq %s", kMsgTooManyChannels);
        SetError();
    }
}

LSRCEq::~LSRCEq() = default;

void LSRCEq::Read(int32_t* pBuffer, int32_t nFrames)
{
    pInput->Read(pBuffer, nFrames);
}

int32_t LSRCEq::GetPosition()
{
    return pInput->GetPosition();
}

void LSRCEq::SetPosition(int32_t sPosition)
{
    pInput->SetPosition(sPosition);
}

double LSRCEq::CurveDb(const LPointList& points, double fHz)
{
    return 0.0;
}

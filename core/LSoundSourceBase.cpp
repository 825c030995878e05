#include "core/LSoundSourceBase.h"

#include <cstring>

#include "core/LSoundSinkBase.h"
#include "core/LTrace.h"

LSoundSourceBase::LSoundSourceBase(int32_t nRate, uint8_t nChannels, int32_t nMax)
    : nSampleRate(nRate), nMaxAmplitude(nMax), nChans(nChannels)
{
    if (nSampleRate < 1) {
        LTRACE("LSoundSourceBase::LSoundSourceBase SampleRate <= 0 ERROR");
        nSampleRate = 44100;
        SetError();
    }
    if (nChans == 0) {
        LTRACE("LSoundSourceBase::LSoundSourceBase nChans == 0 ERROR");
        nChans = 1;
        SetError();
    }
}

void LSoundSourceBase::SetSampleRate(int32_t nRate)
{
    if (nRate < 1) {
        LTRACE("LSoundSourceBase::SetSampleRate SampleRate <= 0 ERROR");
        nRate = 44100;
        SetError();
    }
    nSampleRate = nRate;
}

void LSoundSourceBase::SetChannels(uint8_t nNewChans)
{
    if (nNewChans == 0) {
        LTRACE("LSoundSourceBase::SetChannels nChans == 0 ERROR");
        nNewChans = 1;
        SetError();
    }
    nChans = nNewChans;
}

void LZeroFrames(int32_t* pBuffer, int32_t nFrames, uint8_t nChans)
{
    if (nFrames > 0)
        std::memset(pBuffer, 0, static_cast<size_t>(nFrames) * nChans * sizeof(int32_t));
}

void LSRCSilence::Read(int32_t* pBuffer, int32_t nFrames)
{
    LZeroFrames(pBuffer, nFrames, nChans);
}

LSoundSinkBase::LSoundSinkBase(int32_t nRate, uint8_t nChannels) : nSampleRate(nRate), nChans(nChannels)
{
    if (nChans == 0) {
        LTRACE("LSoundSinkBase::LSoundSinkBase nChans == 0");
        nChans = 1;
        SetError();
    }
}

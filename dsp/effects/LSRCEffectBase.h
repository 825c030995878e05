// The base of the in-place effect stages: a source over an input source that takes the input's
// rate, channels, amplitude and error latch, reads a block from it and transforms it in place.
#pragma once

#include "core/LEdCommands.h"
#include "core/LSoundSourceBase.h"

class LSRCEffectBase : public LSoundSourceBase
{
public:
    explicit LSRCEffectBase(LSoundSourceBase* pIn)
        : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn)
    {
        if (pIn->IsError())
            SetError();
    }

    int32_t GetPosition() override { return pInput->GetPosition(); }
    int32_t GetLength() override { return pInput->GetLength(); }

protected:
    LSoundSourcePtr pInput;
};

// Frames of t milliseconds at a rate: the editing commands' rule.
inline int32_t LMsToFrames(int32_t nMs, int32_t nRate)
{
    return LEdCommands::FramesOfMs(nMs, nRate);
}

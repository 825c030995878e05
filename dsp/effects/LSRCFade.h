// A straight-line fade over a stretch of its input: a fade-in rises from silence to unity
// across the stretch (silent before it), a fade-out falls from unity to silence (silent after).
// With no stretch given the fade spans the whole input.
#pragma once

#include "dsp/effects/LSRCEffectBase.h"

class LSRCFade : public LSRCEffectBase
{
public:
    enum Direction
    {
        FadeIn,
        FadeOut,
    };

    LSRCFade(LSoundSourceBase* pInput, Direction dir);
    LSRCFade(LSoundSourceBase* pInput, Direction dir, int32_t sFadeStart, int32_t nFadeFrames);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    void SetPosition(int32_t sPosition) override { pInput->SetPosition(sPosition); }

    // The 8.24 gain applied to frame s of the input.
    int32_t GainAt(int64_t s) const;

private:
    void ApplyRamp(int32_t* pBuffer, int32_t nFrames, int64_t sFrom);
    void ScaleFrame(int32_t* pFrame, int32_t g) const;

    Direction dir;
    int64_t sFadeStart;
    int64_t nFadeFrames;
};

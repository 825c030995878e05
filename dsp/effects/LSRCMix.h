// Mixes a clip into a base source: base + clip x volume. The base sets the length; a clip that
// ends early adds silence.
#pragma once

#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCMix : public LSoundSourceBase
{
public:
    // The clip must already have the base's rate and channel count.
    LSRCMix(LSoundSourceBase* pBase, LSoundSourceBase* pClip, int32_t nVolumePercent);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return pBase->GetPosition(); }
    int32_t GetLength() override { return pBase->GetLength(); }
    void SetPosition(int32_t sPosition) override;

private:
    LSoundSourcePtr pBase;
    LSoundSourcePtr pClip;
    std::vector<int32_t> vClip;
    int32_t nGain; // 8.24
};

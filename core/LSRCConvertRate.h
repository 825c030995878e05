// Sample-rate conversion: a windowed-sinc interpolator over another source.
#pragma once

#include <vector>

#include "core/LSoundSourceBase.h"

class LSRCConvertRate : public LSoundSourceBase
{
public:
    static constexpr int32_t kInputBlockFrames = 8224;
    static constexpr int32_t kHistoryFrames = 31;
    static constexpr int32_t kFilterLength = 63;

    // A target rate below 1 is replaced by 44100 and latches the error.
    LSRCConvertRate(LSoundSourceBase* pInput, int32_t nTargetRate);
    ~LSRCConvertRate() override;

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    int32_t GetLength() override;
    void SetPosition(int32_t sPosition) override;

private:
    struct State;
    LSoundSourcePtr pInput;
    State* pState;
};

// Graphic equalizer over a source: the gain curve is a point list of (frequency in Hz, gain in
// dB), joined by straight lines on a logarithmic frequency axis and flat beyond its ends. The
// curve becomes a linear-phase filter applied by fast convolution; the filter's delay is read
// ahead, so the output keeps the input's timing.
#pragma once

#include <cstdint>
#include <memory>

#include "core/LSoundSourceBase.h"
#include "dsp/LPointList.h"

class LSRCEq : public LSoundSourceBase
{
public:
    static constexpr const char* kMsgTooManyChannels = "Does not support more than 2 channels";

    // More than two channels, or a list that does not validate, latches the error.
    LSRCEq(LSoundSourceBase* pInput, const LPointList& points);
    ~LSRCEq() override;

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    int32_t GetLength() override { return pInput->GetLength(); }
    void SetPosition(int32_t sPosition) override;

    // The curve's gain in dB at a frequency; 0 dB for an empty list.
    static double CurveDb(const LPointList& points, double fHz);

private:
    struct Impl;
    LSoundSourcePtr pInput;
    std::unique_ptr<Impl> pImpl;
};

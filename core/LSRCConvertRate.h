// Sample-rate conversion: a band-limited (Kaiser-windowed sinc) polyphase interpolator over
// another source. Output frame n sits exactly at input time n x inRate / outRate: the filter
// looks ahead, so the converted stream is not delayed against its input.
#pragma once

#include <cstdint>
#include <memory>

#include "core/LSoundSourceBase.h"

class LSRCConvertRate : public LSoundSourceBase
{
public:
    // Frames read from the input per refill.
    static constexpr int32_t kInputBlockFrames = 8224;
    // Zeroed history in front of the first input frame, in frames of the base filter; the real
    // history is scaled with the kernel (see kKernelScale).
    static constexpr int32_t kHistoryFrames = 31;
    // Length constant of the base interpolation filter: 63 + 1 taps at the lower of the two rates.
    static constexpr int32_t kFilterLength = 63;
    // Windowed for 90 dB and more, the base filter needs a transition band a fifth of the band
    // wide; twice as long, its stopband begins at the new Nyquist frequency and its passband
    // still reaches 90 % of the band. When the rate goes down the kernel also stretches by the ratio.
    static constexpr int32_t kKernelScale = 2;

    // A target rate below 1 is replaced by 44100 and latches the error.
    LSRCConvertRate(LSoundSourceBase* pInput, int32_t nTargetRate);
    ~LSRCConvertRate() override;

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    // The input's length scaled to the new rate (rounded down).
    int32_t GetLength() override;
    int32_t GetLengthInFile() override;
    // Seeks the input and restarts the filter there with zeroed history.
    void SetPosition(int32_t sPosition) override;

private:
    int32_t AtOutputRate(int32_t nInputFrames) const;
    struct State;
    LSoundSourcePtr pInput;
    std::unique_ptr<State> pState;
};

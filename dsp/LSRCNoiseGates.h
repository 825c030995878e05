// Noise gate for noise reduction: splits each channel into frequency bands with one-pole
// sections and mutes each band in the blocks where it stays below its gate level, so steady
// hiss between passages disappears while each band opens again, ahead of time, when it carries
// signal. Gains glide over a block: the gate never clicks.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "dsp/LSRCBlockOutput.h"

class LSRCNoiseGates : public LSRCBlockOutput
{
public:
    static constexpr int32_t kSections = 4; // one-pole low-passes at 50, 400, 1100 and 2600 Hz
    static constexpr int32_t kBands = kSections + 1; // below 50 Hz, ..., above 2600 Hz
    static constexpr int32_t kMinBlockFrames = 20;
    static constexpr int32_t kMaxBlockFrames = 8192;

    // Every band gated at one level (dB of 16-bit full scale, as the noise-reduction setting).
    LSRCNoiseGates(LSoundSourceBase* pInput, int32_t nGateLevelDb);
    // A level per section's band: 50-400, 400-1100, 1100-2600 and above 2600 Hz; the band
    // below 50 Hz shares the first level.
    LSRCNoiseGates(LSoundSourceBase* pInput, const std::array<int8_t, kSections>& anLevelsDb);
    ~LSRCNoiseGates() override;
    int32_t GetBlockFrames() const;

    int32_t GetLength() override { return pInput->GetLength(); }
    void SetPosition(int32_t sNewPosition) override;

    // round((1 - e^(-c / rate)) x 256) for the four sections; all 0 for a rate below 1.
    static std::array<int32_t, kSections> Coefficients(int32_t nRate);
    // 8589934592 / (F x 2^-24 x 131072), F the 8.24 factor of the level: the bigger, the quieter the gate.
    static int64_t Threshold(int8_t nLevelDb);
    // rate / 30 frames, kept within 20..8192.
    static int32_t BlockFrames(int32_t nRate);

private:
    struct Impl;
    void Init(const std::array<int8_t, kSections>& anLevelsDb);
    void BeforeRead() override;
    int32_t FramesLeftInBlock() const override;
    void NextBlock() override;
    void HandOut(int32_t* pOut, int32_t nFrames) override;

    LSoundSourcePtr pInput;
    std::unique_ptr<Impl> pImpl;
};

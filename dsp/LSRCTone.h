// Test tones as a source: periodic waves, noise, touch-tone digits and a sweep, at a level in dB
// below full scale (the peak of one channel; 0 dB is the 16-bit full scale of the pipeline).
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "core/LSoundSourceBase.h"

struct LToneSettings
{
    enum Wave
    {
        Sine,
        Square,
        Triangle,
        Sawtooth,
        WhiteNoise,
        PinkNoise,
        Dtmf,
        Sweep,
    };
    Wave wave = Sine;
    double fHz = 440.0;
    double fToHz = 4000.0;  // where the sweep ends
    double fLevelDb = -6.0; // peak level, dB below full scale
    int32_t nLengthMs = 1000;
    int32_t nRate = 44100;
    uint8_t nChans = 1;
    std::string szDigits;   // touch-tone digits: 0-9, *, #, A-D

    // The wave's name as typed ("sine", "pink", "dtmf", ...); false for an unknown name.
    static bool WaveByName(const std::string& szName, Wave& wave);
    static const char* WaveName(Wave wave);
    // A reason when the settings cannot make a tone, else empty.
    std::string Check() const;
};

class LSRCTone : public LSoundSourceBase
{
public:
    // Settings that fail Check() latch the error.
    explicit LSRCTone(const LToneSettings& settings);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override;

    // The two frequencies of a touch-tone digit; false for a character that is not one.
    static bool DtmfPair(char cDigit, double& fLow, double& fHigh);

private:
    double Next();
    double Periodic(double fPhase, double fStep) const;

    LToneSettings settings;
    int32_t sLength = 0;
    int32_t sPosition = 0;
    double fAmplitude = 0;
    double fPhase = 0;
    double fPhase2 = 0;
    std::minstd_rand rng;
    static constexpr int kPinkRows = 16;
    double aPink[kPinkRows] = {};
    double fPinkSum = 0;
    uint32_t nPinkCounter = 0;
};

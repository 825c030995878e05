// How a spectrogram is computed and coloured: the window (size and shape), the frequency scale
// of the rows, the level range shown and the colour map. Kept under "Settings" like the
// display's other choices.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum LSpectroWindowFn : uint8_t
{
    SpectroHann = 0,
    SpectroHamming = 1,
    SpectroBlackmanHarris = 2,
    SpectroRectangular = 3,
};

enum LSpectroScale : uint8_t
{
    SpectroLinear = 0,
    SpectroLog = 1,
    SpectroMel = 2,
};

enum LSpectroColourMap : uint8_t
{
    SpectroColoursUniform = 0, // dark blue through green to yellow, lightness rising evenly
    SpectroColoursGrey = 1,
};

struct LSpectroSettings
{
    static constexpr int32_t kMinWindow = 256;
    static constexpr int32_t kMaxWindow = 8192;

    int32_t nWindow = 2048;
    LSpectroWindowFn eWindow = SpectroHann;
    LSpectroScale eScale = SpectroLog;
    int32_t nRangeDb = 100; // the levels shown: from -range to 0 dB (after the gain)
    int32_t nGainDb = 0;
    LSpectroColourMap eColours = SpectroColoursUniform;

    bool operator==(const LSpectroSettings&) const = default;

    // A power of two from kMinWindow to kMaxWindow.
    static bool IsValidWindow(int32_t n);
    // Out-of-range values are pulled back to the nearest valid ones.
    void Normalize();

    // The stored choices, and storing them (section "Settings", "Spectrogram..." values; whether
    // new file windows open as spectrograms is "SpectrogramView").
    static LSpectroSettings Load();
    void Store() const;

    // "hann", "hamming", "blackman-harris", "rectangular"; "linear", "log", "mel".
    static const char* WindowName(LSpectroWindowFn e);
    static const char* ScaleName(LSpectroScale e);
    static bool ParseWindow(const std::string& sz, LSpectroWindowFn& e);
    static bool ParseScale(const std::string& sz, LSpectroScale& e);
};

// The window's coefficients, nSize of them (periodic form, as spectra of frames want).
std::vector<double> LSpectroWindowTable(LSpectroWindowFn e, int32_t nSize);

// The spectrogram's colour maps as 256-entry tables, level byte 0 (the floor) to 255 (the top).
// The default map rises evenly in perceived lightness from dark blue-violet through teal and
// green to pale yellow, so equal steps in level look like equal steps; grey is the plain ramp.
#pragma once

#include <array>
#include <cstdint>

#include "dsp/LSpectroSettings.h"

struct LSpectroRgb
{
    uint8_t r, g, b;
};

using LSpectroPalette = std::array<LSpectroRgb, 256>;

const LSpectroPalette& LSpectroColours(LSpectroColourMap eMap);

// The byte of a level in dB: -range (after the gain) is 0, 0 dB and above are 255.
uint8_t LSpectroLevelByte(float fDb, const LSpectroSettings& settings);
// The level a byte stands for (the floor byte stands for everything at or below -range).
double LSpectroByteDb(uint8_t nByte, const LSpectroSettings& settings);

// The equalizer's and the envelope's curves, kept between runs in "equalizer.dat" and
// "envelope.dat" in the program's data folder. A file holds the point count and then each
// point's x and y, all 32-bit little-endian integers. A missing or damaged file gives the
// default curve, so a bad file never stops an effect.
#pragma once

#include <string>

#include "dsp/LPointList.h"

class LCurveFile
{
public:
    static constexpr const char* kEqualizerFile = "equalizer.dat";
    static constexpr const char* kEnvelopeFile = "envelope.dat";

    // Flat 0 dB from 20 Hz to 20 kHz.
    static LPointList DefaultEqualizer();
    // Level 100 % from start to end.
    static LPointList DefaultEnvelope();

    // In the program's data folder (LSettings::DataFolder).
    static std::string PathOf(const std::string& szName);

    // False, with the list untouched, when the file is missing, short or does not validate.
    static bool Load(const std::string& szPath, LPointList& list);
    // Replaces the file once the new one is whole, making its folder when missing; false with the
    // reason otherwise.
    static bool Save(const std::string& szPath, const LPointList& list, std::string* pszError = nullptr);
    // Reads a list from bytes (what Load does after reading the file).
    static bool Parse(const unsigned char* pBytes, size_t nBytes, LPointList& list);

    // The stored curve of an effect, or its default.
    static LPointList LoadEqualizer();
    static LPointList LoadEnvelope();
};

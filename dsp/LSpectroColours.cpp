#include "dsp/LSpectroColours.h"

#include <algorithm>
#include <cmath>

namespace {
// One sRGB channel from linear light.
uint8_t Encode(double f)
{
    f = std::clamp(f, 0.0, 1.0);
    const double s = f <= 0.0031308 ? 12.92 * f : 1.055 * std::pow(f, 1.0 / 2.4) - 0.055;
    return static_cast<uint8_t>(std::lround(s * 255.0));
}

// A colour of the Oklab space (lightness, and chroma at a hue angle) in sRGB.
LSpectroRgb FromOklch(double L, double C, double fHueDeg)
{
    const double h = fHueDeg * M_PI / 180.0;
    const double a = C * std::cos(h), b = C * std::sin(h);
    const double l = std::pow(L + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(L - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(L - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {Encode(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            Encode(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            Encode(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

LSpectroPalette MakeUniform()
{
    LSpectroPalette p{};
    for (int i = 0; i < 256; ++i) {
        const double t = i / 255.0;
        // Lightness climbs in a straight line; the hue turns from violet-blue to yellow while
        // the chroma swells in the middle, where the eye tells hues apart best.
        const double L = 0.20 + 0.75 * t;
        const double C = 0.09 + 0.07 * std::sin(M_PI * t);
        const double fHue = 290.0 - 180.0 * t;
        p[i] = FromOklch(L, C, fHue);
    }
    return p;
}

LSpectroPalette MakeGrey()
{
    LSpectroPalette p{};
    for (int i = 0; i < 256; ++i)
        p[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(i), static_cast<uint8_t>(i)};
    return p;
}
} // namespace

const LSpectroPalette& LSpectroColours(LSpectroColourMap eMap)
{
    static const LSpectroPalette uniform = MakeUniform();
    static const LSpectroPalette grey = MakeGrey();
    return eMap == SpectroColoursGrey ? grey : uniform;
}

uint8_t LSpectroLevelByte(float fDb, const LSpectroSettings& settings)
{
    const double fRange = std::max(settings.nRangeDb, 1);
    const double f = (fDb + settings.nGainDb + fRange) / fRange * 255.0;
    return static_cast<uint8_t>(std::clamp(std::lround(f), 0L, 255L));
}

double LSpectroByteDb(uint8_t nByte, const LSpectroSettings& settings)
{
    const double fRange = std::max(settings.nRangeDb, 1);
    return nByte * fRange / 255.0 - fRange - settings.nGainDb;
}

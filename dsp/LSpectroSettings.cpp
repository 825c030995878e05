#include "dsp/LSpectroSettings.h"

#include <algorithm>
#include <cmath>

#include "core/LSettings.h"

namespace {
const char kSection[] = "Settings";
const char* const kWindowNames[] = {"hann", "hamming", "blackman-harris", "rectangular"};
const char* const kScaleNames[] = {"linear", "log", "mel"};
} // namespace

bool LSpectroSettings::IsValidWindow(int32_t n)
{
    return n >= kMinWindow && n <= kMaxWindow && (n & (n - 1)) == 0;
}

void LSpectroSettings::Normalize()
{
    int32_t n = kMinWindow;
    while (n < kMaxWindow && n < nWindow)
        n *= 2;
    nWindow = n;
    if (eWindow > SpectroRectangular)
        eWindow = SpectroHann;
    if (eScale > SpectroMel)
        eScale = SpectroLog;
    if (eColours > SpectroColoursGrey)
        eColours = SpectroColoursUniform;
    nRangeDb = std::clamp(nRangeDb, 20, 200);
    nGainDb = std::clamp(nGainDb, -60, 100);
}

LSpectroSettings LSpectroSettings::Load()
{
    LSpectroSettings s;
    s.nWindow = LSettings::GetInt(kSection, "SpectrogramWindowSize", s.nWindow);
    s.eWindow = static_cast<LSpectroWindowFn>(LSettings::GetInt(kSection, "SpectrogramWindow", s.eWindow));
    s.eScale = static_cast<LSpectroScale>(LSettings::GetInt(kSection, "SpectrogramScale", s.eScale));
    s.nRangeDb = LSettings::GetInt(kSection, "SpectrogramRange", s.nRangeDb);
    s.nGainDb = LSettings::GetInt(kSection, "SpectrogramGain", s.nGainDb);
    s.eColours = static_cast<LSpectroColourMap>(LSettings::GetInt(kSection, "SpectrogramColours", s.eColours));
    s.Normalize();
    return s;
}

void LSpectroSettings::Store() const
{
    LSettings::SetInt(kSection, "SpectrogramWindowSize", nWindow);
    LSettings::SetInt(kSection, "SpectrogramWindow", eWindow);
    LSettings::SetInt(kSection, "SpectrogramScale", eScale);
    LSettings::SetInt(kSection, "SpectrogramRange", nRangeDb);
    LSettings::SetInt(kSection, "SpectrogramGain", nGainDb);
    LSettings::SetInt(kSection, "SpectrogramColours", eColours);
}

const char* LSpectroSettings::WindowName(LSpectroWindowFn e)
{
    return kWindowNames[std::min<int>(e, SpectroRectangular)];
}

const char* LSpectroSettings::ScaleName(LSpectroScale e)
{
    return kScaleNames[std::min<int>(e, SpectroMel)];
}

bool LSpectroSettings::ParseWindow(const std::string& sz, LSpectroWindowFn& e)
{
    for (int i = 0; i <= SpectroRectangular; ++i)
        if (sz == kWindowNames[i]) {
            e = static_cast<LSpectroWindowFn>(i);
            return true;
        }
    return false;
}

bool LSpectroSettings::ParseScale(const std::string& sz, LSpectroScale& e)
{
    for (int i = 0; i <= SpectroMel; ++i)
        if (sz == kScaleNames[i]) {
            e = static_cast<LSpectroScale>(i);
            return true;
        }
    return false;
}

std::vector<double> LSpectroWindowTable(LSpectroWindowFn e, int32_t nSize)
{
    std::vector<double> v(static_cast<size_t>(std::max(nSize, 1)), 1.0);
    for (int32_t n = 0; n < nSize; ++n) {
        const double x = 2.0 * M_PI * n / nSize;
        switch (e) {
        case SpectroHann: v[n] = 0.5 - 0.5 * std::cos(x); break;
        case SpectroHamming: v[n] = 0.54 - 0.46 * std::cos(x); break;
        case SpectroBlackmanHarris:
            v[n] = 0.35875 - 0.48829 * std::cos(x) + 0.14128 * std::cos(2 * x) - 0.01168 * std::cos(3 * x);
            break;
        case SpectroRectangular: break;
        }
    }
    return v;
}

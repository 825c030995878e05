#include "dsp/LSRCTone.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstring>

#include "core/LTrace.h"

namespace {
constexpr double kFullScale = 524272.0;
// A touch-tone digit sounds for this part of its slot; the rest is silence between digits.
constexpr double kDigitOnFraction = 2.0 / 3.0;

struct LWaveNameEntry
{
    const char* szName;
    LToneSettings::Wave wave;
};
constexpr LWaveNameEntry kWaves[] = {
    {"sine", LToneSettings::Sine},           {"square", LToneSettings::Square},
    {"triangle", LToneSettings::Triangle},   {"sawtooth", LToneSettings::Sawtooth},
    {"white", LToneSettings::WhiteNoise},    {"pink", LToneSettings::PinkNoise},
    {"dtmf", LToneSettings::Dtmf},           {"sweep", LToneSettings::Sweep},
};

// The correction that takes the step out of a naive edge at phase 0 (a two-sample polynomial
// band-limited step): it keeps the square and the sawtooth from folding harmonics back down.
double PolyBlep(double t, double dt)
{
    if (t < dt) {
        t /= dt;
        return t + t - t * t - 1.0;
    }
    if (t > 1.0 - dt) {
        t = (t - 1.0) / dt;
        return t * t + t + t + 1.0;
    }
    return 0.0;
}

double Wrap(double f)
{
    return f - std::floor(f);
}
} // namespace

bool LToneSettings::WaveByName(const std::string& szName, Wave& wave)
{
    for (const LWaveNameEntry& w : kWaves)
        if (szName == w.szName) {
            wave = w.wave;
            return true;
        }
    return false;
}

const char* LToneSettings::WaveName(Wave wave)
{
    for (const LWaveNameEntry& w : kWaves)
        if (w.wave == wave)
            return w.szName;
    return "";
}

std::string LToneSettings::Check() const
{
    if (nRate < 1000 || nRate > 196000)
        return "The sample rate must be between 1000 and 196000.";
    if (nChans < 1 || nChans > 2)
        return "A tone has one or two channels.";
    if (nLengthMs <= 0)
        return "The length must be more than zero.";
    if (fLevelDb > 0.0 || fLevelDb < -120.0 || std::isnan(fLevelDb))
        return "The level must be between -120 and 0 dBFS.";
    const bool bTone = wave == Sine || wave == Square || wave == Triangle || wave == Sawtooth || wave == Sweep;
    if (bTone && !(fHz > 0.0 && fHz < nRate / 2.0))
        return "The frequency must be above 0 and below half the sample rate.";
    if (wave == Sweep && !(fToHz > 0.0 && fToHz < nRate / 2.0))
        return "The sweep must end above 0 and below half the sample rate.";
    if (wave == Dtmf) {
        double a, b;
        if (szDigits.empty())
            return "Type the digits to dial (0-9, *, #, A-D).";
        for (char c : szDigits)
            if (!LSRCTone::DtmfPair(c, a, b))
                return std::string("'") + c + "' is not a touch-tone digit (0-9, *, #, A-D).";
    }
    return "";
}

bool LSRCTone::DtmfPair(char cDigit, double& fLow, double& fHigh)
{
    static const char kKeys[] = "123A456B789C*0#D";
    static const double kLow[] = {697, 770, 852, 941};
    static const double kHigh[] = {1209, 1336, 1477, 1633};
    const char* p = std::strchr(kKeys, std::toupper(static_cast<unsigned char>(cDigit)));
    if (!p || !cDigit)
        return false;
    const int i = static_cast<int>(p - kKeys);
    fLow = kLow[i / 4];
    fHigh = kHigh[i % 4];
    return true;
}

LSRCTone::LSRCTone(const LToneSettings& s)
    : LSoundSourceBase(s.nRate >= 1 ? s.nRate : 44100, s.nChans >= 1 ? s.nChans : 1, 0x7FFF0), settings(s), rng(1)
{
    const std::string szProblem = s.Check();
    if (!szProblem.empty()) {
        LTRACE("LSRCTone::LSRCTone %s", szProblem.c_str());
        SetError();
        return;
    }
    sLength = static_cast<int32_t>(std::min<int64_t>(INT32_MAX, static_cast<int64_t>(s.nLengthMs) * s.nRate / 1000));
    fAmplitude = kFullScale * std::pow(10.0, s.fLevelDb / 20.0);
}

void LSRCTone::SetPosition(int32_t sNewPosition)
{
    sPosition = std::max(sNewPosition, 0);
    const double fT = static_cast<double>(sPosition) / nSampleRate;
    fPhase = Wrap(settings.fHz * fT);
    fPhase2 = 0;
    if (settings.wave == LToneSettings::Sweep && sLength > 0) {
        // The phase of an exponential sweep is the integral of its frequency.
        const double fDur = static_cast<double>(sLength) / nSampleRate;
        const double fK = std::log(settings.fToHz / settings.fHz) / fDur;
        fPhase = std::fabs(fK) < 1e-12 ? Wrap(settings.fHz * fT) : Wrap(settings.fHz * (std::exp(fK * fT) - 1.0) / fK);
    }
}

double LSRCTone::Periodic(double f, double fStep) const
{
    switch (settings.wave) {
    case LToneSettings::Square: {
        double v = f < 0.5 ? 1.0 : -1.0;
        v += PolyBlep(f, fStep);
        v -= PolyBlep(Wrap(f + 0.5), fStep);
        return v;
    }
    case LToneSettings::Triangle:
        return f < 0.5 ? 4.0 * f - 1.0 : 3.0 - 4.0 * f;
    case LToneSettings::Sawtooth:
        return 2.0 * f - 1.0 - PolyBlep(f, fStep);
    default:
        return std::sin(2.0 * M_PI * f);
    }
}

double LSRCTone::Next()
{
    const double fRate = nSampleRate;
    switch (settings.wave) {
    case LToneSettings::WhiteNoise:
        return std::uniform_real_distribution<double>(-1.0, 1.0)(rng);
    case LToneSettings::PinkNoise: {
        // Rows of held random values, row r renewed every 2^r samples: their sum falls about
        // 3 dB per octave. One row changes per sample, so the sum is kept running.
        std::uniform_real_distribution<double> dist(-1.0, 1.0);
        ++nPinkCounter;
        const int r = std::min(kPinkRows - 1, std::countr_zero(nPinkCounter));
        const double fNew = dist(rng);
        fPinkSum += fNew - aPink[r];
        aPink[r] = fNew;
        return std::clamp((fPinkSum + dist(rng)) / (kPinkRows + 1) * 2.5, -1.0, 1.0);
    }
    case LToneSettings::Dtmf: {
        const int64_t nDigits = static_cast<int64_t>(settings.szDigits.size());
        const int64_t iDigit = std::min<int64_t>(nDigits - 1, static_cast<int64_t>(sPosition) * nDigits / std::max(sLength, 1));
        const int64_t sSlot = static_cast<int64_t>(sLength) * iDigit / nDigits;
        const int64_t nSlot = static_cast<int64_t>(sLength) * (iDigit + 1) / nDigits - sSlot;
        const int64_t sIn = sPosition - sSlot;
        if (sIn >= static_cast<int64_t>(nSlot * kDigitOnFraction))
            return 0.0;
        double fLow = 0, fHigh = 0;
        DtmfPair(settings.szDigits[iDigit], fLow, fHigh);
        const double fT = static_cast<double>(sIn) / fRate;
        // Each of the pair at half the level, so that their sum peaks at the level.
        return 0.5 * (std::sin(2.0 * M_PI * fLow * fT) + std::sin(2.0 * M_PI * fHigh * fT));
    }
    case LToneSettings::Sweep: {
        const double fT = static_cast<double>(sPosition) / fRate;
        const double fDur = static_cast<double>(std::max(sLength, 1)) / fRate;
        const double fHz = settings.fHz * std::pow(settings.fToHz / settings.fHz, fT / fDur);
        const double v = std::sin(2.0 * M_PI * fPhase);
        fPhase = Wrap(fPhase + fHz / fRate);
        return v;
    }
    default: {
        const double fStep = settings.fHz / fRate;
        const double v = Periodic(fPhase, fStep);
        fPhase = Wrap(fPhase + fStep);
        return v;
    }
    }
}

void LSRCTone::Read(int32_t* pBuffer, int32_t nFrames)
{
    int32_t f = 0;
    for (; f < nFrames && sPosition < sLength; ++f, ++sPosition) {
        const int32_t s = static_cast<int32_t>(std::lround(fAmplitude * Next()));
        for (uint8_t c = 0; c < nChans; ++c)
            pBuffer[static_cast<size_t>(f) * nChans + c] = s;
    }
    if (f < nFrames) {
        // Past the end: silence, and the position runs on so that a reader sees it has passed.
        LZeroFrames(pBuffer + static_cast<size_t>(f) * nChans, nFrames - f, nChans);
        sPosition = static_cast<int32_t>(std::min<int64_t>(INT32_MAX, static_cast<int64_t>(sPosition) + nFrames - f));
    }
}

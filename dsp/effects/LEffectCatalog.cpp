#include "dsp/effects/LEffectCatalog.h"

#include <cctype>
#include <cstdio>

#include "core/LSettings.h"
#include "dsp/CompressorRatioList.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LStoredValues.h"

namespace {
using K = LEffectKind;
const std::vector<LEffectInfo> kEffects = {
    {K::Amplify, 4001, "Amplify...", "Amplify", "Amplify", {"AmplifyGain"}, true, false},
    {K::Normalize, 4002, "Normalize...", "Normalize", "Normalizing", {"NormalizePeakLevel"}, true, false},
    {K::HighPassFilter, 4011, "High-Pass Filter...", "High-Pass Filter", "Low Cut Filter", {"LowCutFreq"}, true, false, "EfLowCutFilter"},
    {K::Equalizer, 4003, "Equalizer...", "Equalizer", "Equalizing", {}, true, false, "EfEqualiser"},
    {K::Echo, 4004, "Echo...", "Echo", "Echo", {"EchoTime", "EchoGain"}, true, false, "EfEcho"},
    {K::Reverb, 4005, "Reverb...", "Reverb", "Reverb", {"ReverbTime", "ReverbLevel"}, true, false, "EfReverb"},
    {K::Reverse, 4018, "Reverse", "Reverse", "Reverse", {}, false, false},
    {K::FadeIn, 4006, "Fade In", "Fade In", "Fade In", {}, false, false, "EfFadeIn"},
    {K::FadeOut, 4007, "Fade Out", "Fade Out", "Fade Out", {}, false, false, "EfFadeOut"},
    {K::FadeOutAndTrim, 4013, "Fade Out and Trim", "Fade Out and Trim", "Fade Out", {}, false, false, "EfFadeOut"},
    {K::Envelope, 4008, "Envelope...", "Envelope", "Envelope", {}, true, false, "LEfEnvelope"},
    {K::AutoGainControl, 4009, "Automatic Gain Control", "Automatic Gain Control", "Automatic Gain Control", {}, false, true},
    {K::NoiseReduction, 4010, "Noise Reduction", "Noise Reduction", "Noise Reduction", {"NoiseGateLevel"}, false, false, "EfNoiseReduction"},
    {K::SimpleSpeedPitch, 4014, "Simple Speed and Pitch Change", "Simple Speed and Pitch Change", "Process Audio", {"SpSpeedPitch"}, true, false, "LEfChangeSpeedPitch"},
    {K::ConstPitchSpeed, 4015, "Constant Pitch and Speed Change", "Constant Pitch and Speed Change", "Process Audio", {"ConstPitchSpeed"}, true, false, "LEfChangeSpeedPitch"},
    {K::ConstSpeedPitch, 4016, "Constant Speed and Pitch Change", "Constant Speed and Pitch Change", "Process Audio", {"ConstSpeedPitch"}, true, false, "LEfChangeSpeedPitch"},
    {K::Compressor, 4012, "Dynamic Range Compressor", "Dynamic Range Compressor", "Dynamic Range Compressor",
     {"CompressorThreshold", "CompressorRatio", "CompressorLimit"}, true, false, "EfCompressor"},
    {K::DCOffsetCorrection, 4017, "DCOffset Correction", "DC Offset Correction", "DC Offset Correction", {}, false, false},
    {K::PasteMix, 2005, "Paste Mix...", "Paste Mix", "Pasting Mix", {"PasteMixVolume", "LongerSelection", "FadeOutTime"}, true, false},
    {K::MixFile, 2008, "Mix File...", "Mix File", "Pasting Mix", {"PasteMixVolume", "LongerSelection", "FadeOutTime"}, true, false},
    {K::RepeatLoop, 2009, "Repeat Loop...", "Repeat Loop", "Repeat Loop", {"RepeatNumTimes"}, true, false},
    {K::AutoTrim, 2013, "Auto Trim", "Auto Trim", "AutoTrim", {}, false, true},
    {K::InsertSilence, 2016, "Insert Silence", "Insert Silence At Current Position", "Insert Silence", {"SilenceTimes"}, true, false},
    {K::ConvertSampleRate, 1006, "Convert Sample Rate", "Convert Sample Rate", "Converting rate or channels...", {"ConvertSampleRate"}, true, true},
    {K::ConvertMono, 1007, "Mono", "Convert Channels", "Converting rate or channels...", {}, false, true},
    {K::ConvertStereo, 1008, "Stereo", "Convert Channels", "Converting rate or channels...", {}, false, true},
};

std::string Format(const char* szFormat, int32_t a, int32_t b = 0)
{
    char sz[128];
    std::snprintf(sz, sizeof sz, szFormat, a, b);
    return sz;
}
} // namespace

const std::vector<LEffectInfo>& LEffectCatalog::All()
{
    return kEffects;
}

const LEffectInfo* LEffectCatalog::ByCommand(int nCommandId)
{
    for (const LEffectInfo& e : kEffects)
        if (e.nCommandId == nCommandId)
            return &e;
    return nullptr;
}

const LEffectInfo* LEffectCatalog::ByKind(LEffectKind kind)
{
    for (const LEffectInfo& e : kEffects)
        if (e.kind == kind)
            return &e;
    return nullptr;
}

std::string LEffectCatalog::CliName(const LEffectInfo& info)
{
    std::string sz;
    for (const char* p = info.szMenuText; *p; ++p) {
        if (*p == ' ')
            sz += '-';
        else if (*p != '.' && *p != '&')
            sz += static_cast<char>(std::tolower(static_cast<unsigned char>(*p)));
    }
    return sz;
}

const LEffectInfo* LEffectCatalog::ByCliName(const std::string& szName)
{
    for (const LEffectInfo& e : kEffects)
        if (CliName(e) == szName)
            return &e;
    return nullptr;
}

std::string LEffectCatalog::Describe(LEffectKind kind)
{
    return Describe(kind, LEffectArgs());
}

std::string LEffectCatalog::Describe(LEffectKind kind, const LEffectArgs& args)
{
    auto V = [&args](const char* szKey) { return args.Value(szKey); };
    // The conversion targets are read from the older section name, with the same defaults.
    auto Old = [](const char* szKey, int32_t nDefault) {
        return LSettings::GetInt(LStoredValues::kDescriptionSection, szKey, nDefault);
    };
    switch (kind) {
    case K::InsertSilence: return Format("Silence Time (ms) = %d", V("SilenceTimes"));
    case K::Amplify: return Format("Amplify Gain (%%) = %d", V("AmplifyGain"));
    case K::Normalize: return Format("Normalize Peak Level (%%) = %d", V("NormalizePeakLevel"));
    case K::HighPassFilter: return Format("Frequency (Hz) = %d", V("LowCutFreq"));
    case K::Echo: return Format("Echo Time (ms) = %d, Echo Gain (%%) = %d", V("EchoTime"), V("EchoGain"));
    case K::Reverb: return Format("Reverb Time (ms) = %d, Reverb Level (%%) = %d", V("ReverbTime"), V("ReverbLevel"));
    case K::NoiseReduction: return Format("Noise Gate Level (dB) = %d", V("NoiseGateLevel"));
    case K::SimpleSpeedPitch: return Format("Speed/Pitch Adjust (%%) = %d", V("SpSpeedPitch"));
    case K::ConstPitchSpeed: return Format("Speed Adjust (%%) = %d", V("ConstPitchSpeed"));
    case K::ConstSpeedPitch: return Format("Speed/Pitch Adjust (%%) = %d", V("ConstSpeedPitch"));
    case K::Compressor: {
        char sz[160];
        std::snprintf(sz, sizeof sz, "Threshold (db) = %d, Ratio = %s, Limit (db) = %d", V("CompressorThreshold"),
                      LCompressorRatio(V("CompressorRatio")).szLabel, V("CompressorLimit"));
        return sz;
    }
    case K::ConvertSampleRate: return Format("Convert Sample Rate = %d", Old("ConvertSampleRate", 44100));
    case K::ConvertMono:
    case K::ConvertStereo: return Format("Convert Channel = %d", Old("ConvertChannel", 1));
    default: return "Click on Settings to view or change.";
    }
}

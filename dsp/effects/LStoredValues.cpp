#include "dsp/effects/LStoredValues.h"

#include <algorithm>
#include <climits>
#include <iterator>

#include "core/LSettings.h"

namespace {
// Where the rule of a value is our own choice, the message names the range it enforces.
// The others keep their wording even where it says "less than" and the test is "at most".
const LStoredValueRule kRules[] = {
    {"SilenceTimes", 0, 0, 3600000, "Silence time must be between 0 and 3600000 ms. Please try again."},
    {"AmplifyGain", 100, 0, 400, "Amplify Gain must be less than 400%. Please try again."},
    {"NormalizePeakLevel", 100, 0, 100, "Normailze Peak Level must be less than 100%. Please try again."},
    {"LowCutFreq", 250, 1, 20000, "Frequency must be between 1 and 20000 Hz. Please try again."},
    {"EchoTime", 800, 10, 2999, "Echo time must be between 10 and 3000ms. Please try again."},
    {"EchoGain", 50, 0, 99, "Echo Gain must be less than 100%. Please try again."},
    {"ReverbTime", 50, 50, 1000, "Reverb time must be between 50 and 1000. Please try again."},
    {"ReverbLevel", 50, 0, 100, "Reverb level must be less than 100. Please try again."},
    {"NoiseGateLevel", -30, -127, 0, "Noise Gate Level must be between -127 and 0 dB. Please try again."},
    {"SpSpeedPitch", 100, 1, 300, "Speed Change Percent must be less than 300."},
    {"ConstPitchSpeed", 100, 1, 300, "Speed Change Percent must be less than 300."},
    {"ConstSpeedPitch", 100, 1, 300, "Speed Change Percent must be less than 300."},
    {"CompressorThreshold", -20, -127, 127, "Threshold must be between -127 and 127 dB. Please try again."},
    {"CompressorRatio", 0, 0, 6, "Ratio must be 0 (1:1) to 6 (Limit). Please try again."},
    {"CompressorLimit", 3, -127, 127, "Limit must be between -127 and 127 dB. Please try again."},
    {"RepeatNumTimes", 1, 1, 1000, "Repeat count must be between 1 and 1000. Please try again."},
    {"PasteMixVolume", 100, 0, 100, "Mix Volume must be less than 100%. Please try again."},
    {"LongerSelection", 0, 0, 2, "Choose 0 (insert silence), 1 (extend selection) or 2 (fade mix out)."},
    {"FadeOutTime", 250, 0, 60000, "Fade out time must be between 0 and 60000 ms. Please try again."},
    {"ConvertSampleRate", 44100, 6000, 96000, "Sample rates must be between 6000 and 96000 samples per second."},
    {"ConvertChannel", 1, 1, 2, "Channels must be 1 (mono) or 2 (stereo)."},
};
} // namespace

const LStoredValueRule* LStoredValues::Find(const std::string& szKey)
{
    for (const LStoredValueRule& r : kRules)
        if (szKey == r.szKey)
            return &r;
    return nullptr;
}

int32_t LStoredValues::Get(const std::string& szKey)
{
    const LStoredValueRule* pRule = Find(szKey);
    return pRule ? LSettings::GetInt(kSection, szKey, pRule->nDefault) : 0;
}

void LStoredValues::Set(const std::string& szKey, int32_t nValue)
{
    LSettings::SetInt(kSection, szKey, nValue);
}

bool LStoredValues::Accept(const std::string& szKey, int32_t nValue, std::string* pszMessage)
{
    const LStoredValueRule* pRule = Find(szKey);
    if (pRule && nValue >= pRule->nLowest && nValue <= pRule->nHighest)
        return true;
    if (pszMessage)
        *pszMessage = MessageOf(szKey);
    return false;
}

std::string LStoredValues::MessageOf(const std::string& szKey)
{
    const LStoredValueRule* pRule = Find(szKey);
    return pRule ? pRule->szMessage : "Unknown setting " + szKey + ".";
}

bool LStoredValues::AcceptAndStore(const std::string& szKey, int32_t nValue, std::string* pszMessage)
{
    if (!Accept(szKey, nValue, pszMessage))
        return false;
    Set(szKey, nValue);
    return true;
}

int32_t LStoredValues::AutoTrimThreshold()
{
    return std::clamp(LSettings::GetInt("Settings", "AutoTrimThreshold", -20), -127, 127);
}

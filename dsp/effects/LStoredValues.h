// The last-used effect parameters. Their keys, defaults and rules are the effects' own (declared
// with each effect); dialogs, the batch converter and the command-line tool all read and check
// values here, so a bad value is refused with the same message wherever it was typed.
#pragma once

#include <cstdint>
#include <string>

#include "dsp/effects/LEffectInfo.h"

using LStoredValueRule = LEffectParam;

class LStoredValues
{
public:
    static constexpr const char* kSection = "StoredValues";
    // The batch command description reads the conversion targets from this older section.
    static constexpr const char* kDescriptionSection = "StoreValues";

    // Null for an unknown key.
    static const LStoredValueRule* Find(const std::string& szKey);
    // The stored value, or the default when none is stored. An unknown key gives 0.
    static int32_t Get(const std::string& szKey);
    static void Set(const std::string& szKey, int32_t nValue);
    // True when the value meets the key's rule; otherwise the rule's message goes to *pszMessage.
    static bool Accept(const std::string& szKey, int32_t nValue, std::string* pszMessage);
    // The message a refused value of the key gets (also for text that is not a number).
    static std::string MessageOf(const std::string& szKey);
    // Accept, then Set when accepted.
    static bool AcceptAndStore(const std::string& szKey, int32_t nValue, std::string* pszMessage);

    // "AutoTrimThreshold" in "Settings": dB, limited to -127..127.
    static int32_t AutoTrimThreshold();
};

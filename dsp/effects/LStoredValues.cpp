#include "dsp/effects/LStoredValues.h"

#include <algorithm>
#include <climits>

#include "core/LSettings.h"
#include "dsp/effects/LEffectCatalog.h"

const LStoredValueRule* LStoredValues::Find(const std::string& szKey)
{
    return LEffectCatalog::FindParam(szKey);
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

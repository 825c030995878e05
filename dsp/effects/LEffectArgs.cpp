#include "dsp/effects/LEffectArgs.h"

#include "dsp/effects/LStoredValues.h"

int32_t LEffectArgs::Value(const std::string& szKey) const
{
    auto it = mapValues.find(szKey);
    return it != mapValues.end() ? it->second : LStoredValues::Get(szKey);
}

bool LEffectArgs::Validate(const LEffectInfo& info, std::string* pszMessage) const
{
    for (const char* szKey : info.vKeys)
        if (!LStoredValues::Accept(szKey, Value(szKey), pszMessage))
            return false;
    return true;
}

void LEffectArgs::Store(const LEffectInfo& info) const
{
    for (const char* szKey : info.vKeys)
        LStoredValues::Set(szKey, Value(szKey));
}

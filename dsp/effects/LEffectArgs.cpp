#include "dsp/effects/LEffectArgs.h"

#include "dsp/effects/LStoredValues.h"

int32_t LEffectArgs::Value(const std::string& szKey) const
{
    auto it = mapValues.find(szKey);
    return it != mapValues.end() ? it->second : LStoredValues::Get(szKey);
}

bool LEffectArgs::Validate(const LEffectInfo& info, std::string* pszMessage) const
{
    for (const LEffectParam& param : info.vParams)
        if (!LStoredValues::Accept(param.szKey, Value(param.szKey), pszMessage))
            return false;
    return true;
}

void LEffectArgs::Store(const LEffectInfo& info) const
{
    for (const LEffectParam& param : info.vParams)
        LStoredValues::Set(param.szKey, Value(param.szKey));
}

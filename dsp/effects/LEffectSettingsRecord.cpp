#include "dsp/effects/LEffectSettingsRecord.h"

std::vector<uint8_t> LEffectSettingsRecord::Write(const LEffectInfo& info, const LEffectArgs& args)
{
    std::vector<uint8_t> v;
    v.reserve(SizeOf(info));
    for (const LEffectParam& param : info.vParams) {
        const uint32_t u = static_cast<uint32_t>(args.Value(param.szKey));
        for (int i = 0; i < 4; ++i)
            v.push_back(static_cast<uint8_t>(u >> (8 * i)));
    }
    return v;
}

std::vector<uint8_t> LEffectSettingsRecord::FromStored(const LEffectInfo& info)
{
    return Write(info, LEffectArgs());
}

bool LEffectSettingsRecord::Read(const LEffectInfo& info, const uint8_t* pData, size_t nSize, LEffectArgs& args)
{
    if (nSize < SizeOf(info))
        return false;
    for (size_t k = 0; k < info.vParams.size(); ++k) {
        const uint8_t* p = pData + 4 * k;
        const uint32_t u = static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
                           static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
        args.mapValues[info.vParams[k].szKey] = static_cast<int32_t>(u);
    }
    return true;
}

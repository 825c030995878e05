#include "dsp/effects/LEffectCatalog.h"

#include <cstdio>
#include <cstring>

#include "dsp/CompressorRatioList.h"
#include "dsp/effects/LEffectArgs.h"

#define SONITRA_EFFECT(name) extern const LEffectInfo name;
#include "dsp/effects/LEffectList.h"
#undef SONITRA_EFFECT

namespace {
#define SONITRA_EFFECT(name) &name,
constinit const LEffectInfo* const kEffects[] = {
#include "dsp/effects/LEffectList.h"
};
#undef SONITRA_EFFECT
} // namespace

std::span<const LEffectInfo* const> LEffectCatalog::All()
{
    return kEffects;
}

const LEffectInfo* LEffectCatalog::ByCommand(int nCommandId)
{
    for (const LEffectInfo* p : kEffects)
        if (p->nCommandId == nCommandId)
            return p;
    return nullptr;
}

const LEffectInfo* LEffectCatalog::ByCliName(const std::string& szName)
{
    for (const LEffectInfo* p : kEffects)
        if (szName == p->szCliName)
            return p;
    return nullptr;
}

const LEffectParam* LEffectCatalog::ParamOf(const LEffectInfo& info, const std::string& szKey)
{
    for (const LEffectParam& param : info.vParams)
        if (szKey == param.szKey)
            return &param;
    return nullptr;
}

const LEffectParam* LEffectCatalog::FindParam(const std::string& szKey)
{
    for (const LEffectInfo* p : kEffects)
        if (const LEffectParam* pParam = ParamOf(*p, szKey))
            return pParam;
    return nullptr;
}

std::vector<int> LEffectCatalog::MenuCommands(const std::string& szMenu)
{
    std::vector<int> v;
    const LEffectInfo* pLast = nullptr;
    for (const LEffectInfo* p : kEffects) {
        if (szMenu != p->szMenu)
            continue;
        if (pLast && pLast->nMenuGroup != p->nMenuGroup)
            v.push_back(0);
        v.push_back(p->nCommandId);
        pLast = p;
    }
    return v;
}

std::string LEffectCatalog::Describe(const LEffectInfo& info)
{
    return Describe(info, LEffectArgs());
}

std::string LEffectCatalog::Describe(const LEffectInfo& info, const LEffectArgs& args)
{
    return info.pfnDescribe ? info.pfnDescribe(args) : DescribeValues(info, args);
}

std::string LEffectCatalog::DescribeValues(const LEffectInfo& info, const LEffectArgs& args)
{
    if (!info.szDescribe)
        return "Click on Settings to view or change.";
    std::string sz;
    size_t nNext = 0;
    for (const char* p = info.szDescribe; *p; ++p) {
        if (*p != '%' || !p[1]) {
            sz += *p;
            continue;
        }
        const char c = *++p;
        if (c == '%' || nNext >= info.vParams.size()) {
            sz += c == '%' ? "%" : "?";
            continue;
        }
        const int32_t nValue = args.Value(info.vParams[nNext++].szKey);
        sz += c == 's' ? std::string(LCompressorRatio(nValue).szLabel) : std::to_string(nValue);
    }
    return sz;
}

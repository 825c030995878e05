// Every effect the editor, the batch converter and the command-line tool can run: the list of
// the effects' descriptors (LEffectList.h, one line each), and lookups over it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "dsp/effects/LEffectInfo.h"

class LEffectCatalog
{
public:
    // In menu order.
    static std::span<const LEffectInfo* const> All();
    static const LEffectInfo* ByCommand(int nCommandId);
    static const LEffectInfo* ByCliName(const std::string& szName);
    static std::string CliName(const LEffectInfo& info) { return info.szCliName; }
    // The stored value of a key, from whichever effect takes it; null for an unknown key.
    static const LEffectParam* FindParam(const std::string& szKey);
    static const LEffectParam* ParamOf(const LEffectInfo& info, const std::string& szKey);
    // The commands of a menu ("Effects"), in order, 0 where a separator goes.
    static std::vector<int> MenuCommands(const std::string& szMenu);

    // The one-line description of a batch command's effect, from the stored values.
    static std::string Describe(const LEffectInfo& info);
    // The same from the given values (a value not given takes its stored value).
    static std::string Describe(const LEffectInfo& info, const LEffectArgs& args);
    // The description from the given values alone, even where the editor's own reads elsewhere.
    static std::string DescribeValues(const LEffectInfo& info, const LEffectArgs& args);
};

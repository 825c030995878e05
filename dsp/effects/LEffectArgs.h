// The values an effect runs with: stored-value keys with their values (a key not given takes its
// stored value or default) and, for the mixing effects, the clip to mix in.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "core/LSoundSourceBase.h"
#include "dsp/LPointList.h"
#include "dsp/effects/LEffectInfo.h"

struct LEffectArgs
{
    std::map<std::string, int32_t> mapValues;
    LSoundSourcePtr pClip;
    // The equalizer's or envelope's curve; the stored one when not given.
    std::optional<LPointList> curve;

    int32_t Value(const std::string& szKey) const;
    // Every value the effect takes meets its rule; otherwise the first refusal's message.
    bool Validate(const LEffectInfo& info, std::string* pszMessage) const;
    // Keeps the values for next time (what a dialog does once its values are accepted).
    void Store(const LEffectInfo& info) const;
};

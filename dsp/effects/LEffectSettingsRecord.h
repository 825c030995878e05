// The settings record of an effect: its stored values in dialog order, each a little-endian
// signed 32-bit integer, packed. The effect dialogs keep their values in this form while they are
// open, and a batch command stores exactly these bytes, so both read and write through here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectInfo.h"

class LEffectSettingsRecord
{
public:
    static size_t SizeOf(const LEffectInfo& info) { return info.vParams.size() * 4; }

    // The record of the given values (a value not given takes its stored value or default).
    static std::vector<uint8_t> Write(const LEffectInfo& info, const LEffectArgs& args);
    // The record of the stored values.
    static std::vector<uint8_t> FromStored(const LEffectInfo& info);
    // The values of a record into args. False, args untouched, when fewer bytes than the record
    // needs are given; bytes beyond it are ignored.
    static bool Read(const LEffectInfo& info, const uint8_t* pData, size_t nSize, LEffectArgs& args);
};

#include "dsp/LDecibelTable.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Table = std::array<int64_t, LDecibelTable::kMaxDb - LDecibelTable::kMinDb + 1>;

Table Build()
{
    Table t{};
    for (int32_t nDb = LDecibelTable::kMinDb; nDb <= LDecibelTable::kMaxDb; ++nDb)
        t[nDb - LDecibelTable::kMinDb] = std::llround(16777216.0 * std::pow(10.0, nDb / 20.0));
    return t;
}

} // namespace

int64_t LDecibelTable::Factor(int32_t nDb)
{
    static const Table table = Build();
    return table[std::clamp(nDb, kMinDb, kMaxDb) - kMinDb];
}

// The compressor's ratio choices: a label and the gain factor per decibel of level above the
// threshold, 10^(-(1 - 1/ratio) / 20). Stored settings keep the index into this list.
#pragma once

#include <cstdint>

struct CompressorRatioItem
{
    const char* szLabel;
    double fFactorPerDb;
};

inline constexpr int32_t kCompressorRatioCount = 7;
extern const CompressorRatioItem CompressorRatioList[kCompressorRatioCount];

// The entry at an index; an index beyond the list is a programming error, traced, and reads
// as the first entry ("1:1").
const CompressorRatioItem& LCompressorRatio(int32_t nIndex);

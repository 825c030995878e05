// How hard a track is read: straight through, with overlap checks, or with full error repair.
#pragma once

#include <cstdint>
#include <string>

enum class LCdReadMode
{
    Fast,     // sectors as the drive delivers them
    Verified, // overlapping reads compared, jitter and dropped bytes repaired
    Paranoid, // as verified, plus scratch detection and repair
};

namespace LCd {
const char* ReadModeName(LCdReadMode mode); // "fast", "verified", "paranoid"
bool ParseReadMode(const std::string& szName, LCdReadMode& mode);
// The setting "CD"/"ReadMode"; verified when unset or unknown.
LCdReadMode ReadModeSetting();
void SetReadModeSetting(LCdReadMode mode);
} // namespace LCd

// What error correction did while reading.
struct LCdReadCounts
{
    uint32_t nCorrected = 0;
    uint32_t nUncorrectable = 0;
};

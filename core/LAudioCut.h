// One cut of a cut list: a stretch of one tank segment (or of silence) with its own gain.
// A record owns one reference on its segment: copying it takes one, destroying it releases one.
#pragma once

#include <cstdint>

#include "core/LFixed.h"

class LAudioCut
{
public:
    static constexpr uint16_t kSilentRef = 0xFFFF;

    LAudioCut() = default;
    // Takes over a reference the caller already holds: the record releases it when it goes.
    static LAudioCut Adopt(uint16_t nRef, int32_t sLength, int32_t nGain, int32_t sOffset)
    {
        return LAudioCut(nRef, sLength, nGain, sOffset);
    }
    static LAudioCut Silence(int32_t sLength) { return LAudioCut(kSilentRef, sLength, kGainUnity, 0); }

    LAudioCut(const LAudioCut& other);
    LAudioCut(LAudioCut&& other) noexcept;
    LAudioCut& operator=(const LAudioCut& other);
    LAudioCut& operator=(LAudioCut&& other) noexcept;
    ~LAudioCut();

    bool IsSilent() const { return nRef == kSilentRef; }
    bool operator==(const LAudioCut& o) const
    {
        return nRef == o.nRef && sLength == o.sLength && nGain == o.nGain && sOffset == o.sOffset;
    }

    uint16_t nRef = kSilentRef;
    int32_t sLength = 0;
    int32_t nGain = kGainUnity;
    int32_t sOffset = 0;

private:
    LAudioCut(uint16_t nRef, int32_t sLength, int32_t nGain, int32_t sOffset)
        : nRef(nRef), sLength(sLength), nGain(nGain), sOffset(sOffset)
    {
    }
};

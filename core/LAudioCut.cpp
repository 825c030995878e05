#include "core/LAudioCut.h"

#include "core/LAudioCutTank.h"

LAudioCut::LAudioCut(const LAudioCut& other)
    : nRef(other.nRef), sLength(other.sLength), nGain(other.nGain), sOffset(other.sOffset)
{
    LAudioCutTank::Instance().IncRef(nRef);
}

LAudioCut::LAudioCut(LAudioCut&& other) noexcept
    : nRef(other.nRef), sLength(other.sLength), nGain(other.nGain), sOffset(other.sOffset)
{
    other.nRef = kSilentRef;
}

LAudioCut& LAudioCut::operator=(const LAudioCut& other)
{
    // Taken before the old one goes, so that assigning a cut over the same segment keeps it alive.
    LAudioCutTank::Instance().IncRef(other.nRef);
    LAudioCutTank::Instance().DecRef(nRef);
    nRef = other.nRef;
    sLength = other.sLength;
    nGain = other.nGain;
    sOffset = other.sOffset;
    return *this;
}

LAudioCut& LAudioCut::operator=(LAudioCut&& other) noexcept
{
    if (this != &other) {
        LAudioCutTank::Instance().DecRef(nRef);
        nRef = other.nRef;
        sLength = other.sLength;
        nGain = other.nGain;
        sOffset = other.sOffset;
        other.nRef = kSilentRef;
    }
    return *this;
}

LAudioCut::~LAudioCut()
{
    LAudioCutTank::Instance().DecRef(nRef);
}

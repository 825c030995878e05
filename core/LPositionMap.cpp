#include "core/LPositionMap.h"

#include <algorithm>

#include "core/LCutListAudio.h"

namespace {

// Silence has no place in a segment: any silent frame is the same as any other.
bool SameFrame(const LPositionMap::Run& a, int64_t sIntoA, const LPositionMap::Run& b, int64_t sIntoB)
{
    if (a.nRef != b.nRef)
        return false;
    if (a.nRef == LAudioCut::kSilentRef)
        return true;
    return a.nGain == b.nGain && a.sOffset + sIntoA == b.sOffset + sIntoB;
}

// How many frames the two versions share, read from their starts (or, with the runs given in
// reverse and counted from their ends, from their ends).
template <class It> int64_t SharedFrames(It a, It aEnd, It b, It bEnd, bool bFromEnd)
{
    int64_t sShared = 0, sIntoA = 0, sIntoB = 0;
    while (a != aEnd && b != bEnd) {
        const int64_t sLeftA = a->sLength - sIntoA, sLeftB = b->sLength - sIntoB;
        // From the end, the frame compared is the last one not yet shared.
        const int64_t sAtA = bFromEnd ? sLeftA - 1 : sIntoA, sAtB = bFromEnd ? sLeftB - 1 : sIntoB;
        if (sLeftA <= 0) {
            ++a, sIntoA = 0;
            continue;
        }
        if (sLeftB <= 0) {
            ++b, sIntoB = 0;
            continue;
        }
        if (!SameFrame(*a, sAtA, *b, sAtB))
            break;
        const int64_t sStep = std::min(sLeftA, sLeftB);
        sShared += sStep;
        sIntoA += sStep;
        sIntoB += sStep;
    }
    return sShared;
}

int64_t LengthOf(const LPositionMap::Version& v)
{
    int64_t s = 0;
    for (const LPositionMap::Run& r : v)
        s += r.sLength;
    return s;
}

} // namespace

LPositionMap::Version LPositionMap::VersionOf(const LCutListAudio& doc)
{
    Version v;
    v.reserve(doc.GetCutCount());
    doc.GetCuts().ForEach([&](const LAudioCut& c) { v.push_back({c.nRef, c.sLength, c.nGain, c.sOffset}); });
    return v;
}

LPositionMap::LPositionMap(const Version& before, const Version& after)
    : sOldLength(LengthOf(before)), sNewLength(LengthOf(after))
{
    sSameStart = SharedFrames(before.begin(), before.end(), after.begin(), after.end(), false);
    sSameEnd = SharedFrames(before.rbegin(), before.rend(), after.rbegin(), after.rend(), true);
    // Audio repeated around the change could be counted at both ends: the end gives way.
    sSameStart = std::min({sSameStart, sOldLength, sNewLength});
    sSameEnd = std::min({sSameEnd, sOldLength - sSameStart, sNewLength - sSameStart});
}

int32_t LPositionMap::Map(int32_t sPosition) const
{
    const int64_t s = sPosition;
    const int64_t sOldChangeEnd = sOldLength - sSameEnd, sNewChangeEnd = sNewLength - sSameEnd;
    int64_t sNew;
    if (s < sSameStart)
        sNew = s;
    else if (s >= sOldChangeEnd)
        sNew = s + (sNewLength - sOldLength);
    else
        sNew = sSameStart + (s - sSameStart) * (sNewChangeEnd - sSameStart) / (sOldChangeEnd - sSameStart);
    return static_cast<int32_t>(std::clamp<int64_t>(sNew, 0, sNewLength));
}

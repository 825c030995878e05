// Where a position in a document lands after the document changed, so that marks stay on the
// audio they were set on. The two versions are compared cut by cut: audio they share at their
// start keeps its place, audio they share at their end moves by the change in length, and a
// position in the stretch between keeps its fraction of the way through it (a stretch that was
// deleted leaves its marks where it began).
//
// A version is kept as its cuts' identities only, without their segment references, so holding
// an old version keeps no audio alive.
#pragma once

#include <cstdint>
#include <vector>

class LCutListAudio;

class LPositionMap
{
public:
    struct Run
    {
        uint16_t nRef;
        int32_t sLength;
        int32_t nGain;
        int32_t sOffset;
        bool operator==(const Run&) const = default;
    };
    using Version = std::vector<Run>;

    static Version VersionOf(const LCutListAudio& doc);
    LPositionMap(const Version& before, const Version& after);

    // The position in the new version, from 0 to its length.
    int32_t Map(int32_t sPosition) const;
    // False when the two versions hold the same audio in the same places.
    bool IsChange() const { return sSameStart != sOldLength || sOldLength != sNewLength; }

private:
    int64_t sOldLength = 0;
    int64_t sNewLength = 0;
    int64_t sSameStart = 0; // frames shared at the start
    int64_t sSameEnd = 0;   // frames shared at the end, not overlapping those at the start
};

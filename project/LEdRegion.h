// A named stretch of audio kept apart from the file it was taken from. On disk a record is 528
// packed bytes, followed in a project by the region's own cut list:
//   0 name (260, NUL-terminated) | 260 path of the file it was taken from (260, NUL-terminated)
//   520 start frame (4) | 524 end frame (4)
// The region holds its own copy of the audio (references, not samples), so later edits of the
// file never change it. In memory a flag follows: whether "Assemble Regions" takes it.
#pragma once

#include <cstdint>
#include <string>

#include "core/LCutListAudio.h"

class LByteReader;
class LByteWriter;

class LEdRegion
{
public:
    static constexpr size_t kRecordSize = 528;
    static constexpr size_t kTextSize = 260;

    LEdRegion();
    // The region [sStart, sEnd) of doc, taken from the file at szPath.
    LEdRegion(const std::string& szName, const std::string& szPath, const LCutListAudio& doc, int32_t sStart,
              int32_t sEnd);

    std::string GetName() const;
    std::string GetPath() const;
    void SetName(const std::string& sz);
    void SetPath(const std::string& sz);
    // "%s@%s-%s": the name, the start and end times (h:mm:ss.mmm at the region's rate).
    std::string Describe() const;

    // The record alone (the cut list is written by the project).
    void Write(LByteWriter& out) const;
    bool Read(LByteReader& in);

    char szName[kTextSize];
    char szPath[kTextSize];
    int32_t sStart = 0;
    int32_t sEnd = 0;
    LCutListAudioPtr pDoc;
    bool bAssemble = true;
};

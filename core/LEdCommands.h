// The editing commands that the editor, the command line and the batch runner all offer, each
// as one function over a document, so that every face gives the same samples. The caller takes
// the undo snapshot first (LEdFile::StartModify); each command returns the range to select
// afterwards (empty at the cursor position when nothing is to be selected).
#pragma once

#include <cstdint>

#include "core/LCutListAudio.h"

struct LEdRange
{
    int32_t sStart = 0;
    int32_t sEnd = 0;
};

class LEdCommands
{
public:
    // Frames of a time in milliseconds at a rate, truncated, split so that long times do not
    // overflow: the one rule wherever a time becomes a count of frames.
    static int32_t FramesOfMs(int32_t nMs, int32_t nRate);

    static LEdRange Delete(LCutListAudio& doc, int32_t sStart, int32_t sEnd);
    // The range becomes the whole document.
    static LEdRange Trim(LCutListAudio& doc, int32_t sStart, int32_t sEnd);
    static LEdRange TrimStart(LCutListAudio& doc, int32_t sAt);
    static LEdRange TrimEnd(LCutListAudio& doc, int32_t sAt);
    static void Copy(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, LCutListAudio& clip);
    static LEdRange Cut(LCutListAudio& doc, int32_t sStart, int32_t sEnd, LCutListAudio& clip);
    // Replaces a non-empty range with the clip, or inserts it at sStart; selects what came in.
    static LEdRange Paste(LCutListAudio& doc, int32_t sStart, int32_t sEnd, const LCutListAudio& clip);
    // The range becomes silence of the same length.
    static LEdRange Silence(LCutListAudio& doc, int32_t sStart, int32_t sEnd);
    static LEdRange InsertSilenceFrames(LCutListAudio& doc, int32_t sAt, int32_t nFrames);
    static LEdRange InsertSilence(LCutListAudio& doc, int32_t sAt, int32_t nMs);
    // The range, then nTimes copies of it; an empty range does nothing.
    static LEdRange Repeat(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nTimes);
    static LEdRange Amplify(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nPercent);
};

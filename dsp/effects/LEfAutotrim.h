// Auto-trim: deletes the quiet start and end of a whole document, judged from the segments'
// 256-frame overview records alone, never from the audio. It keeps one quiet block before the
// first loud one and ends exactly where the last loud block ends.
#pragma once

#include <cstdint>
#include <vector>

#include "core/LCutListAudio.h"
#include "work/LProgressDialog.h"

class LEfAutotrim
{
public:
    static constexpr int32_t kBlockFrames = 256;

    // 0 done, 1 cancelled (nothing deleted).
    static int32_t Run(LProgressDialog& dlg, LCutListAudio& doc, int32_t nThresholdDb);

    // The overview of the whole document: per block and channel the positive and negative peak
    // bytes, each scaled by its cut's gain. Empty when cancelled.
    static std::vector<uint8_t> BuildTable(LProgressDialog& dlg, const LCutListAudio& doc, bool* pbCancelled);
    // The frames to keep, [*psStart, *psEnd), found in a table of nBlocks x nChans entries.
    static void FindBounds(const std::vector<uint8_t>& vTable, int32_t nChans, int32_t nThresholdDb, int32_t nLength,
                           int32_t* psStart, int32_t* psEnd);
};

// The sink through which new audio enters the tank: it writes a new segment's "%d.aud" and builds
// its "%d.grf" overview on the fly (one record per 256 frames: per channel the positive peak, then
// the negative peak, each >> 11 and capped at 255). When it finishes (completed, or at its last
// release), the target document becomes exactly the audio written: one cut over the new segment.
//
// An effect writes its output into a scratch document this way and then replaces a range of the
// real one with it (LCutListAudio::Replace).
#pragma once

#include <cstdint>
#include <vector>

#include "core/LAudioCut.h"
#include "core/LCutListAudio.h"
#include "core/LFile.h"
#include "core/LSoundSinkBase.h"

class LSNKSegmentWriter : public LSoundSinkBase
{
public:
    static constexpr int32_t kOverviewFrames = 256;

    // The target must live on the heap (it is held by a counted pointer); it may be null, and
    // the segment then goes with the writer. The error latch is set when the files cannot be made.
    LSNKSegmentWriter(LCutListAudio* pTarget, int32_t nSampleRate, uint8_t nChans);
    ~LSNKSegmentWriter() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Moves both files; what follows the position is dropped when the writer finishes.
    void SetPosition(int32_t sNewPosition) override;
    // Finishes now: false when the segment's audio did not all reach its file.
    bool Complete() override;

    uint16_t GetRef() const { return cut.nRef; }

private:
    void FoldOverview(const int32_t* pBuffer, int32_t nFrames);
    // Widens each channel's peaks over whole frames of samples.
    void FoldInLanes(const int32_t* pSamples, int32_t nSamples);
    void FoldByChannel(const int32_t* pSamples, int32_t nSamples);
    void AppendRecord();
    void Finish();

    LCutListAudioPtr pTarget;
    LAudioCut cut;
    LFile fileAud;
    LFile fileGrf;
    int32_t nRecordFrames = 0;
    std::vector<int32_t> vMax;
    std::vector<int32_t> vMin;
    std::vector<uint8_t> vRecords;
    std::vector<int32_t> vSwapped; // big-endian hosts only
    int32_t nFrameBytes;
    bool bFinished = false;
};

// A processor that works a block at a time and hands its current block out frame by frame:
// Read walks the blocks, asking for the next one whenever the current one is used up. A latched
// processor reads zeros and still moves on.
#pragma once

#include "core/LSoundSourceBase.h"

class LSRCBlockOutput : public LSoundSourceBase
{
public:
    void Read(int32_t* pBuffer, int32_t nFrames) final;
    int32_t GetPosition() override { return sPosition; }

protected:
    using LSoundSourceBase::LSoundSourceBase;

    // Runs before a read's first frame (a seek's deferred restart, for instance).
    virtual void BeforeRead() {}
    // Frames of the current block not handed out yet; at 0 the next block is made first.
    virtual int32_t FramesLeftInBlock() const = 0;
    virtual void NextBlock() = 0;
    // Writes the next nFrames (at most what is left) of the current block and moves past them.
    virtual void HandOut(int32_t* pOut, int32_t nFrames) = 0;

    int32_t sPosition = 0;
};

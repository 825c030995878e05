// A source whose inner source can be replaced while a player pulls from it. The new inner source
// is only taken at the next seek: the player seeks its source under its guard on the calling
// thread, so the swap never meets a read on the player's worker, and the worker never takes a
// lock or frees a source for it. Rate and channels are those of the first inner source; a
// replacement of another format is refused.
#pragma once

#include "core/LSoundSourceBase.h"

class LSRCSwitch : public LSoundSourceBase
{
public:
    explicit LSRCSwitch(LSoundSourceBase* pFirst);

    void Read(int32_t* pBuffer, int32_t nFrames) override { pCurrent->Read(pBuffer, nFrames); }
    int32_t GetPosition() override { return pCurrent->GetPosition(); }
    int32_t GetLength() override { return pCurrent->GetLength(); }
    // Takes the waiting source (when one waits), then seeks.
    void SetPosition(int32_t sPosition) override;

    // False (and nothing waits) when the source is latched or of another rate or channel count.
    bool SetNext(LSoundSourceBase* pNext);

private:
    bool Accepts(LSoundSourceBase* pSource) const;

    LSoundSourcePtr pCurrent;
    LSoundSourcePtr pNext;
};

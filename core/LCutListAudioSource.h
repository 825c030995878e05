// Reads a cut list as one continuous source. It reads its own copy of the list, so later edits of
// the document never disturb it and the copied cuts keep their segments alive. Gains may lift
// samples above 16-bit full scale: the maximum amplitude is 0x200000 and the pump limits it.
#pragma once

#include "core/LAudioCut.h"
#include "core/LFile.h"
#include "core/LList.h"
#include "core/LSoundSourceBase.h"

class LCutListAudioSource : public LSoundSourceBase
{
public:
    static constexpr int32_t kMaxAmplitude = 0x200000;

    // A cut list of the given rate and channel count, sLength frames long in all.
    LCutListAudioSource(const LList<LAudioCut>& lstCuts, int32_t nSampleRate, uint8_t nChans, int32_t sLength);

    // Before 0, past the end, in silent cuts and in unreadable segments the frames are zeros.
    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override;
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override;

private:
    void OpenCut(const LAudioCut& cut, int64_t sInto);
    void ReadCutFrames(int32_t* pBuffer, int32_t nFrames);

    LList<LAudioCut> lstCuts;
    LListIterator<LAudioCut> itNext;
    int64_t sPosition = 0;
    int32_t sLength;
    // The segment stays open from cut to cut while they read the same one (splits are common).
    LFile fileAud;
    uint16_t nOpenRef = LAudioCut::kSilentRef;
    bool bCutHasData = false;
    int64_t nCutLeft = 0;
    int32_t nGain = 0x1000000;
};

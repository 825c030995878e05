// The audio of one document: an ordered list of cuts over tank segments. Every edit rearranges
// cuts and so costs time in the number of cuts, never in the length of the audio; samples in the
// segment files are never rewritten. Single-threaded: only the tank's counts are shared.
//
// Positions are frames from 0 at the start of the first cut; a range is [sStart, sEnd).
// Edits never fail: a range out of order is ignored, and a range reaching outside the audio is
// clipped or padded with silence as each operation says.
#pragma once

#include <cstdint>

#include "core/LAudioCut.h"
#include "core/LCountedPtr.h"
#include "core/LList.h"
#include "core/LSoundSourceBase.h"

class LCutListAudio
{
public:
    // A new list is 44100 frames per second, 1 channel, no cuts.
    LCutListAudio() = default;
    LCutListAudio(int32_t nSampleRate, uint8_t nChans) : nSampleRate(nSampleRate), nChans(nChans) {}
    // Copies rate, channels and cuts; each copied cut takes a segment reference.
    LCutListAudio(const LCutListAudio& other) : nSampleRate(other.nSampleRate), nChans(other.nChans), lstCuts(other.lstCuts) {}
    LCutListAudio& operator=(const LCutListAudio& other);

    int32_t GetSampleRate() const { return nSampleRate; }
    uint8_t GetChannels() const { return nChans; }
    void SetFormat(int32_t nRate, uint8_t nChannels);

    // The sum of the cut lengths.
    int32_t GetLength() const;
    const LList<LAudioCut>& GetCuts() const { return lstCuts; }
    size_t GetCutCount() const { return lstCuts.Count(); }
    void Clear() { lstCuts.Clear(); }
    // Appends a copy of the cut (taking a reference for it).
    void AppendCut(const LAudioCut& cut) { lstCuts.Append(cut); }

    // The destination takes rate, channels and exactly sEnd - sStart frames: the range, with
    // silence wherever it reaches before 0 or past the end. Nothing when sStart > sEnd.
    void EfCopy(int32_t sStart, int32_t sEnd, LCutListAudio& dest) const;
    // Removes the part of the range that lies inside the audio. Nothing when sEnd < sStart or sEnd < 0.
    void EfDelete(int32_t sStart, int32_t sEnd);
    // EfCopy into dest, then EfDelete of the same range.
    void Cut(int32_t sStart, int32_t sEnd, LCutListAudio& dest);
    // EfDelete of the range, then Insert of other at sStart.
    void Replace(int32_t sStart, int32_t sEnd, const LCutListAudio& other);
    // Inserts copies of all cuts of other. Past the end, silence fills the gap first; at a
    // negative position, other comes first and is followed by -sPosition frames of silence.
    void Insert(int32_t sPosition, const LCutListAudio& other);
    // One silent cut. At a negative position only the part from 0 on is inserted; past the end
    // the silence also fills the gap.
    void InsertSilence(int32_t sPosition, int32_t nFrames);
    // Deletes everything before sPosition (only when sPosition > 0).
    void CropStart(int32_t sPosition);
    // Deletes everything from sPosition on.
    void CropEnd(int32_t sPosition);
    // Inserts the range (as EfCopy gives it) at sStart, nTimes times.
    void Repeat(int32_t sStart, int32_t sEnd, int32_t nTimes);
    // Scales the gain of the range: it is cut out, amplified and inserted back at sStart.
    void EfAmplify(int32_t sStart, int32_t sEnd, int32_t nPercent);
    // Scales every cut's gain, dividing by 100 first (the last two digits of a gain are lost).
    // A gain at the ceiling stays there even when attenuated; 0 silences; negatives are refused.
    void EfAmplifyAll(int32_t nPercent);

    // A source over a copy of the list: later edits never disturb a running read.
    LSoundSourcePtr OpenSource() const;
    // A source over exactly [sStart, sEnd), padded as EfCopy pads.
    LSoundSourcePtr OpenSource(int32_t sStart, int32_t sEnd) const;

    // Documents are reference counted (LCountedPtr): a document handed to a segment writer or a
    // process must live on the heap. Copies start with no references.
    void AddRef() { ++nRefCount; }
    void Release()
    {
        if (--nRefCount == 0)
            delete this;
    }

private:
    int64_t Length64() const;
    void DeleteRange(int64_t sStart, int64_t sEnd);
    void InsertSilenceAt(int64_t sPosition, int64_t nFrames);
    void InsertAt(int64_t sPosition, const LCutListAudio& other);
    void CopyRange(int64_t sStart, int64_t sEnd, LCutListAudio& dest) const;

    int32_t nSampleRate = 44100;
    uint8_t nChans = 1;
    LList<LAudioCut> lstCuts;
    int32_t nRefCount = 0;
};

using LCutListAudioPtr = LCountedPtr<LCutListAudio>;

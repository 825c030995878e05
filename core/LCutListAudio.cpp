#include "core/LCutListAudio.h"

#include <algorithm>
#include <climits>

#include "core/LCutListAudioSource.h"
#include "core/LTrace.h"

namespace {
// A document cannot hold more than 2^31 - 1 frames; a silent cut that would is held at that.
int32_t ClampLength(int64_t n)
{
    return static_cast<int32_t>(std::clamp<int64_t>(n, 0, INT32_MAX));
}

// Splits the cut under the iterator at p frames: the head stays in place with p frames, a copy
// (taking a reference) follows it with the rest.
void SplitAt(LList<LAudioCut>& lst, LListIterator<LAudioCut>& it, int64_t p)
{
    LAudioCut tail(*it);
    tail.sOffset = static_cast<int32_t>(tail.sOffset + p);
    tail.sLength = static_cast<int32_t>(tail.sLength - p);
    it->sLength = static_cast<int32_t>(p);
    lst.AddAfter(it, tail);
}
} // namespace

LCutListAudio& LCutListAudio::operator=(const LCutListAudio& other)
{
    nSampleRate = other.nSampleRate;
    nChans = other.nChans;
    lstCuts = other.lstCuts;
    return *this;
}

void LCutListAudio::SetFormat(int32_t nRate, uint8_t nChannels)
{
    nSampleRate = nRate;
    nChans = nChannels;
}

int64_t LCutListAudio::Length64() const
{
    int64_t nLength = 0;
    lstCuts.ForEach([&](const LAudioCut& cut) { nLength += cut.sLength; });
    return nLength;
}

int32_t LCutListAudio::GetLength() const
{
    return ClampLength(Length64());
}

void LCutListAudio::EfCopy(int32_t sStart, int32_t sEnd, LCutListAudio& dest) const
{
    CopyRange(sStart, sEnd, dest);
}

void LCutListAudio::CopyRange(int64_t sStart, int64_t sEnd, LCutListAudio& dest) const
{
    if (sStart > sEnd) {
        LTRACE("LCutListAudio::EfCopy sStart > sEnd");
        return;
    }
    if (&dest != this)
        dest = *this;
    if (sStart >= 1)
        dest.DeleteRange(0, sStart);
    else if (sStart < 0)
        dest.InsertSilenceAt(0, -sStart);
    const int64_t nWanted = sEnd - sStart;
    const int64_t nHave = dest.Length64();
    if (nHave > nWanted)
        dest.DeleteRange(nWanted, nHave);
    else if (nHave < nWanted)
        dest.InsertSilenceAt(nHave, nWanted - nHave);
}

void LCutListAudio::EfDelete(int32_t sStart, int32_t sEnd)
{
    DeleteRange(sStart, sEnd);
}

void LCutListAudio::DeleteRange(int64_t sStart, int64_t sEnd)
{
    if (sEnd < sStart || sEnd < 0) {
        LTRACE("LCutListAudio::EfDelete sStart > sEnd");
        return;
    }
    const int64_t s = std::max<int64_t>(sStart, 0);
    int64_t e = sEnd; // kept in the coordinates of the list as it stands
    int64_t c = 0;    // first frame of the current cut
    LListIterator<LAudioCut> it(lstCuts);
    while (it.IsValid()) {
        const int64_t cEnd = c + it->sLength;
        if (cEnd <= s) {
            c = cEnd;
            it.Next();
            continue;
        }
        if (e < cEnd)
            break;
        e -= cEnd - s;
        if (s != c) {
            it->sLength = static_cast<int32_t>(s - c);
            c = s;
            it.Next();
        } else {
            lstCuts.Detach(it);
        }
    }
    if (!it.IsValid())
        return;
    if (c >= s) {
        it->sOffset = static_cast<int32_t>(it->sOffset + (e - c));
        it->sLength = static_cast<int32_t>(it->sLength - (e - c));
        return;
    }
    // The range lies inside this one cut: head up to s, tail from e.
    SplitAt(lstCuts, it, e - c);
    it->sLength = static_cast<int32_t>(s - c);
}

void LCutListAudio::Cut(int32_t sStart, int32_t sEnd, LCutListAudio& dest)
{
    EfCopy(sStart, sEnd, dest);
    EfDelete(sStart, sEnd);
}

void LCutListAudio::Replace(int32_t sStart, int32_t sEnd, const LCutListAudio& other)
{
    if (&other == this) {
        const LCutListAudio copy(other);
        Replace(sStart, sEnd, copy);
        return;
    }
    EfDelete(sStart, sEnd);
    Insert(sStart, other);
}

void LCutListAudio::InsertSilence(int32_t sPosition, int32_t nFrames)
{
    InsertSilenceAt(sPosition, nFrames);
}

void LCutListAudio::InsertSilenceAt(int64_t p, int64_t n)
{
    if (n < 0) {
        LTRACE("LCutListAudio::InsertSilence nFrames < 0");
        return;
    }
    if (p < 0) {
        if (n < -p)
            return;
        n += p;
        p = 0;
    }
    if (n == 0 && p <= Length64())
        return; // an empty cut would only clutter the list
    LListIterator<LAudioCut> it(lstCuts);
    while (it.IsValid()) {
        if (p == 0) {
            lstCuts.AddBefore(it, LAudioCut::Silence(ClampLength(n)));
            return;
        }
        if (p < it->sLength) {
            SplitAt(lstCuts, it, p);
            lstCuts.AddAfter(it, LAudioCut::Silence(ClampLength(n)));
            return;
        }
        p -= it->sLength;
        it.Next();
    }
    lstCuts.Append(LAudioCut::Silence(ClampLength(n + p)));
}

void LCutListAudio::Insert(int32_t sPosition, const LCutListAudio& other)
{
    InsertAt(sPosition, other);
}

void LCutListAudio::InsertAt(int64_t p, const LCutListAudio& other)
{
    if (&other == this) {
        const LCutListAudio copy(other);
        InsertAt(p, copy);
        return;
    }
    LListIterator<LAudioCut> it(lstCuts);
    while (it.IsValid() && p > 0 && p >= it->sLength) {
        p -= it->sLength;
        it.Next();
    }
    if (!it.IsValid() && p > 0) {
        lstCuts.Append(LAudioCut::Silence(ClampLength(p)));
        other.lstCuts.ForEach([&](const LAudioCut& cut) { lstCuts.Append(cut); });
        return;
    }
    if (p <= 0) {
        other.lstCuts.ForEach([&](const LAudioCut& cut) { lstCuts.AddBefore(it, cut); });
        if (p < 0)
            lstCuts.AddBefore(it, LAudioCut::Silence(ClampLength(-p)));
        return;
    }
    SplitAt(lstCuts, it, p);
    other.lstCuts.ForEach([&](const LAudioCut& cut) {
        lstCuts.AddAfter(it, cut);
        it.Next();
    });
}

void LCutListAudio::CropStart(int32_t sPosition)
{
    if (sPosition > 0)
        EfDelete(0, sPosition);
}

void LCutListAudio::CropEnd(int32_t sPosition)
{
    DeleteRange(sPosition, Length64());
}

void LCutListAudio::Repeat(int32_t sStart, int32_t sEnd, int32_t nTimes)
{
    LCutListAudio scratch;
    EfCopy(sStart, sEnd, scratch);
    for (int32_t i = 0; i < nTimes; ++i)
        Insert(sStart, scratch);
}

void LCutListAudio::EfAmplify(int32_t sStart, int32_t sEnd, int32_t nPercent)
{
    if (sEnd < sStart) {
        LTRACE("LCutListAudio::EfAmplify sStart > sEnd");
        return;
    }
    if (nPercent == 100)
        return;
    LCutListAudio scratch;
    Cut(sStart, sEnd, scratch);
    scratch.EfAmplifyAll(nPercent);
    Insert(sStart, scratch);
}

void LCutListAudio::EfAmplifyAll(int32_t nPercent)
{
    LTRACE("LCutListAudio::EfAmplifyAll GainPercent=%d", nPercent);
    if (nPercent == 100 || nPercent < 0)
        return;
    const int32_t nCeiling = nPercent > 100 ? (INT32_MAX / nPercent) * 100 : INT32_MAX;
    lstCuts.ForEach([&](LAudioCut& cut) {
        // Divided first, deliberately: every stage that scales a gain loses the same digits.
        if (nCeiling > cut.nGain)
            cut.nGain = (cut.nGain / 100) * nPercent;
        else
            cut.nGain = INT32_MAX;
    });
}

LSoundSourcePtr LCutListAudio::OpenSource() const
{
    return LSoundSourcePtr(new LCutListAudioSource(GetCuts(), nSampleRate, nChans, GetLength()));
}

LSoundSourcePtr LCutListAudio::OpenSource(int32_t sStart, int32_t sEnd) const
{
    LCutListAudio range(nSampleRate, nChans);
    EfCopy(sStart, sEnd, range);
    return range.OpenSource();
}

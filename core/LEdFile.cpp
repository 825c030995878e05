#include "core/LEdFile.h"

#include <algorithm>
#include <utility>

#include "core/LSettings.h"
#include "core/LTrace.h"

namespace {
const std::string kNoLabel;
}

LEdFile::LEdFile() : pDoc(new LCutListAudio), ring(static_cast<size_t>(ConfiguredUndoLevels())) {}

int LEdFile::ConfiguredUndoLevels()
{
    return std::clamp(LSettings::GetInt("Settings", "UndoLevels", kUndoLevels), 1, kMaxUndoLevels);
}

void LEdFile::StartModify(const std::string& szLabel)
{
    DropRedo();
    nUndoIndex = Next(nUndoIndex);
    UndoEntry& entry = ring[nUndoIndex];
    entry.doc.Clear(); // the oldest state's references go before the new copy is taken
    entry.doc = *pDoc;
    entry.bModified = bModified;
    entry.sCursor = sCursor;
    entry.sSelStart = sSelStart;
    entry.sSelEnd = sSelEnd;
    entry.sViewStart = sViewStart;
    entry.sViewEnd = sViewEnd;
    entry.szLabel = szLabel.substr(0, kMaxLabel);
    // An unlabelled entry cannot be undone, and nothing older can be reached past it.
    nUndoCount = entry.szLabel.empty() ? 0 : std::min(nUndoCount + 1, GetUndoCapacity());
    bModified = true;
    ++nChangeSerial;
}

bool LEdFile::EndModify(int32_t sPosition, int32_t nPreRoll)
{
    sCursor = sPosition;
    if (!LSettings::GetBool("Settings", "AutoPlaybackAfterEffects", true))
        return false;
    sCursor = static_cast<int32_t>(std::max<int64_t>(static_cast<int64_t>(sPosition) - nPreRoll, 0));
    return true;
}

void LEdFile::SwapState(UndoEntry& entry)
{
    LCutListAudio current(*pDoc);
    *pDoc = entry.doc;
    entry.doc = current;
    std::swap(bModified, entry.bModified);
    std::swap(sCursor, entry.sCursor);
    std::swap(sSelStart, entry.sSelStart);
    std::swap(sSelEnd, entry.sSelEnd);
    std::swap(sViewStart, entry.sViewStart);
    std::swap(sViewEnd, entry.sViewEnd);
    ++nChangeSerial;
}

bool LEdFile::Undo()
{
    if (nUndoCount == 0) {
        LTRACE("LEdFile::Undo() Undo called when not available");
        return false;
    }
    SwapState(ring[nUndoIndex]); // the entry now holds the state a redo brings back
    nUndoIndex = Prev(nUndoIndex);
    --nUndoCount;
    ++nRedoCount;
    return true;
}

bool LEdFile::Redo()
{
    if (nRedoCount == 0) {
        LTRACE("LEdFile::Redo() Redo called when not available");
        return false;
    }
    nUndoIndex = Next(nUndoIndex);
    SwapState(ring[nUndoIndex]); // and back: the entry is an undo entry again
    --nRedoCount;
    ++nUndoCount;
    return true;
}

void LEdFile::DropRedo()
{
    for (int i = 1; i <= nRedoCount; ++i) {
        UndoEntry& entry = ring[(nUndoIndex + i) % GetUndoCapacity()];
        entry.doc.Clear();
        entry.szLabel.clear();
    }
    nRedoCount = 0;
}

void LEdFile::SetUndoCapacity(int nLevels)
{
    nLevels = std::clamp(nLevels, 1, kMaxUndoLevels);
    if (nLevels == GetUndoCapacity())
        return;
    DropRedo();
    const int nKeep = std::min(nUndoCount, nLevels);
    std::vector<UndoEntry> newRing(static_cast<size_t>(nLevels));
    // The newest entry lands at the top of the new ring, the older ones below it.
    int nFrom = nUndoIndex;
    for (int i = 0; i < nKeep; ++i) {
        newRing[static_cast<size_t>(nKeep - 1 - i)] = std::move(ring[nFrom]);
        nFrom = Prev(nFrom);
    }
    ring = std::move(newRing); // the entries left behind release their references here
    nUndoCount = nKeep;
    nUndoIndex = nKeep > 0 ? nKeep - 1 : 0;
}

const std::string& LEdFile::GetUndoLabel() const
{
    return nUndoCount > 0 ? ring[nUndoIndex].szLabel : kNoLabel;
}

const std::string& LEdFile::GetRedoLabel() const
{
    return nRedoCount > 0 ? ring[Next(nUndoIndex)].szLabel : kNoLabel;
}

std::string LEdFile::GetUndoMenuText() const
{
    return "Undo " + GetUndoLabel() + "\tCtrl+Z";
}

std::string LEdFile::GetRedoMenuText() const
{
    return "Redo " + GetRedoLabel() + "\tCtrl+Y";
}

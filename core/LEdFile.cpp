#include "core/LEdFile.h"

#include <algorithm>

#include "core/LSettings.h"
#include "core/LTrace.h"

LEdFile::LEdFile() : pDoc(new LCutListAudio) {}

void LEdFile::StartModify(const std::string& szLabel)
{
    nUndoIndex = (nUndoIndex + 1) % kUndoLevels;
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
    bModified = true;
}

bool LEdFile::EndModify(int32_t sPosition, int32_t nPreRoll)
{
    sCursor = sPosition;
    if (!LSettings::GetBool("Settings", "AutoPlaybackAfterEffects", true))
        return false;
    sCursor = static_cast<int32_t>(std::max<int64_t>(static_cast<int64_t>(sPosition) - nPreRoll, 0));
    return true;
}

bool LEdFile::Undo()
{
    UndoEntry& entry = ring[nUndoIndex];
    if (entry.szLabel.empty()) {
        LTRACE("LEdFile::Undo() Undo called when not available");
        return false;
    }
    *pDoc = entry.doc;
    bModified = entry.bModified;
    sCursor = entry.sCursor;
    sSelStart = entry.sSelStart;
    sSelEnd = entry.sSelEnd;
    sViewStart = entry.sViewStart;
    sViewEnd = entry.sViewEnd;
    entry.doc.Clear();
    entry.szLabel.clear();
    nUndoIndex = (nUndoIndex + kUndoLevels - 1) % kUndoLevels;
    return true;
}

int LEdFile::GetUndoLevels() const
{
    int nLevels = 0;
    int n = nUndoIndex;
    while (nLevels < kUndoLevels && !ring[n].szLabel.empty()) {
        ++nLevels;
        n = (n + kUndoLevels - 1) % kUndoLevels;
    }
    return nLevels;
}

std::string LEdFile::GetUndoMenuText() const
{
    return "Undo " + GetUndoLabel() + "\tCtrl+Z";
}

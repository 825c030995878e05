// One open file's edit state: its document, modified flag, cursor, selection, visible range and
// its eight-deep undo ring. A snapshot is a copy of the cut list (references, not samples), so
// taking one costs the same however long the audio is. Undo only; there is no redo.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/LCutListAudio.h"

class LEdFile
{
public:
    static constexpr int kUndoLevels = 8;
    static constexpr size_t kMaxLabel = 259;

    LEdFile();
    LEdFile(const LEdFile&) = delete;
    LEdFile& operator=(const LEdFile&) = delete;

    // The same document object for the file's whole life: undo restores into it.
    LCutListAudio& GetDocument() { return *pDoc; }
    const LCutListAudioPtr& GetDocumentPtr() const { return pDoc; }

    bool IsModified() const { return bModified; }
    // Saving clears the flag; undoing the first edit after a save clears it again.
    void SetModified(bool bNewModified) { bModified = bNewModified; }

    int32_t GetCursor() const { return sCursor; }
    void SetCursor(int32_t s) { sCursor = s; }
    int32_t GetSelStart() const { return sSelStart; }
    int32_t GetSelEnd() const { return sSelEnd; }
    void SetSelection(int32_t sStart, int32_t sEnd)
    {
        sSelStart = sStart;
        sSelEnd = sEnd;
    }
    int32_t GetViewStart() const { return sViewStart; }
    int32_t GetViewEnd() const { return sViewEnd; }
    void SetView(int32_t sStart, int32_t sEnd)
    {
        sViewStart = sStart;
        sViewEnd = sEnd;
    }

    // Called just before an edit changes the audio: snapshots the state under the label (the
    // ninth snapshot discards the oldest) and marks the file modified. Labels are cut to 259
    // characters; an empty label makes an entry that cannot be undone.
    void StartModify(const std::string& szLabel);
    // Called just after: the cursor goes to sPosition. Returns true when "AutoPlaybackAfterEffects"
    // ("Settings", default on) asks to play the result; the cursor then stands nPreRoll frames
    // earlier (not before 0) and the caller plays from GetCursor().
    bool EndModify(int32_t sPosition, int32_t nPreRoll);
    // Restores the newest snapshot; false (and nothing changes) when none is available.
    bool Undo();

    bool IsUndoAvailable() const { return !ring[nUndoIndex].szLabel.empty(); }
    int GetUndoLevels() const;
    // The label of the newest snapshot, empty when none.
    const std::string& GetUndoLabel() const { return ring[nUndoIndex].szLabel; }
    // "Undo %s\tCtrl+Z" with that label ("Undo \tCtrl+Z" when none).
    std::string GetUndoMenuText() const;

private:
    struct UndoEntry
    {
        LCutListAudio doc;
        bool bModified = false;
        int32_t sCursor = 0;
        int32_t sSelStart = 0;
        int32_t sSelEnd = 0;
        int32_t sViewStart = 0;
        int32_t sViewEnd = 0;
        std::string szLabel;
    };

    LCutListAudioPtr pDoc;
    bool bModified = false;
    int32_t sCursor = 0;
    int32_t sSelStart = 0;
    int32_t sSelEnd = 0;
    int32_t sViewStart = 0;
    int32_t sViewEnd = 0;
    std::array<UndoEntry, kUndoLevels> ring;
    int nUndoIndex = 0;
};

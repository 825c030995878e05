// One open file's edit state: its document, modified flag, cursor, selection, visible range and
// its ring of snapshots for undo and redo. A snapshot is a copy of the cut list (references, not
// samples), so taking one costs the same however long the audio is, and the ring can be deep.
//
// The ring holds the undo side behind the newest entry and the redo side ahead of it: undoing
// swaps the file's state with the entry (which then holds the state to redo), redoing swaps it
// back. A new edit drops the redo side, releasing its references.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"

class LEdFile
{
public:
    static constexpr int kUndoLevels = 8;      // the default depth
    static constexpr int kMaxUndoLevels = 100; // the deepest "UndoLevels" may ask for
    static constexpr size_t kMaxLabel = 259;

    // The depth comes from "UndoLevels" in "Settings" (default 8, 1 to 100).
    LEdFile();
    LEdFile(const LEdFile&) = delete;
    LEdFile& operator=(const LEdFile&) = delete;

    // The depth the setting asks for, clamped to 1..100.
    static int ConfiguredUndoLevels();

    // The same document object for the file's whole life: undo restores into it.
    LCutListAudio& GetDocument() { return *pDoc; }
    const LCutListAudio& GetDocument() const { return *pDoc; }
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

    // Called just before an edit changes the audio: drops the redo side, snapshots the state
    // under the label (a full ring discards its oldest entry) and marks the file modified.
    // Labels are cut to 259 characters; an empty label makes an entry that cannot be undone.
    void StartModify(const std::string& szLabel);
    // Called just after: the cursor goes to sPosition. Returns true when "AutoPlaybackAfterEffects"
    // ("Settings", default on) asks to play the result; the cursor then stands nPreRoll frames
    // earlier (not before 0) and the caller plays from GetCursor().
    bool EndModify(int32_t sPosition, int32_t nPreRoll);
    // Restores the newest snapshot; false (and nothing changes) when none is available.
    bool Undo();
    // Restores the state the last undo left; false (and nothing changes) when none is available.
    bool Redo();

    bool IsUndoAvailable() const { return nUndoCount > 0; }
    bool IsRedoAvailable() const { return nRedoCount > 0; }
    int GetUndoLevels() const { return nUndoCount; }
    int GetRedoLevels() const { return nRedoCount; }
    // The ring's depth: undo and redo levels together never exceed it.
    int GetUndoCapacity() const { return static_cast<int>(ring.size()); }
    // A new depth (clamped to 1..100) keeps the newest undo levels that fit and drops the redo side.
    void SetUndoCapacity(int nLevels);
    // The label of the edit an undo (a redo) would take back (bring back); empty when none.
    const std::string& GetUndoLabel() const;
    const std::string& GetRedoLabel() const;
    // "Undo %s\tCtrl+Z" with that label ("Undo \tCtrl+Z" when none); "Redo %s\tCtrl+Y" alike.
    std::string GetUndoMenuText() const;
    std::string GetRedoMenuText() const;
    // Grows with every edit, undo and redo: equal numbers mean the same audio.
    uint64_t GetChangeSerial() const { return nChangeSerial; }

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

    int Next(int n) const { return (n + 1) % GetUndoCapacity(); }
    int Prev(int n) const { return (n + GetUndoCapacity() - 1) % GetUndoCapacity(); }
    // Exchanges the file's document and positions with the entry's.
    void SwapState(UndoEntry& entry);
    void DropRedo();

    LCutListAudioPtr pDoc;
    bool bModified = false;
    int32_t sCursor = 0;
    int32_t sSelStart = 0;
    int32_t sSelEnd = 0;
    int32_t sViewStart = 0;
    int32_t sViewEnd = 0;
    std::vector<UndoEntry> ring;
    int nUndoIndex = 0; // the newest undo entry; redo entries follow it
    int nUndoCount = 0;
    int nRedoCount = 0;
    uint64_t nChangeSerial = 0;
};

// The Edit menu: undo and redo, the clipboards, selection, trims, silence, insertion, repeat
// and copy to new. Every change of the audio is bracketed by the frame's StartModifyCurrentFile
// and EndModifyCurrentFile.
#pragma once

#include <string>

#include "core/LCutListAudio.h"
#include "ui/LFrame.h"

class LEditCommands : public LCommandController
{
public:
    explicit LEditCommands(LFrame& frame) : frame(frame) {}
    bool Command(int nId) override;

    // Inserts a document at a position of the current file under a label.
    void InsertDocument(const LCutListAudio& other, int32_t sAt, const std::string& szLabel);
    // Inserts at the cursor, or replaces the selection, under the label "Paste".
    void PasteDocument(const LCutListAudio& other);
    // A document read from a file, converted to the given rate and channels; null (the user
    // told why) when it cannot be read.
    LCutListAudioPtr ReadFileConformed(const std::string& szPath, int32_t nRate, uint8_t nChans);
    LCutListAudioPtr ConformDocument(const LCutListAudio& other, int32_t nRate, uint8_t nChans);

private:
    // Undo or redo on the current file, with the window and menus following.
    void StepHistory(bool bRedo);
    void CmCut();
    void CmCopy();
    void CmPaste();
    void CmPasteFromClipboard();
    void CmDelete();
    void CmSelectAll();
    void CmSelectToStart();
    void CmSelectToEnd();
    void CmTrim();
    void CmTrimStart();
    void CmTrimEnd();
    void CmSilence();
    void CmInsertSilence(int nWhere);
    void CmInsertFile(int nWhere);
    void CmRepeatLoop();
    void CmCopyToNew();

    LFrame& frame;
};

// What the command controllers and the transport see of the editor's frame: its open files and
// the current one, the bracket around every change of audio, the shared clipboard and transport,
// and the refreshing of menus and time fields.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class LCutListAudio;
class LEdFile;
class LEdFileWindow;
class LTransport;
class QWidget;

class LFrame
{
public:
    // The parent of the controllers' dialogs and message boxes.
    virtual QWidget* GetWidget() = 0;

    // The file whose window is active; null when none is open.
    virtual LEdFileWindow* GetCurrentFileWindow() const = 0;
    virtual LEdFile* GetCurrentFile() const = 0;
    virtual std::vector<LEdFileWindow*> GetFileWindows() const = 0;
    // The selection of the current file; false when there is no file or no selection.
    virtual bool GetSelection(int32_t& sStart, int32_t& sEnd) const = 0;
    // Gives a new document its own window; the frame takes ownership.
    virtual LEdFileWindow* AddFileToList(std::unique_ptr<LEdFile> pFile, const std::string& szPath,
                                         const std::string& szName) = 0;
    // "Untitled %d" with the next number.
    virtual std::string NextUntitledName() = 0;

    // Bracket every change of the current file's audio.
    virtual void StartModifyCurrentFile(const std::string& szLabel) = 0;
    virtual void EndModifyCurrentFile(int32_t sPosition, int32_t nPreRoll) = 0;
    // A change the project and the recovery project must follow.
    virtual void NoteChange() = 0;

    virtual LTransport& GetTransport() = 0;
    // The editor's own clipboard, shared by every file.
    virtual LCutListAudio& GetClipboardAudio() = 0;

    virtual void UpdateUndoMenuItem() = 0;
    virtual void UpdateMenuStates() = 0;
    virtual void UpdateTimeFields() = 0;
    // The current file's selection was changed by a command.
    virtual void OnFileSelectionChanged() = 0;

protected:
    ~LFrame() = default;
};

// A controller of one menu's commands.
class LCommandController
{
public:
    virtual ~LCommandController() = default;
    // Runs the command when it is one of this controller's; false otherwise.
    virtual bool Command(int nId) = 0;
};

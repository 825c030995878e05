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
class LRecentFiles;
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
    // The open window of a file, by path; null when it is not open.
    virtual LEdFileWindow* FindWindowByPath(const std::string& szPath) const = 0;
    // Brings a file window to the front (restoring it when minimized) and makes it current.
    virtual void ActivateFileWindow(LEdFileWindow* pWindow) = 0;
    virtual void CloseFileWindow(LEdFileWindow* pWindow) = 0;
    // Asks about every unsaved file, then closes them all; false when the user cancels.
    virtual bool CloseAllFiles() = 0;
    // Opens a file as the File menu does (see LFileCommands::LoadFile).
    virtual bool LoadFileWindow(const std::string& szPath) = 0;
    // Makes a file window the active one, as a click on it would.
    virtual void SetActiveFileWindow(LEdFileWindow* pWindow) = 0;
    // Brings the menus, caption, fields and marks up to the current file after windows changed.
    virtual void FollowCurrentFile() = 0;
    // "Untitled %d" with the next number.
    virtual std::string NextUntitledName() = 0;

    // Bracket every change of the current file's audio.
    virtual void StartModifyCurrentFile(const std::string& szLabel) = 0;
    virtual void EndModifyCurrentFile(int32_t sPosition, int32_t nPreRoll) = 0;
    // A change the project and the recovery project must follow.
    virtual void NoteChange() = 0;

    // The recent-file list: a file opened or saved goes to its top; one that is gone leaves it.
    virtual const LRecentFiles& GetRecentFiles() const = 0;
    virtual void NoteRecentFile(const std::string& szPath) = 0;
    virtual void ForgetRecentFile(const std::string& szPath) = 0;

    virtual LTransport& GetTransport() = 0;
    // The editor's own clipboard, shared by every file.
    virtual LCutListAudio& GetClipboardAudio() = 0;

    virtual void SetWindowCaption() = 0;
    // Gives every file window its bookmarks and regions to draw.
    virtual void UpdateMarks() = 0;
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

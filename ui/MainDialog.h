// The editor's frame: an MDI area with one file window per open file, the menus with every
// command, the toolbar, the transport bar with its time fields and the status line. It keeps
// the windows and dispatches each command to the controller of its menu (LEditCommands,
// LControlCommands, LToolsCommands, ...), which reaches the frame through LFrame; when a
// command is available is the rule table's (LCommandRules) to say.
#pragma once

#include <QMainWindow>

#include <map>
#include <set>
#include <vector>
#include <memory>
#include <string>

#include "core/LCutListAudio.h"
#include "project/LEdBookMark.h"
#include "project/LEdRegion.h"
#include "ui/LFrame.h"
#include "ui/LRecentFiles.h"

struct LCommandState;
class LEdFile;
class LEdProject;
class LRecoveryKeeper;
class QDialog;
class LEdFileWindow;
class LEditCommands;
class LEffectsCommands;
class LFileCommands;
class LProjectCommands;
class LQtProgressHostFactory;
class LTimeFields;
class LTransport;
class LTransportBar;
class QAction;
class QIcon;
class QRect;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;

class MainDialog : public QMainWindow, public LFrame
{
    Q_OBJECT
public:
    explicit MainDialog(QWidget* pParent = nullptr);
    ~MainDialog() override;

    // Runs a command by number, as its menu item, accelerator or toolbar button would.
    // False when the command is unknown or not available now.
    bool Command(int nId);
    QAction* GetAction(int nId) const;
    QMdiArea* GetMdiArea() const { return pMdi; }
    LTransport& GetTransport() override { return *pTransport; }
    QWidget* GetWidget() override { return this; }
    LCutListAudio& GetClipboardAudio() override { return *pClipboard; }

    // The file whose window is active; null when none is open.
    LEdFileWindow* GetCurrentFileWindow() const override;
    LEdFile* GetCurrentFile() const override;
    std::vector<LEdFileWindow*> GetFileWindows() const override;
    // The selection of the current file; false when there is no file or no selection.
    bool GetSelection(int32_t& sStart, int32_t& sEnd) const override;

    // Bracket every change of the current file's audio (see LEdFile::StartModify/EndModify).
    void StartModifyCurrentFile(const std::string& szLabel) override;
    void EndModifyCurrentFile(int32_t sPosition, int32_t nPreRoll) override;
    void UpdateUndoMenuItem() override;
    // Enables and disables the commands for the current state.
    void UpdateMenuStates() override;

    // Opens a file in a new window (the progress dialog shows while it loads). False, with
    // the user told why, when it cannot be read. A file already open has its window activated.
    bool LoadFile(const std::string& szPath);
    // The open window of a file, by path; null when it is not open.
    LEdFileWindow* FindWindowByPath(const std::string& szPath) const override;
    // Brings a file window to the front (restoring it when minimized) and makes it current.
    void ActivateFileWindow(LEdFileWindow* pWindow) override;
    // The program's icon, shown by the frame and every file window.
    static QIcon AppIcon();
    // Gives a new document its own window; the frame takes ownership.
    LEdFileWindow* AddFileToList(std::unique_ptr<LEdFile> pFile, const std::string& szPath,
                                 const std::string& szName) override;
    void CloseFileWindow(LEdFileWindow* pWindow) override;

    // The effect commands; filled in by MainDialogEffects.cpp.

    // Runs a file name handed over by a second start of the program.
    void EvLoad(const QString& szPath);
    // Takes the files of a second start (none: only comes to the front). They are loaded later,
    // from the event loop and one at a time, never inside the signal that brought them: a load
    // runs the progress dialog's event loop, in which more hand-overs may arrive.
    void HandOver(const QStringList& paths);
    // Runs a command from the event loop: what menus, toolbars and buttons call.
    void QueueCommand(int nId);

    // "Untitled %d" with the next number.
    std::string NextUntitledName() override { return "Untitled " + std::to_string(++nUntitled); }
    const LRecentFiles& GetRecentFiles() const override { return recent; }
    void NoteRecentFile(const std::string& szPath) override;
    void ForgetRecentFile(const std::string& szPath) override;
    LCutListAudio* GetClipboard() const { return pClipboard.Get(); }
    void SetWindowCaption() override;
    void UpdateTimeFields() override;
    void OnFileSelectionChanged() override;

    // Projects, bookmarks and regions: the project controller's, here for the lists and scripts.
    bool OpenProject(const std::string& szPath) override;
    bool SaveProjectTo(const std::string& szPath);
    bool CloseProject();
    LCutListAudioPtr AssembleRegions();
    const std::string& GetProjectPath() const;
    std::vector<LEdBookMark>& GetBookmarks();
    std::vector<LEdRegion>& GetRegions();
    bool GoToBookmark(size_t nIndex);
    bool GoToRegion(size_t nIndex);
    void BookmarksChanged(const std::string& szKey);
    void RegionsChanged();
    // Gives every file window its bookmarks and regions to draw.
    void UpdateMarks() override;
    // What bookmarks and regions call a file: its path, or its name while it has none.
    static std::string FileKey(const LEdFileWindow* pWindow);
    std::string FileKeyOf(const LEdFileWindow* pWindow) const override { return FileKey(pWindow); }
    void RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey) override;
    void SetActiveFileWindow(LEdFileWindow* pWindow) override;
    void FollowCurrentFile() override;
    bool LoadFileWindow(const std::string& szPath) override { return LoadFile(szPath); }
    bool CloseAllFiles() override;

    // Recovery after a crash: offers the documents of sessions that ended abnormally, then keeps
    // a recovery project of this one, rewritten after every finished change.
    void StartRecovery();
    void WriteRecovery();
    // A change the project and the recovery project must follow.
    void NoteChange() override;

signals:
    void CurrentFileChanged();

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // MainDialogMenus.cpp
    void BuildMenus();
    QAction* AddCommand(QMenu* pMenu, int nId);
    void BuildToolBar();
    void RebuildRecentMenu();
    void RebuildWindowMenu();
    // Rebuilds it from the event loop, once however often asked.
    void ScheduleWindowMenu();
    LCommandState CommandState() const;
    bool IsCommandEnabled(int nId, const LCommandState& state) const;

    // MainDialogFile.cpp
    // Where a new file window goes: inside the area, cascading from the newest window.
    QRect NextChildPlace(QMdiSubWindow* pNew) const;

    // The lists of bookmarks and regions, dialogs of the frame's.
    void ShowMarkList(int nId);

    // The system clipboard's wave data as a file (the effects' paste mix reads it).

    // MainDialogWindow.cpp
    bool CmWindow(int nId);
    void ShowSpectrumWindow();
    void OnSubWindowActivated(QMdiSubWindow* pSub);
    void OnFileScroll(int32_t sTarget);
    // A time typed into a selection field: moves the selection, or says why not.
    void OnTimeTyped(int nField, const QString& szText);
    void UpdateStatusLine();
    // The pop-up menu of the waveform: the Edit commands, the Effects, bookmark and region.
    void TrackWaveWindowMenu(const QPoint& ptGlobal);

    QMdiArea* pMdi = nullptr;
    std::map<int, QAction*> mapActions;
    QMenu* pFileMenu = nullptr;
    QMenu* pEditMenu = nullptr;
    QMenu* pWindowMenu = nullptr;
    QMenu* pRecentMenuAnchor = nullptr;
    QAction* pRecentSeparator = nullptr;
    std::vector<QAction*> vRecentActions;
    std::vector<QAction*> vWindowActions;
    QAction* pWindowSeparator = nullptr;
    bool bWindowMenuQueued = false;
    LTransportBar* pTransportBar = nullptr;
    LTimeFields* pTimeFields = nullptr;
    QLabel* pStatusFormat = nullptr;
    std::unique_ptr<LTransport> pTransport;
    // The menus' controllers, asked in turn for each command; the Edit one also serves others.
    std::vector<std::unique_ptr<LCommandController>> vControllers;
    LEditCommands* pEdit = nullptr;
    LEffectsCommands* pEffects = nullptr;
    LFileCommands* pFiles = nullptr;
    LProjectCommands* pProject = nullptr;
    std::unique_ptr<LQtProgressHostFactory> pProgressFactory;
    QDialog* pHelp = nullptr; // a child of the frame, made when first asked for
    LRecentFiles recent;
    LCutListAudioPtr pClipboard;
    int nUntitled = 0;
    bool bClosing = false;
    QStringList lstHandedOver;
    bool bLoadingHandedOver = false;
    std::unique_ptr<LRecoveryKeeper> pRecovery;
};

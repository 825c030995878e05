// The editor's frame: an MDI area with one file window per open file, the menus with every
// command, the toolbar, the transport bar with its time fields and the status line. It keeps
// the windows and dispatches each command to the controller of its menu (LEditCommands,
// LWindowCommands, LProjectCommands, ...), which reaches the frame through LFrame; when a
// command is available is the rule table's (LCommandRules) to say.
#pragma once

#include <QMainWindow>

#include <memory>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "ui/LFrame.h"
#include "ui/LRecentFiles.h"

struct LCommandState;
class LEdFile;
class LEdFileWindow;
class LEditCommands;
class LEffectsCommands;
class LFileCommands;
class LFrameMenus;
class LMarkCommands;
class LProjectCommands;
class LQtProgressHostFactory;
class LRecoveryKeeper;
class LTimeFields;
class LTransport;
class LTransportBar;
class QAction;
class QIcon;
class QLabel;
class QMdiArea;
class QMdiSubWindow;

class MainDialog : public QMainWindow, public LFrame
{
    Q_OBJECT
public:
    explicit MainDialog(QWidget* pParent = nullptr);
    ~MainDialog() override;

    // Runs a command by number, as its menu item, accelerator or toolbar button would.
    // False when the command is unknown or not available now.
    bool Command(int nId);
    // Runs a command from the event loop: what menus, toolbars and buttons call.
    void QueueCommand(int nId);
    QAction* GetAction(int nId) const;
    QMdiArea* GetMdiArea() const { return pMdi; }
    LTransport& GetTransport() override { return *pTransport; }
    QWidget* GetWidget() override { return this; }
    LCutListAudio& GetClipboardAudio() override { return *pClipboard; }
    LCutListAudio* GetClipboard() const { return pClipboard.Get(); }
    LProjectCommands& GetProject() const { return *pProject; }
    // Bookmarks and regions.
    LMarkCommands& GetMarks() const { return *pMarks; }
    // The program's icon, shown by the frame and every file window.
    static QIcon AppIcon();

    LEdFileWindow* GetCurrentFileWindow() const override;
    LEdFile* GetCurrentFile() const override;
    std::vector<LEdFileWindow*> GetFileWindows() const override;
    bool GetSelection(int32_t& sStart, int32_t& sEnd) const override;
    void StartModifyCurrentFile(const std::string& szLabel) override;
    void EndModifyCurrentFile(int32_t sPosition, int32_t nPreRoll) override;
    void NoteChange() override;
    void UpdateUndoMenuItem() override;
    void UpdateMenuStates() override;
    void UpdateTimeFields() override;
    void UpdateMarks() override;
    void SetWindowCaption() override;
    void OnFileSelectionChanged() override;

    // Opens a file in a new window (the progress dialog shows while it loads). False, with
    // the user told why, when it cannot be read. A file already open has its window activated.
    bool LoadFile(const std::string& szPath);
    bool LoadFileWindow(const std::string& szPath) override { return LoadFile(szPath); }
    LEdFileWindow* AddFileToList(std::unique_ptr<LEdFile> pFile, const std::string& szPath,
                                 const std::string& szName) override;
    LEdFileWindow* FindWindowByPath(const std::string& szPath) const override;
    void ActivateFileWindow(LEdFileWindow* pWindow) override;
    void SetActiveFileWindow(LEdFileWindow* pWindow) override;
    void FollowCurrentFile() override;
    void CloseFileWindow(LEdFileWindow* pWindow) override;
    bool CloseAllFiles() override;
    std::string NextUntitledName() override { return "Untitled " + std::to_string(++nUntitled); }
    const LRecentFiles& GetRecentFiles() const override { return recent; }
    void NoteRecentFile(const std::string& szPath) override;
    void ForgetRecentFile(const std::string& szPath) override;

    // Takes the files of a second start (none: only comes to the front). They are loaded later,
    // from the event loop and one at a time, never inside the signal that brought them: a load
    // runs the progress dialog's event loop, in which more hand-overs may arrive.
    void HandOver(const QStringList& paths);
    // Recovery after a crash: offers the documents of sessions that ended abnormally, then keeps
    // a recovery project of this one, rewritten after every finished change.
    void StartRecovery();

signals:
    void CurrentFileChanged();

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    // A file window closed by its own title bar asks about unsaved changes first.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void MakeControllers();
    void AddTransportBars();
    LCommandState CommandState() const;
    bool IsCommandEnabled(int nId, const LCommandState& state) const;
    // Brings a file handed over by a second start to the front, loaded.
    void EvLoad(const QString& szPath);
    // Where a new file window goes: inside the area, cascading from the newest window.
    QRect NextChildPlace(QMdiSubWindow* pNew) const;
    // The frequency analysis is a window of the frame's own, following the current file.
    void ShowSpectrumWindow();
    void OnSubWindowActivated();
    void OnFileScroll(int32_t sTarget);
    void UpdateStatusLine();

    QMdiArea* pMdi = nullptr;
    LFrameMenus* pMenus = nullptr;
    LTransportBar* pTransportBar = nullptr;
    LTimeFields* pTimeFields = nullptr;
    QLabel* pStatusFormat = nullptr;
    std::unique_ptr<LTransport> pTransport;
    // The menus' controllers, asked in turn for each command.
    std::vector<std::unique_ptr<LCommandController>> vControllers;
    LEffectsCommands* pEffects = nullptr;
    LFileCommands* pFiles = nullptr;
    LProjectCommands* pProject = nullptr;
    LMarkCommands* pMarks = nullptr;
    std::unique_ptr<LQtProgressHostFactory> pProgressFactory;
    LRecentFiles recent;
    LCutListAudioPtr pClipboard;
    int nUntitled = 0;
    QStringList lstHandedOver;
    bool bLoadingHandedOver = false;
    std::unique_ptr<LRecoveryKeeper> pRecovery;
};

// The frame's menus and the lists that live in them (recent files, open windows), the toolbar's
// file buttons and the waveform's pop-up menu. Every item is an action carrying its command
// number; triggering one hands the number to the frame, which runs it from the event loop.
#pragma once

#include <QObject>

#include <functional>
#include <map>
#include <vector>

struct LCommandState;
class LEdFile;
class LEdFileWindow;
class LFrame;
class QAction;
class QMainWindow;
class QMdiArea;
class QMenu;
class QPoint;

class LFrameMenus : public QObject
{
    Q_OBJECT
public:
    LFrameMenus(QMainWindow& main, LFrame& frame, QMdiArea& mdi, std::function<void(int)> fnCommand);

    QAction* GetAction(int nId) const;
    // Enables each command as bEnabled says and ticks the checkable ones for the current window.
    void ShowStates(const std::function<bool(int)>& bEnabled, const LEdFileWindow* pWindow, int nPlaySpeed);
    // The Undo and Redo items name what they would undo or redo.
    void ShowUndo(const LEdFile* pFile);
    void RebuildRecentMenu();
    // Rebuilds the Window menu's list from the event loop, once however often asked.
    void ScheduleWindowMenu();
    // The pop-up menu of the waveform: the Edit commands, the Effects, bookmark and region.
    void TrackWaveWindowMenu(const QPoint& ptGlobal);

private:
    void BuildMenus();
    QAction* AddCommand(QMenu* pMenu, int nId);
    void AddFileTools();
    void RebuildWindowMenu();

    QMainWindow& main;
    LFrame& frame;
    QMdiArea& mdi;
    std::function<void(int)> fnCommand;
    std::map<int, QAction*> mapActions;
    QMenu* pFileMenu = nullptr;
    QMenu* pWindowMenu = nullptr;
    QAction* pRecentSeparator = nullptr;
    std::vector<QAction*> vRecentActions;
    std::vector<QAction*> vWindowActions;
    bool bWindowMenuQueued = false;
};

#include "ui/LFrameMenus.h"

#include <QAction>
#include <QTimer>
#include <QActionGroup>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QStyle>
#include <QToolBar>

#include "core/LEdFile.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectCatalog.h"
#include "ui/LCommandIds.h"
#include "ui/LCommandKeys.h"
#include "ui/LCommandTable.h"
#include "ui/LEdFileWindow.h"
#include "ui/LFrame.h"
#include "ui/LMenuLayout.h"
#include "ui/LRecentFiles.h"

namespace {
// Keys the frame follows itself (held keys, the window manager's close) get no shortcut.
bool HandledAsHeldKey(int nId)
{
    return nId == CmRewindId || nId == CmFastForwardId || nId == CmExitId || nId == CmScrubId;
}

using LMenuLayout::kEndSubmenu;
using LMenuLayout::kSeparator;
using LMenuLayout::kSubmenu;
} // namespace

LFrameMenus::LFrameMenus(QMainWindow& mainWindow, LFrame& owner, QMdiArea& area, std::function<void(int)> fnRun)
    : QObject(&mainWindow), main(mainWindow), frame(owner), mdi(area), fnCommand(std::move(fnRun))
{
    BuildMenus();
    AddFileTools();
}

QAction* LFrameMenus::GetAction(int nId) const
{
    auto it = mapActions.find(nId);
    return it == mapActions.end() ? nullptr : it->second;
}

QAction* LFrameMenus::AddCommand(QMenu* pMenu, int nId)
{
    const LCommandInfo* pInfo = LCommandTable::Find(nId);
    if (!pInfo) {
        LTRACE("LFrameMenus::AddCommand unknown command %d", nId);
        return nullptr;
    }
    auto* pAction = new QAction(LCommandTable::MenuText(nId), &main);
    pAction->setObjectName(QString("cmd%1").arg(nId));
    pAction->setStatusTip(LCommandTable::Hint(nId));
    pAction->setData(nId);
    if (!HandledAsHeldKey(nId))
        pAction->setShortcuts(LCommandKeys::Of(*pInfo));
    connect(pAction, &QAction::triggered, this, [this, nId] { fnCommand(nId); });
    if (pMenu)
        pMenu->addAction(pAction);
    mapActions[nId] = pAction;
    return pAction;
}

void LFrameMenus::BuildMenus()
{
    const std::vector<LMenuDef>& menus = LMenuLayout::Menus();
    for (const LMenuDef& m : menus) {
        QMenu* pTop = main.menuBar()->addMenu(tr(m.szTitle));
        QMenu* pMenu = pTop;
        for (const LMenuItem& item : m.vItems) {
            if (item.nId == kSeparator)
                pMenu->addSeparator();
            else if (item.nId == kSubmenu)
                pMenu = pTop->addMenu(tr(item.szSubmenu));
            else if (item.nId == kEndSubmenu)
                pMenu = pTop;
            else
                AddCommand(pMenu, item.nId);
        }
        connect(pTop, &QMenu::aboutToShow, this, [this] { frame.UpdateMenuStates(); });
        if (m.szTitle == menus[0].szTitle)
            pFileMenu = pTop;
        else if (m.szTitle == menus[6].szTitle)
            pWindowMenu = pTop;
    }
    // The recent files sit between Settings and Exit.
    pRecentSeparator = pFileMenu->addSeparator();
    pFileMenu->addSeparator();
    AddCommand(pFileMenu, CmExitId);
    RebuildRecentMenu();
    pWindowMenu->addSeparator();
    connect(pWindowMenu, &QMenu::aboutToShow, this, &LFrameMenus::RebuildWindowMenu);

    auto* pSpeeds = new QActionGroup(this);
    for (int nId : {CmPlaySlowId, CmPlayNormalId, CmPlayFastId}) {
        GetAction(nId)->setCheckable(true);
        pSpeeds->addAction(GetAction(nId));
    }
    auto* pModes = new QActionGroup(this);
    for (int nId : {CmDisplayPosNegId, CmDisplayLeftRightId}) {
        GetAction(nId)->setCheckable(true);
        pModes->addAction(GetAction(nId));
    }
    GetAction(CmVerticalZoomId)->setCheckable(true);
    GetAction(CmSpectrogramId)->setCheckable(true);
    AddCommand(nullptr, CmScrubId);
}

void LFrameMenus::AddFileTools()
{
    QToolBar* pTools = main.addToolBar(tr("Toolbar"));
    pTools->setObjectName("ToolBar");
    QStyle* pStyle = main.style();
    struct Tool
    {
        int nId;
        QStyle::StandardPixmap icon;
        const char* szTip;
    };
    const Tool tools[] = {
        {CmNewId, QStyle::SP_FileIcon, "New File"},
        {CmOpenId, QStyle::SP_DialogOpenButton, "Open File"},
        {CmSaveId, QStyle::SP_DialogSaveButton, "Save File"},
        {CmUndoId, QStyle::SP_ArrowBack, "Undo (Ctrl+Z)"},
        {CmRedoId, QStyle::SP_ArrowForward, "Redo (Ctrl+Y)"},
    };
    for (const Tool& t : tools) {
        QAction* pAction = GetAction(t.nId);
        pAction->setIcon(pStyle->standardIcon(t.icon));
        pAction->setToolTip(tr(t.szTip));
        pTools->addAction(pAction);
    }
}

void LFrameMenus::ShowStates(const std::function<bool(int)>& bEnabled, const LEdFileWindow* pWindow, int nPlaySpeed)
{
    for (auto& [nId, pAction] : mapActions)
        pAction->setEnabled(bEnabled(nId));
    const struct
    {
        int nId;
        bool bChecked;
    } checks[] = {
        {CmVerticalZoomId, pWindow && pWindow->IsVerticalZoom()},
        {CmDisplayPosNegId, !pWindow || pWindow->GetDisplayMode() == 0},
        {CmDisplayLeftRightId, pWindow && pWindow->GetDisplayMode() == 1},
        {CmSpectrogramId, pWindow && pWindow->IsSpectrogram()},
        {CmPlaySlowId, nPlaySpeed == 0},
        {CmPlayNormalId, nPlaySpeed == 1},
        {CmPlayFastId, nPlaySpeed == 2},
    };
    for (const auto& c : checks)
        if (QAction* p = GetAction(c.nId))
            p->setChecked(c.bChecked);
}

void LFrameMenus::ShowUndo(const LEdFile* pFile)
{
    if (QAction* pUndo = GetAction(CmUndoId)) {
        pUndo->setText(QString::fromStdString(pFile ? pFile->GetUndoMenuText() : std::string("Undo \tCtrl+Z")));
        pUndo->setEnabled(pFile && pFile->IsUndoAvailable());
    }
    if (QAction* pRedo = GetAction(CmRedoId)) {
        pRedo->setText(QString::fromStdString(pFile ? pFile->GetRedoMenuText() : std::string("Redo \tCtrl+Y")));
        pRedo->setEnabled(pFile && pFile->IsRedoAvailable());
    }
}

void LFrameMenus::RebuildRecentMenu()
{
    for (QAction* p : vRecentActions) {
        mapActions.erase(p->data().toInt());
        delete p;
    }
    vRecentActions.clear();
    const auto& entries = frame.GetRecentFiles().GetEntries();
    for (size_t i = 0; i < entries.size(); ++i) {
        const int nId = CmRecentFirstId + static_cast<int>(i);
        auto* pAction = new QAction(QString("&%1. %2").arg(i + 1).arg(QString::fromStdString(entries[i].szPath)), &main);
        pAction->setObjectName(QString("cmd%1").arg(nId));
        pAction->setData(nId);
        pAction->setStatusTip(tr("Opens this file."));
        connect(pAction, &QAction::triggered, this, [this, nId] { fnCommand(nId); });
        pFileMenu->insertAction(pRecentSeparator, pAction);
        vRecentActions.push_back(pAction);
        mapActions[nId] = pAction;
    }
}

void LFrameMenus::ScheduleWindowMenu()
{
    // A window that is going may still be in the area's list while its signals run.
    if (bWindowMenuQueued)
        return;
    bWindowMenuQueued = true;
    QTimer::singleShot(0, this, [this] {
        bWindowMenuQueued = false;
        RebuildWindowMenu();
    });
}

void LFrameMenus::RebuildWindowMenu()
{
    // Rebuilt whenever a window comes, goes, is renamed or activated, perhaps from an item's own
    // signal: the old items go later.
    for (QAction* p : vWindowActions) {
        pWindowMenu->removeAction(p);
        p->deleteLater();
    }
    vWindowActions.clear();
    const QList<QMdiSubWindow*> subs = mdi.subWindowList(QMdiArea::CreationOrder);
    int nItem = 0;
    for (QMdiSubWindow* pSub : subs) {
        auto* pWindow = qobject_cast<LEdFileWindow*>(pSub->widget());
        if (!pWindow)
            continue;
        ++nItem;
        auto* pAction = pWindowMenu->addAction(QString("&%1 %2").arg(nItem).arg(pSub->windowTitle()));
        pAction->setObjectName(QString("window%1").arg(nItem));
        pAction->setStatusTip(tr("Activates this window."));
        pAction->setCheckable(true);
        pAction->setChecked(pSub == mdi.currentSubWindow());
        QPointer<LEdFileWindow> pGuard(pWindow);
        connect(pAction, &QAction::triggered, this, [this, pGuard] {
            if (pGuard)
                frame.ActivateFileWindow(pGuard);
        });
        vWindowActions.push_back(pAction);
    }
}

void LFrameMenus::TrackWaveWindowMenu(const QPoint& ptGlobal)
{
    QMenu menu(&main);
    const auto addItems = [this](QMenu& to, const std::vector<int>& vIds) {
        for (int nId : vIds) {
            if (nId == 0)
                to.addSeparator();
            else if (QAction* p = GetAction(nId))
                to.addAction(p);
        }
    };
    addItems(menu, {CmUndoId, CmRedoId, 0, CmCutId, CmCopyId, CmPasteId, CmPasteFromClipboardId, CmPasteMixId,
                    CmDeleteId, 0, CmSelectAllId, CmSelectToStartId, CmSelectToEndId, 0, CmTrimId, CmTrimStartId,
                    CmTrimEndId, CmSilenceId, CmRepeatLoopId, CmCopyToNewId});
    addItems(*menu.addMenu(tr("Effects")), LEffectCatalog::MenuCommands("Effects"));
    addItems(menu, {0, CmSetBookmarkId, CmAddRegionId});
    frame.UpdateMenuStates();
    menu.exec(ptGlobal);
}

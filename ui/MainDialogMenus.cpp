// The menus, the toolbar and the lists that live in menus (recent files, open windows).
#include <QAction>
#include <QTimer>
#include <QActionGroup>
#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPointer>
#include <QStyle>
#include <QToolBar>

#include "core/LTrace.h"
#include "ui/LCommandIds.h"
#include "ui/LCommandKeys.h"
#include "ui/LCommandTable.h"
#include "ui/LEdFileWindow.h"
#include "ui/LMenuLayout.h"
#include "ui/LTimeFields.h"
#include "ui/LTransport.h"
#include "ui/LTransportBar.h"
#include "ui/MainDialog.h"

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

QAction* MainDialog::AddCommand(QMenu* pMenu, int nId)
{
    const LCommandInfo* pInfo = LCommandTable::Find(nId);
    if (!pInfo) {
        LTRACE("MainDialog::AddCommand unknown command %d", nId);
        return nullptr;
    }
    auto* pAction = new QAction(LCommandTable::MenuText(nId), this);
    pAction->setObjectName(QString("cmd%1").arg(nId));
    pAction->setStatusTip(LCommandTable::Hint(nId));
    pAction->setData(nId);
    if (!HandledAsHeldKey(nId))
        pAction->setShortcuts(LCommandKeys::Of(*pInfo));
    connect(pAction, &QAction::triggered, this, [this, nId] { QueueCommand(nId); });
    if (pMenu)
        pMenu->addAction(pAction);
    mapActions[nId] = pAction;
    return pAction;
}

void MainDialog::BuildMenus()
{
    const std::vector<LMenuDef>& menus = LMenuLayout::Menus();
    for (const LMenuDef& m : menus) {
        QMenu* pTop = menuBar()->addMenu(tr(m.szTitle));
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
        connect(pTop, &QMenu::aboutToShow, this, &MainDialog::UpdateMenuStates);
        if (m.szTitle == menus[0].szTitle)
            pFileMenu = pTop;
        else if (m.szTitle == menus[1].szTitle)
            pEditMenu = pTop;
        else if (m.szTitle == menus[6].szTitle)
            pWindowMenu = pTop;
    }
    // The recent files sit between Settings and Exit.
    pRecentSeparator = pFileMenu->addSeparator();
    pFileMenu->addSeparator();
    AddCommand(pFileMenu, CmExitId);
    RebuildRecentMenu();
    pWindowSeparator = pWindowMenu->addSeparator();
    connect(pWindowMenu, &QMenu::aboutToShow, this, &MainDialog::RebuildWindowMenu);

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

void MainDialog::BuildToolBar()
{
    QToolBar* pTools = addToolBar(tr("Toolbar"));
    pTools->setObjectName("ToolBar");
    QStyle* pStyle = style();
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
    pTransportBar = new LTransportBar(this);
    addToolBar(pTransportBar);
    connect(pTransportBar, &LTransportBar::Command, this, [this](int nId) { QueueCommand(nId); });
    // Queued alike, so that a release never overtakes its press.
    connect(pTransportBar, &LTransportBar::ShuttlePressed, this, [this](int nId) { QueueCommand(nId); });
    connect(pTransportBar, &LTransportBar::ShuttleReleased, this,
            [this](int) { QTimer::singleShot(0, this, [this] { pTransport->EndShuttle(); }); });
    connect(pTransportBar, &LTransportBar::VolumeChanged, this, [this](int nDb) { pTransport->SetVolume(nDb); });
    addToolBarBreak();
    auto* pTimeBar = new QToolBar(tr("Time"), this);
    pTimeBar->setObjectName("TimeBar");
    pTimeFields = new LTimeFields(pTimeBar);
    pTimeBar->addWidget(pTimeFields);
    connect(pTimeFields, &LTimeFields::TimeTyped, this, &MainDialog::OnTimeTyped);
    addToolBar(pTimeBar);
}

void MainDialog::QueueCommand(int nId)
{
    // A command may run a process or a modal dialog, whose event loop can delete the action or
    // button whose signal is running (a load rebuilds the recent-file menu): it runs from the
    // event loop instead.
    QTimer::singleShot(0, this, [this, nId] { Command(nId); });
}

void MainDialog::RebuildRecentMenu()
{
    for (QAction* p : vRecentActions) {
        mapActions.erase(p->data().toInt());
        delete p;
    }
    vRecentActions.clear();
    const auto& entries = recent.GetEntries();
    for (size_t i = 0; i < entries.size(); ++i) {
        const int nId = CmRecentFirstId + static_cast<int>(i);
        auto* pAction = new QAction(QString("&%1. %2").arg(i + 1).arg(QString::fromStdString(entries[i].szPath)), this);
        pAction->setObjectName(QString("cmd%1").arg(nId));
        pAction->setData(nId);
        pAction->setStatusTip(tr("Opens this file."));
        connect(pAction, &QAction::triggered, this, [this, nId] { QueueCommand(nId); });
        pFileMenu->insertAction(pRecentSeparator, pAction);
        vRecentActions.push_back(pAction);
        mapActions[nId] = pAction;
    }
}

void MainDialog::ScheduleWindowMenu()
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

void MainDialog::RebuildWindowMenu()
{
    // Rebuilt whenever a window comes, goes, is renamed or activated, perhaps from an item's own
    // signal: the old items go later.
    for (QAction* p : vWindowActions) {
        pWindowMenu->removeAction(p);
        p->deleteLater();
    }
    vWindowActions.clear();
    const QList<QMdiSubWindow*> subs = pMdi->subWindowList(QMdiArea::CreationOrder);
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
        pAction->setChecked(pSub == pMdi->currentSubWindow());
        QPointer<LEdFileWindow> pGuard(pWindow);
        connect(pAction, &QAction::triggered, this, [this, pGuard] {
            if (pGuard)
                ActivateFileWindow(pGuard);
        });
        vWindowActions.push_back(pAction);
    }
}

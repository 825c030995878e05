// The frame's list of file windows: adding, finding, activating and closing them, and the files
// a second start of the program hands over.
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStyle>
#include <QTimer>

#include <ctime>

#include "core/LEdFile.h"
#include "core/LTrace.h"
#include "ui/LEdFileWindow.h"
#include "ui/LFileCommands.h"
#include "ui/LFrameMenus.h"
#include "ui/LMarkCommands.h"
#include "ui/LTransport.h"
#include "ui/MainDialog.h"

LEdFileWindow* MainDialog::AddFileToList(std::unique_ptr<LEdFile> pFile, const std::string& szPath,
                                         const std::string& szName)
{
    auto* pWindow = new LEdFileWindow(std::move(pFile), szPath, szName);
    QMdiSubWindow* pSub = pMdi->addSubWindow(pWindow);
    if (!pSub) {
        LTRACE("LMDIWindow::LMDIWindow MDI Child creation failed.");
        delete pWindow;
        return nullptr;
    }
    pSub->setAttribute(Qt::WA_DeleteOnClose);
    pSub->setWindowTitle(pWindow->Caption());
    pSub->setWindowIcon(AppIcon());
    connect(pWindow, &QWidget::windowTitleChanged, pSub, &QWidget::setWindowTitle);
    connect(pWindow, &QWidget::windowTitleChanged, pMenus, &LFrameMenus::ScheduleWindowMenu);
    connect(pWindow, &LEdFileWindow::SelectionChanged, this, &MainDialog::OnFileSelectionChanged);
    connect(pWindow, &LEdFileWindow::ScrollRequested, this, &MainDialog::OnFileScroll);
    connect(pWindow, &LEdFileWindow::DisplayOptionsChanged, this, &MainDialog::UpdateMenuStates);
    connect(pWindow, &LEdFileWindow::ContextMenuRequested, pMenus, &LFrameMenus::TrackWaveWindowMenu);
    connect(pSub, &QObject::destroyed, this, [this] { OnSubWindowActivated(); });
    pSub->installEventFilter(this);
    pSub->setGeometry(NextChildPlace(pSub));
    pSub->show();
    pMdi->setActiveSubWindow(pSub);
    OnSubWindowActivated();
    NoteChange();
    return pWindow;
}

LEdFileWindow* MainDialog::FindWindowByPath(const std::string& szPath) const
{
    if (szPath.empty())
        return nullptr;
    const QFileInfo wanted(QString::fromStdString(szPath));
    const QString szWanted = wanted.canonicalFilePath().isEmpty() ? wanted.absoluteFilePath() : wanted.canonicalFilePath();
    for (LEdFileWindow* p : GetFileWindows()) {
        if (p->GetPath().empty())
            continue;
        const QFileInfo open(QString::fromStdString(p->GetPath()));
        const QString szOpen = open.canonicalFilePath().isEmpty() ? open.absoluteFilePath() : open.canonicalFilePath();
        if (szOpen == szWanted)
            return p;
    }
    return nullptr;
}

void MainDialog::ActivateFileWindow(LEdFileWindow* pWindow)
{
    auto* pSub = qobject_cast<QMdiSubWindow*>(pWindow->parentWidget());
    if (!pSub)
        return;
    if (pSub->isMinimized())
        pSub->showNormal();
    pMdi->setActiveSubWindow(pSub);
    pSub->raise();
}

QRect MainDialog::NextChildPlace(QMdiSubWindow* pNew) const
{
    // Three quarters of the area, cascading down from the newest other window by a title bar's
    // height, and back to the top-left corner when the next step would leave the area.
    const QSize area = pMdi->viewport()->size();
    const QSize size(std::min(std::max(area.width() * 3 / 4, 480), area.width()),
                     std::min(std::max(area.height() * 3 / 4, 320), area.height()));
    const int nStep = std::max(style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, pNew), 16) + 4;
    QPoint pt(0, 0);
    const QList<QMdiSubWindow*> subs = pMdi->subWindowList(QMdiArea::CreationOrder);
    for (auto it = subs.rbegin(); it != subs.rend(); ++it) {
        if (*it == pNew || !(*it)->isVisible() || (*it)->isMinimized() || (*it)->isMaximized())
            continue;
        pt = (*it)->geometry().topLeft() + QPoint(nStep, nStep);
        break;
    }
    const QRect place(pt, size);
    if (place.left() < 0 || place.top() < 0 || !QRect(QPoint(0, 0), area).contains(place))
        return QRect(QPoint(0, 0), size);
    return place;
}

void MainDialog::CloseFileWindow(LEdFileWindow* pWindow)
{
    pTransport->ForgetWindow(pWindow);
    pMarks->ForgetBookmarksOf(pWindow);
    for (QMdiSubWindow* pSub : pMdi->subWindowList()) {
        if (pSub->widget() != pWindow)
            continue;
        pSub->hide();
        pMdi->removeSubWindow(pSub);
        pSub->deleteLater();
    }
    OnSubWindowActivated();
    NoteChange();
}

bool MainDialog::CloseAllFiles()
{
    const std::vector<LEdFileWindow*> windows = GetFileWindows();
    for (LEdFileWindow* pWindow : windows) {
        pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
        if (!pFiles->QueryCloseFile(pWindow))
            return false;
    }
    for (LEdFileWindow* pWindow : windows)
        CloseFileWindow(pWindow);
    return true;
}

void MainDialog::HandOver(const QStringList& paths)
{
    lstHandedOver << paths;
    QTimer::singleShot(0, this, [this, bRaise = paths.isEmpty()] {
        if (bRaise) {
            if (isMinimized())
                showNormal();
            raise();
            activateWindow();
        }
        // A load already under way takes the new ones when it returns.
        if (bLoadingHandedOver)
            return;
        bLoadingHandedOver = true;
        while (!lstHandedOver.isEmpty())
            EvLoad(lstHandedOver.takeFirst());
        bLoadingHandedOver = false;
    });
}

void MainDialog::EvLoad(const QString& szPath)
{
    if (szPath.isEmpty()) {
        LTRACE("MainDialog::EvLoad lParam == 0");
        return;
    }
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
    LoadFile(szPath.toStdString());
}

bool MainDialog::LoadFile(const std::string& szPath)
{
    return pFiles->LoadFile(szPath);
}

void MainDialog::NoteRecentFile(const std::string& szPath)
{
    recent.Add(szPath, static_cast<int64_t>(std::time(nullptr)));
    pMenus->RebuildRecentMenu();
}

void MainDialog::ForgetRecentFile(const std::string& szPath)
{
    recent.Remove(szPath);
    pMenus->RebuildRecentMenu();
}

void MainDialog::SetActiveFileWindow(LEdFileWindow* pWindow)
{
    if (pWindow)
        pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
}

void MainDialog::FollowCurrentFile()
{
    OnSubWindowActivated();
}

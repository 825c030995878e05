#include "ui/MainDialog.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "project/LProjectSegments.h"
#include "project/LRecovery.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LQtProgressHost.h"
#include "ui/LTimeFields.h"
#include "ui/LTransport.h"
#include "ui/LTransportBar.h"
#include "ui/macros/LKeyMacroRunner.h"

MainDialog::MainDialog(QWidget* pParent) : QMainWindow(pParent)
{
    setObjectName("MainDialog");
    setWindowIcon(AppIcon());
    QApplication::setWindowIcon(AppIcon()); // the dialogs' too
    pProgressFactory = std::make_unique<LQtProgressHostFactory>(this);
    LProgressHostFactory::SetDefault(pProgressFactory.get());
    pMdi = new QMdiArea(this);
    pMdi->setObjectName("MDICLIENT");
    pMdi->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    pMdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(pMdi);
    connect(pMdi, &QMdiArea::subWindowActivated, this, &MainDialog::OnSubWindowActivated);
    pClipboard = new LCutListAudio;
    recent.Load();
    pTransport = std::make_unique<LTransport>(*this);
    BuildMenus();
    BuildToolBar();
    pStatusFormat = new QLabel(this);
    pStatusFormat->setObjectName("StatusFormat");
    statusBar()->addPermanentWidget(pStatusFormat);
    connect(pTransport.get(), &LTransport::StateChanged, this, [this] {
        pTransportBar->SetPlaying(pTransport->IsPlaying());
        UpdateMenuStates();
    });
    connect(pTransport.get(), &LTransport::PositionChanged, this,
            [this](int32_t sPos) { pTimeFields->SetCurrent(sPos, GetCurrentFile() ? GetCurrentFile()->GetDocument().GetSampleRate() : 0); });
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainDialog::UpdateMenuStates);
    qApp->installEventFilter(this);
    new LKeyMacroRunner(this);

    const char* const kPlace = "MainWindow";
    resize(LSettings::GetInt(kPlace, "Width", 1000), LSettings::GetInt(kPlace, "Height", 700));
    if (LSettings::GetBool(kPlace, "Maximized", false))
        setWindowState(windowState() | Qt::WindowMaximized);
    SetWindowCaption();
    UpdateUndoMenuItem();
    UpdateMenuStates();
    UpdateTimeFields();
}

MainDialog::~MainDialog()
{
    qApp->removeEventFilter(this);
    pTransport->Stop();
    // The file windows go before the transport, the factory and the clipboard they may use;
    // nothing is told about them any more.
    disconnect(pMdi, nullptr, this, nullptr);
    for (QMdiSubWindow* pSub : pMdi->subWindowList()) {
        disconnect(pSub, nullptr, this, nullptr);
        if (pSub->widget())
            disconnect(pSub->widget(), nullptr, this, nullptr);
        delete pSub;
    }
    pTransport.reset();
    if (&LProgressHostFactory::Default() == pProgressFactory.get())
        LProgressHostFactory::SetDefault(nullptr);
}

QIcon MainDialog::AppIcon()
{
    static const QIcon icon = [] {
        QIcon i;
        i.addFile(":/icons/sonitra-48.png", QSize(48, 48));
        i.addFile(":/icons/sonitra-128.png", QSize(128, 128));
        return i;
    }();
    return icon;
}

QAction* MainDialog::GetAction(int nId) const
{
    auto it = mapActions.find(nId);
    return it == mapActions.end() ? nullptr : it->second;
}

LEdFileWindow* MainDialog::GetCurrentFileWindow() const
{
    QMdiSubWindow* pSub = pMdi->currentSubWindow();
    if (!pSub)
        pSub = pMdi->activeSubWindow();
    return pSub ? qobject_cast<LEdFileWindow*>(pSub->widget()) : nullptr;
}

LEdFile* MainDialog::GetCurrentFile() const
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    return pWindow ? &pWindow->GetFile() : nullptr;
}

std::vector<LEdFileWindow*> MainDialog::GetFileWindows() const
{
    std::vector<LEdFileWindow*> v;
    for (QMdiSubWindow* pSub : pMdi->subWindowList())
        if (auto* p = qobject_cast<LEdFileWindow*>(pSub->widget()))
            v.push_back(p);
    return v;
}

bool MainDialog::GetSelection(int32_t& sStart, int32_t& sEnd) const
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile || pFile->GetSelStart() >= pFile->GetSelEnd())
        return false;
    sStart = pFile->GetSelStart();
    sEnd = pFile->GetSelEnd();
    return true;
}

void MainDialog::StartModifyCurrentFile(const std::string& szLabel)
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    if (pTransport->GetActiveWindow() == pWindow)
        pTransport->Stop();
    pWindow->GetFile().StartModify(szLabel);
    pWindow->setWindowTitle(pWindow->Caption());
    UpdateUndoMenuItem();
}

void MainDialog::EndModifyCurrentFile(int32_t sPosition, int32_t nPreRoll)
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    const bool bPlay = pWindow->GetFile().EndModify(sPosition, nPreRoll);
    pWindow->Refresh();
    pWindow->SetCursorPosition(pWindow->GetFile().GetCursor());
    UpdateUndoMenuItem();
    UpdateMenuStates();
    UpdateTimeFields();
    NoteChange();
    if (bPlay)
        pTransport->Play(true);
}

void MainDialog::UpdateUndoMenuItem()
{
    LEdFile* pFile = GetCurrentFile();
    QAction* pUndo = GetAction(CmUndoId);
    if (!pUndo)
        return;
    pUndo->setText(QString::fromStdString(pFile ? pFile->GetUndoMenuText() : std::string("Undo \tCtrl+Z")));
    pUndo->setEnabled(pFile && pFile->IsUndoAvailable());
    if (QAction* pRedo = GetAction(CmRedoId)) {
        pRedo->setText(QString::fromStdString(pFile ? pFile->GetRedoMenuText() : std::string("Redo \tCtrl+Y")));
        pRedo->setEnabled(pFile && pFile->IsRedoAvailable());
    }
}

void MainDialog::UpdateMenuStates()
{
    for (auto& [nId, pAction] : mapActions)
        pAction->setEnabled(IsCommandEnabled(nId));
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (QAction* p = GetAction(CmVerticalZoomId))
        p->setChecked(pWindow && pWindow->IsVerticalZoom());
    if (QAction* p = GetAction(CmDisplayPosNegId))
        p->setChecked(!pWindow || pWindow->GetDisplayMode() == 0);
    if (QAction* p = GetAction(CmDisplayLeftRightId))
        p->setChecked(pWindow && pWindow->GetDisplayMode() == 1);
    if (QAction* p = GetAction(CmSpectrogramId))
        p->setChecked(pWindow && pWindow->IsSpectrogram());
    const int nSpeed = pTransport->GetPlaySpeed();
    if (QAction* p = GetAction(CmPlaySlowId))
        p->setChecked(nSpeed == 0);
    if (QAction* p = GetAction(CmPlayNormalId))
        p->setChecked(nSpeed == 1);
    if (QAction* p = GetAction(CmPlayFastId))
        p->setChecked(nSpeed == 2);
    UpdateUndoMenuItem();
}

bool MainDialog::IsCommandEnabled(int nId) const
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    const bool bFile = pWindow != nullptr;
    int32_t sStart = 0, sEnd = 0;
    const bool bSel = GetSelection(sStart, sEnd);
    const bool bBusy = pTransport->IsRecording();
    bool bProjectCommand = false;
    const bool bProjectEnabled = IsProjectCommandEnabled(nId, bProjectCommand);
    if (bProjectCommand)
        return bProjectEnabled && !bBusy;
    if (nId >= CmRecentFirstId && nId <= CmRecentLastId)
        return !bBusy;
    switch (nId) {
    case CmNewId:
    case CmOpenId:
    case CmExitId:
    case CmHelpId:
    case CmAboutId:
    case CmCascadeId:
    case CmTileHorizontalId:
    case CmTileVerticalId:
    case CmArrangeIconsId:
        return true;
    case CmCloseId:
    case CmSaveId:
    case CmSaveAsId:
    case CmCloseAllId:
    case CmSendId:
        return bFile && !bBusy;
    case CmSettingsId:
        return !bBusy && !pTransport->IsPlaying();
    case CmUndoId:
        return bFile && !bBusy && pWindow->GetFile().IsUndoAvailable();
    case CmRedoId:
        return bFile && !bBusy && pWindow->GetFile().IsRedoAvailable();
    case CmCutId:
    case CmCopyId:
    case CmDeleteId:
    case CmTrimId:
    case CmSilenceId:
    case CmRepeatLoopId:
    case CmCopyToNewId:
        return bSel && !bBusy;
    case CmPasteId:
        return bFile && !bBusy && pClipboard->GetLength() > 0;
    case CmPasteFromClipboardId: {
        const QMimeData* pMime = QApplication::clipboard()->mimeData();
        return bFile && !bBusy && pMime && (pMime->hasFormat("audio/wav") || pMime->hasFormat("audio/x-wav"));
    }
    case CmSelectAllId:
    case CmSelectToStartId:
    case CmSelectToEndId:
    case CmZoomInId:
    case CmZoomOutId:
    case CmZoomFullId:
    case CmVerticalZoomId:
    case CmDisplayPosNegId:
    case CmSpectrogramId:
        return bFile;
    case CmZoomSelectionId:
        return bSel;
    case CmDisplayLeftRightId:
        return bFile && pWindow->GetFile().GetDocument().GetChannels() == 2;
    case CmTrimStartId:
    case CmTrimEndId:
    case CmInsertSilenceBeginId:
    case CmInsertSilenceCurrentId:
    case CmInsertSilenceEndId:
    case CmInsertFileBeginId:
    case CmInsertFileCurrentId:
    case CmInsertFileEndId:
        return bFile && !bBusy;
    case CmPlayId:
    case CmScrubId:
    case CmRewindId:
    case CmFastForwardId:
        return bFile && !bBusy && LTransport::IsAvailable();
    case CmPlaySlowId:
    case CmPlayNormalId:
    case CmPlayFastId:
        return LTransport::IsAvailable();
    case CmRecordId:
        return LTransport::IsAvailable() && !bBusy && !pTransport->IsPlaying();
    case CmStopId:
        return pTransport->IsPlaying() || bBusy;
    case CmGoToStartId:
    case CmGoToEndId:
        return bFile;
    case CmBatchConverterId:
    case CmLoadCdId:
    case CmCopyToCdId:
        return !bBusy;
    default:
        return IsEffectCommandEnabled(nId) || IsToolCommandEnabled(nId);
    }
}

bool MainDialog::Command(int nId)
{
    if (!IsCommandEnabled(nId) && nId != CmStopId) {
        LTRACE("MainDialog::Command %d not available", nId);
        return false;
    }
    if (CmFile(nId) || CmEdit(nId) || CmControl(nId) || CmWindow(nId) || CmEffect(nId) || CmTools(nId) ||
        CmProject(nId) || CmBatchConverter(nId))
        return true;
    LTRACE("MainDialog::Command %d has no handler", nId);
    return false;
}

void MainDialog::SetWindowCaption()
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    setWindowTitle(pWindow ? QString("Sonitra - %1").arg(QString::fromStdString(pWindow->GetName())) : QString("Sonitra"));
}

void MainDialog::UpdateTimeFields()
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile) {
        pTimeFields->SetTimes(0, 0, 0, 0, 0);
        return;
    }
    const LCutListAudio& doc = pFile->GetDocument();
    pTimeFields->SetTimes(pFile->GetSelStart(), pFile->GetSelEnd(), pFile->GetCursor(), doc.GetLength(),
                          doc.GetSampleRate());
}

void MainDialog::UpdateStatusLine()
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile) {
        pStatusFormat->clear();
        return;
    }
    const LCutListAudio& doc = pFile->GetDocument();
    const int nChans = doc.GetChannels();
    const QString szChans = nChans == 1 ? QString("Mono") : nChans == 2 ? QString("Stereo") : QString("%1 channels").arg(nChans);
    pStatusFormat->setText(QString("Sample Rate: %1   %2").arg(doc.GetSampleRate()).arg(szChans));
}

void MainDialog::closeEvent(QCloseEvent* pEvent)
{
    if (pTransport->IsRecording())
        pTransport->Stop();
    if (!QueryCloseProject() || !CloseAllFiles()) {
        pEvent->ignore();
        return;
    }
    StopRecovery();
    const char* const kPlace = "MainWindow";
    LSettings::SetBool(kPlace, "Maximized", isMaximized());
    LSettings::SetInt(kPlace, "Width", normalGeometry().width());
    LSettings::SetInt(kPlace, "Height", normalGeometry().height());
    pEvent->accept();
}

bool MainDialog::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    // A file window closed by its own title bar asks about unsaved changes first.
    if (pEvent->type() == QEvent::Close) {
        auto* pSub = qobject_cast<QMdiSubWindow*>(pWatched);
        if (pSub && pSub->mdiArea() == pMdi && !bClosing) {
            auto* pWindow = qobject_cast<LEdFileWindow*>(pSub->widget());
            if (pWindow && !QueryCloseFile(pWindow)) {
                pEvent->ignore();
                return true;
            }
            if (pWindow)
                pTransport->ForgetWindow(pWindow);
        }
        return false;
    }
    // Rewind, fast forward and scrub follow the key itself, held or released.
    if (pEvent->type() != QEvent::KeyPress && pEvent->type() != QEvent::KeyRelease)
        return false;
    if (!isActiveWindow() || QApplication::activeModalWidget())
        return false;
    auto* pKey = static_cast<QKeyEvent*>(pEvent);
    if (pKey->isAutoRepeat() || pKey->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier))
        return pKey->key() == Qt::Key_F7 || pKey->key() == Qt::Key_F8;
    if (qobject_cast<QLineEdit*>(QApplication::focusWidget()))
        return false;
    const bool bPress = pEvent->type() == QEvent::KeyPress;
    switch (pKey->key()) {
    case Qt::Key_F7:
    case Qt::Key_Left:
    case Qt::Key_F8:
    case Qt::Key_Right: {
        const int nId = (pKey->key() == Qt::Key_F7 || pKey->key() == Qt::Key_Left) ? CmRewindId : CmFastForwardId;
        if (bPress)
            Command(nId);
        else
            pTransport->EndShuttle();
        return true;
    }
    case Qt::Key_Space:
        if (bPress)
            Command(CmScrubId);
        return true;
    default:
        return false;
    }
}

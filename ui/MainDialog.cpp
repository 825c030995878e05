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
#include "ui/LCdCommands.h"
#include "ui/LCommandIds.h"
#include "ui/LControlCommands.h"
#include "ui/LEditCommands.h"
#include "ui/LEffectsCommands.h"
#include "ui/LFileCommands.h"
#include "ui/LProjectCommands.h"
#include "ui/LCommandRules.h"
#include "ui/LEdFileWindow.h"
#include "ui/LQtProgressHost.h"
#include "ui/LRecoveryKeeper.h"
#include "ui/LTimeFields.h"
#include "ui/LToolsCommands.h"
#include "ui/LTransport.h"
#include "ui/LTransportBar.h"
#include "ui/LWindowClipboard.h"
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
    auto pEffectsCommands = std::make_unique<LEffectsCommands>(*this);
    pEffects = pEffectsCommands.get();
    vControllers.push_back(std::move(pEffectsCommands));
    auto pEditCommands = std::make_unique<LEditCommands>(*this);
    pEdit = pEditCommands.get();
    vControllers.push_back(std::move(pEditCommands));
    vControllers.push_back(std::make_unique<LControlCommands>(*this));
    auto pProjectCommands = std::make_unique<LProjectCommands>(*this, *pEdit);
    pProject = pProjectCommands.get();
    vControllers.push_back(std::move(pProjectCommands));
    pRecovery = std::make_unique<LRecoveryKeeper>(
        *this, [this](LEdProject& project) { pProject->CollectProject(project); },
        [this](LEdProject& project) { pProject->AddProjectFiles(project, true); });
    auto pCd = std::make_unique<LCdCommands>(*this);
    auto pFileCommands = std::make_unique<LFileCommands>(*this, *pCd);
    pFiles = pFileCommands.get();
    vControllers.push_back(std::move(pFileCommands));
    vControllers.push_back(std::move(pCd));
    vControllers.push_back(std::make_unique<LToolsCommands>(*this, *pEdit));
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
    new LKeyMacroRunner(this, [this](int nId) { return Command(nId); });

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
    const LCommandState state = CommandState();
    for (auto& [nId, pAction] : mapActions)
        pAction->setEnabled(IsCommandEnabled(nId, state));
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

LCommandState MainDialog::CommandState() const
{
    LCommandState st;
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    int32_t sStart = 0, sEnd = 0;
    st.bFile = pWindow != nullptr;
    st.bSelection = GetSelection(sStart, sEnd);
    st.bRecording = pTransport->IsRecording();
    st.bPlaying = pTransport->IsPlaying();
    st.bPlayer = LTransport::IsAvailable();
    st.bUndo = pWindow && pWindow->GetFile().IsUndoAvailable();
    st.bRedo = pWindow && pWindow->GetFile().IsRedoAvailable();
    st.bClipboard = pClipboard->GetLength() > 0;
    st.bWindowClipboard = LWindowClipboard::HasWave();
    st.bStereo = pWindow && pWindow->GetFile().GetDocument().GetChannels() == 2;
    st.bProject = !pProject->GetProjectPath().empty();
    st.bBookmarks = !pProject->GetBookmarks().empty();
    st.bRegions = !pProject->GetRegions().empty();
    return st;
}

bool MainDialog::IsCommandEnabled(int nId, const LCommandState& state) const
{
    // The effect commands follow the effects' own rule.
    return LCommandRules::IsEnabled(nId, state, [this](int nOther, const LCommandState&) {
        return pEffects->IsEnabled(nOther);
    });
}

bool MainDialog::Command(int nId)
{
    if (!IsCommandEnabled(nId, CommandState()) && nId != CmStopId) {
        LTRACE("MainDialog::Command %d not available", nId);
        return false;
    }
    if (CmWindow(nId))
        return true;
    for (const auto& pController : vControllers)
        if (pController->Command(nId))
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
    if (!pProject->QueryCloseProject() || !CloseAllFiles()) {
        pEvent->ignore();
        return;
    }
    pRecovery->Stop();
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
            if (pWindow && !pFiles->QueryCloseFile(pWindow)) {
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

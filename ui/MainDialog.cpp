#include "ui/MainDialog.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QIcon>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "ui/LCdCommands.h"
#include "ui/LCommandIds.h"
#include "ui/LControlCommands.h"
#include "ui/LEditCommands.h"
#include "ui/LEffectsCommands.h"
#include "ui/LFileCommands.h"
#include "ui/LFrameMenus.h"
#include "ui/LMarkCommands.h"
#include "ui/LProjectCommands.h"
#include "ui/LCommandRules.h"
#include "ui/LEdFileWindow.h"
#include "ui/LQtProgressHost.h"
#include "ui/LRecoveryKeeper.h"
#include "ui/LShuttleKeys.h"
#include "ui/LTimeFields.h"
#include "ui/LToolsCommands.h"
#include "ui/LTransport.h"
#include "ui/LTransportBar.h"
#include "ui/LTypedTime.h"
#include "ui/LWindowClipboard.h"
#include "ui/LWindowCommands.h"
#include "ui/macros/LKeyMacroRunner.h"
#include "ui/tools/LSpectrumWindow.h"

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
    MakeControllers();
    pMenus = new LFrameMenus(*this, *this, *pMdi, [this](int nId) { QueueCommand(nId); });
    vControllers.insert(vControllers.begin(),
                        std::make_unique<LWindowCommands>(*this, *pMdi, menuBar(), [this] { ShowSpectrumWindow(); }));
    AddTransportBars();
    pStatusFormat = new QLabel(this);
    pStatusFormat->setObjectName("StatusFormat");
    statusBar()->addPermanentWidget(pStatusFormat);
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainDialog::UpdateMenuStates);
    new LShuttleKeys(*this, [this](int nId) { return Command(nId); }, [this] { pTransport->EndShuttle(); });
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

// Each menu's controller; the File one works with the CD, project and bookmark ones, and
// recovery collects and reopens projects through the project one.
void MainDialog::MakeControllers()
{
    auto pEffectsCommands = std::make_unique<LEffectsCommands>(*this);
    pEffects = pEffectsCommands.get();
    auto pEdit = std::make_unique<LEditCommands>(*this);
    auto pMarkCommands = std::make_unique<LMarkCommands>(*this, *pEdit);
    pMarks = pMarkCommands.get();
    auto pProjectCommands = std::make_unique<LProjectCommands>(*this, *pMarks);
    pProject = pProjectCommands.get();
    auto pCd = std::make_unique<LCdCommands>(*this);
    auto pFileCommands = std::make_unique<LFileCommands>(*this, *pCd, *pProject, *pMarks);
    pFiles = pFileCommands.get();
    auto pTools = std::make_unique<LToolsCommands>(*this, *pEdit);
    pRecovery = std::make_unique<LRecoveryKeeper>(
        *this, [this](LEdProject& project) { pProject->CollectProject(project); },
        [this](LEdProject& project) { pProject->AddProjectFiles(project, true); });
    vControllers.push_back(std::move(pEffectsCommands));
    vControllers.push_back(std::move(pEdit));
    vControllers.push_back(std::make_unique<LControlCommands>(*this));
    vControllers.push_back(std::move(pProjectCommands));
    vControllers.push_back(std::move(pMarkCommands));
    vControllers.push_back(std::move(pFileCommands));
    vControllers.push_back(std::move(pCd));
    vControllers.push_back(std::move(pTools));
}

void MainDialog::AddTransportBars()
{
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
    connect(pTimeFields, &LTimeFields::TimeTyped, this, [this](int nField, const QString& szText) {
        LTypedTime::Apply(this, *pTimeFields, GetCurrentFileWindow(), nField, szText);
    });
    addToolBar(pTimeBar);
    connect(pTransport.get(), &LTransport::StateChanged, this, [this] {
        pTransportBar->SetPlaying(pTransport->IsPlaying());
        UpdateMenuStates();
    });
    connect(pTransport.get(), &LTransport::PositionChanged, this, [this](int32_t sPos) {
        pTimeFields->SetCurrent(sPos, GetCurrentFile() ? GetCurrentFile()->GetDocument().GetSampleRate() : 0);
    });
}

MainDialog::~MainDialog()
{
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
    return pMenus ? pMenus->GetAction(nId) : nullptr;
}

void MainDialog::QueueCommand(int nId)
{
    // A command may run a process or a modal dialog, whose event loop can delete the action or
    // button whose signal is running (a load rebuilds the recent-file menu): it runs from the
    // event loop instead.
    QTimer::singleShot(0, this, [this, nId] { Command(nId); });
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
    if (pMenus)
        pMenus->ShowUndo(GetCurrentFile());
}

void MainDialog::UpdateMenuStates()
{
    if (!pMenus)
        return;
    const LCommandState state = CommandState();
    pMenus->ShowStates([&](int nId) { return IsCommandEnabled(nId, state); }, GetCurrentFileWindow(),
                       pTransport->GetPlaySpeed());
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
    st.bBookmarks = !pMarks->GetBookmarks().empty();
    st.bRegions = !pMarks->GetRegions().empty();
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
    if (pEvent->type() != QEvent::Close)
        return false;
    auto* pSub = qobject_cast<QMdiSubWindow*>(pWatched);
    auto* pWindow = pSub ? qobject_cast<LEdFileWindow*>(pSub->widget()) : nullptr;
    if (!pWindow)
        return false;
    if (!pFiles->QueryCloseFile(pWindow)) {
        pEvent->ignore();
        return true;
    }
    pTransport->ForgetWindow(pWindow);
    pMarks->ForgetBookmarksOf(pWindow);
    return false;
}

void MainDialog::ShowSpectrumWindow()
{
    auto* pWindow = findChild<LSpectrumWindow*>();
    if (!pWindow)
        pWindow = new LSpectrumWindow(*this);
    pWindow->show();
    pWindow->raise();
    pWindow->activateWindow();
    pWindow->Follow();
}

void MainDialog::OnSubWindowActivated()
{
    pMenus->ScheduleWindowMenu();
    pMarks->LoadBookmarksFor(GetCurrentFileWindow());
    UpdateMarks();
    SetWindowCaption();
    UpdateMenuStates();
    UpdateTimeFields();
    UpdateStatusLine();
    emit CurrentFileChanged();
}

void MainDialog::UpdateMarks()
{
    pMarks->UpdateMarks();
}

void MainDialog::OnFileSelectionChanged()
{
    UpdateTimeFields();
    UpdateMenuStates();
}

void MainDialog::OnFileScroll(int32_t sTarget)
{
    auto* pWindow = qobject_cast<LEdFileWindow*>(sender());
    if (!pWindow)
        pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    pWindow->SetCursorPosition(sTarget);
    UpdateTimeFields();
}

void MainDialog::StartRecovery()
{
    pRecovery->Start();
}

void MainDialog::NoteChange()
{
    UpdateMarks();
    pProject->MarkChanged();
    if (pRecovery)
        pRecovery->Write();
}

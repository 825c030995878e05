// The File menu: new, open, close, save, save as, the recent files and exit.
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QTimer>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStyle>

#include <ctime>

#include "cd/LCdDevice.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LEdFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LSoundTime.h"
#include "core/LTrace.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "ui/LComponentPrompt.h"
#include "ui/LAudioFilters.h"
#include "ui/LCommandIds.h"
#include "ui/LSendFile.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEdSaveProcess.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"
#include "ui/NewWavDlg.h"
#include "ui/settings/LSettingsDlg.h"

namespace {
const char* const kFolders = "Folders";

bool IsRealAudio(const std::string& szPath)
{
    const std::string szExt = LFile::ExtensionOf(szPath);
    return szExt == ".rm" || szExt == ".ram" || szExt == ".ra";
}

} // namespace

bool MainDialog::CmFile(int nId)
{
    if (nId >= CmRecentFirstId && nId <= CmRecentLastId) {
        CmRecent(nId - CmRecentFirstId);
        return true;
    }
    switch (nId) {
    case CmNewId: CmNew(); return true;
    case CmOpenId: CmOpen(); return true;
    case CmCloseId: CmClose(); return true;
    case CmSaveId: CmSave(); return true;
    case CmSaveAsId: CmSaveAs(); return true;
    case CmSendId: CmSend(); return true;
    case CmExitId: CmExit(); return true;
    case CmCloseAllId: CloseAllFiles(); return true;
    case CmSettingsId: CmSetting(); return true;
    case CmLoadCdId: QTimer::singleShot(0, this, [this] { CmLoadCd(); }); return true;
    case CmCopyToCdId: QTimer::singleShot(0, this, [this] { CmCopyToCd(); }); return true;
    default: return false;
    }
}

void MainDialog::CmNew()
{
    int32_t nRate = 44100;
    int nChans = 2;
    if (!NewWavDlg::ChooseFormat(this, nRate, nChans))
        return;
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument().SetFormat(nRate, static_cast<uint8_t>(nChans));
    AddFileToList(std::move(pFile), std::string(), NextUntitledName());
}

void MainDialog::CmOpen()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString(kFolders, "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Open Audio File", szFolder, LAudioFilters::Open());
    if (files.isEmpty())
        return;
    LSettings::SetString(kFolders, "OpenFileDir", QFileInfo(files.front()).absolutePath().toStdString());
    for (const QString& szFile : files)
        LoadFile(szFile.toStdString());
}

bool MainDialog::LoadFile(const std::string& szPath)
{
    // A project named on the command line, by a file manager or a second start opens as a project.
    if (LFile::ExtensionOf(szPath) == ".snp")
        return OpenProject(szPath);
    // A disc image opens as a disc does: its tracks are chosen in the CD dialog.
    if (LCdDisc::IsImagePath(szPath)) {
        QTimer::singleShot(0, this, [this, szPath] { CmLoadCd(szPath); });
        return true;
    }
    if (LEdFileWindow* pOpen = FindWindowByPath(szPath)) {
        ActivateFileWindow(pOpen);
        recent.Add(pOpen->GetPath(), static_cast<int64_t>(std::time(nullptr)));
        RebuildRecentMenu();
        return true;
    }
    const std::string szName = LFile::FileNameOf(szPath);
    // A format read by settings of its own (a headerless file) offers them first.
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(szPath);
    if (pFormat && !LUiPrompts::Get().AskOpenOptions(this, pFormat->GetName(), szPath))
        return false;
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szPath, &szError, &details);
    if (pSource->IsError()) {
        LTRACE("MainDialog::LoadFile %s: %s", szPath.c_str(), szError.c_str());
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("Unable to open \"%1\":\n%2").arg(QString::fromStdString(szPath),
                                                                           QString::fromStdString(szError)),
                                 LUiPrompts::IconError);
        return false;
    }
    auto pFile = std::make_unique<LEdFile>();
    LCutListAudioLoadSource load("Loading file " + szName, &pFile->GetDocument(), pSource.Get());
    const int32_t nResult = load.Run();
    if (nResult != LProgressDialog::ResultDone) {
        if (nResult == LProgressDialog::ResultError)
            LUiPrompts::Get().Inform(this, "File Error",
                                     QString("Unable to read \"%1\".").arg(QString::fromStdString(szPath)),
                                     LUiPrompts::IconError);
        return false;
    }
    pFile->SetView(0, pFile->GetDocument().GetLength());
    LEdFileWindow* pWindow = AddFileToList(std::move(pFile), szPath, szName);
    pWindow->SetSaveEncoding(details.encoding);
    recent.Add(szPath, static_cast<int64_t>(std::time(nullptr)));
    RebuildRecentMenu();
    UpdateMenuStates();
    WarnIfCutShort(szPath, *pSource);
    return true;
}

// A file whose header claims more than it holds opens padded with silence; the user hears why.
void MainDialog::WarnIfCutShort(const std::string& szPath, LSoundSourceBase& source)
{
    const int32_t sHeld = source.GetLengthInFile();
    if (sHeld < 0 || sHeld >= source.GetLength())
        return;
    LSoundTime held, claimed;
    held.SetSamples(sHeld, source.GetSampleRate());
    claimed.SetSamples(source.GetLength(), source.GetSampleRate());
    LUiPrompts::Get().Inform(
        this, "File Warning",
        QString("\"%1\" is shorter than its header says: it holds %2 of %3. The rest is silence.")
            .arg(QString::fromStdString(szPath), QString::fromStdString(held.FormatMilliseconds()),
                 QString::fromStdString(claimed.FormatMilliseconds())),
        LUiPrompts::IconWarning);
}

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
    connect(pWindow, &QWidget::windowTitleChanged, this, &MainDialog::ScheduleWindowMenu);
    connect(pWindow, &LEdFileWindow::SelectionChanged, this, &MainDialog::OnFileSelectionChanged);
    connect(pWindow, &LEdFileWindow::ScrollRequested, this, &MainDialog::OnFileScroll);
    connect(pWindow, &LEdFileWindow::DisplayOptionsChanged, this, &MainDialog::UpdateMenuStates);
    connect(pWindow, &LEdFileWindow::ContextMenuRequested, this, &MainDialog::TrackWaveWindowMenu);
    connect(pSub, &QObject::destroyed, this, [this] { OnSubWindowActivated(pMdi->currentSubWindow()); });
    pSub->setGeometry(NextChildPlace(pSub));
    pSub->show();
    pMdi->setActiveSubWindow(pSub);
    OnSubWindowActivated(pSub);
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

void MainDialog::CmClose()
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (pWindow && QueryCloseFile(pWindow))
        CloseFileWindow(pWindow);
}

bool MainDialog::QueryCloseFile(LEdFileWindow* pWindow)
{
    if (!pWindow->GetFile().IsModified())
        return true;
    const LUiPrompts::Answer answer = LUiPrompts::Get().Ask(
        this, "Sonitra", QString("Save changes to \"%1\"?").arg(QString::fromStdString(pWindow->GetName())), true);
    if (answer == LUiPrompts::AnswerCancel)
        return false;
    if (answer == LUiPrompts::AnswerNo)
        return true;
    return SaveFile(pWindow);
}

void MainDialog::CloseFileWindow(LEdFileWindow* pWindow)
{
    pTransport->ForgetWindow(pWindow);
    ForgetBookmarksOf(pWindow);
    for (QMdiSubWindow* pSub : pMdi->subWindowList()) {
        if (pSub->widget() != pWindow)
            continue;
        pSub->hide();
        pMdi->removeSubWindow(pSub);
        pSub->deleteLater();
    }
    OnSubWindowActivated(pMdi->currentSubWindow());
    NoteChange();
}

bool MainDialog::CloseAllFiles()
{
    const std::vector<LEdFileWindow*> windows = GetFileWindows();
    for (LEdFileWindow* pWindow : windows) {
        pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
        if (!QueryCloseFile(pWindow))
            return false;
    }
    for (LEdFileWindow* pWindow : windows)
        CloseFileWindow(pWindow);
    return true;
}

void MainDialog::CmSave()
{
    if (LEdFileWindow* pWindow = GetCurrentFileWindow())
        SaveFile(pWindow);
}

void MainDialog::CmSaveAs()
{
    if (LEdFileWindow* pWindow = GetCurrentFileWindow())
        SaveFileAs(pWindow);
}

bool MainDialog::SaveFile(LEdFileWindow* pWindow)
{
    const std::string& szPath = pWindow->GetPath();
    if (szPath.empty())
        return SaveFileAs(pWindow);
    if (IsRealAudio(szPath)) {
        const auto answer = LUiPrompts::Get().Ask(this, "Sonitra",
                                                  "Saving in real audio file format is not supported. Do you want to "
                                                  "save in another format (wav, mp3, gsm, vox) instead?",
                                                  false);
        return answer == LUiPrompts::AnswerYes && SaveFileAs(pWindow);
    }
    // A file that was only read (decoded by another program) is written in a format of the user's choosing.
    if (const LAudioFormat* pFormat = LAudioFormat::ByExtension(szPath); !pFormat || !pFormat->CanWrite())
        return SaveFileAs(pWindow);
    if (!LComponentPrompt::Ensure(this, LAudioFormat::ByExtension(szPath)->GetWriteComponent(), szPath))
        return false; // nothing is written without the program that writes it
    if (pTransport->GetActiveWindow() == pWindow && pTransport->IsRecording())
        pTransport->Stop();
    LEdSaveProcess save("Saving...", pWindow->GetFile().GetDocument(), szPath, pWindow->GetSaveEncoding());
    const int32_t nResult = save.Run();
    if (nResult != LProgressDialog::ResultDone) {
        // The old file is untouched and the document stays modified: nothing is lost.
        if (nResult == LProgressDialog::ResultError)
            LUiPrompts::Get().Inform(this, "File Error",
                                     QString("Unable to save \"%1\":\n%2")
                                         .arg(QString::fromStdString(szPath), QString::fromStdString(save.GetError())),
                                     LUiPrompts::IconError);
        return false;
    }
    pWindow->GetFile().SetModified(false);
    pWindow->setWindowTitle(pWindow->Caption());
    NoteChange();
    return true;
}

bool MainDialog::SaveFileAs(LEdFileWindow* pWindow)
{
    // A file with a path starts beside itself; a new one where the last Save As went.
    const QFileInfo own(QString::fromStdString(pWindow->GetPath()));
    const LAudioFormat* pOwnFormat = pWindow->GetPath().empty() ? nullptr : LAudioFormat::ByExtension(pWindow->GetPath());
    const QString szStart =
        pWindow->GetPath().empty()
            ? QDir(QString::fromStdString(LSettings::GetString(kFolders, "SaveAsDir", QDir::homePath().toStdString())))
                  .filePath(QString::fromStdString(pWindow->GetName()) + ".wav")
            : own.absoluteDir().filePath(pOwnFormat && pOwnFormat->CanWrite() ? own.fileName()
                                                                              : own.completeBaseName() + ".wav");
    QString szChosen = LUiPrompts::Get().GetSaveFileName(this, "Save Audio File As", szStart, LAudioFilters::Save());
    if (szChosen.isEmpty())
        return false;
    if (QFileInfo(szChosen).suffix().isEmpty())
        szChosen += ".wav";
    LSettings::SetString(kFolders, "SaveAsDir", QFileInfo(szChosen).absolutePath().toStdString());
    const std::string szNew = szChosen.toStdString();
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(szNew);
    if (!pFormat || !pFormat->CanWrite()) {
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("Sonitra cannot write \"%1\" files.").arg(QFileInfo(szChosen).suffix()),
                                 LUiPrompts::IconError);
        return false;
    }
    // The encoding the file was read in is the starting choice where the new format has it.
    LAudioEncoding encoding = pFormat->CanWrite(pWindow->GetSaveEncoding()) ? pWindow->GetSaveEncoding() : LAudioEncoding();
    const LCutListAudio& doc = pWindow->GetFile().GetDocument();
    if (!LUiPrompts::Get().AskSaveOptions(this, pFormat->GetName(), doc.GetSampleRate(), doc.GetChannels(), encoding))
        return false;
    if (szNew != pWindow->GetPath() && LFile::Exists(szNew)) {
        const auto answer = LUiPrompts::Get().Ask(
            this, "Sonitra", "Another file with the same name already exists. Do you want to replace it?", false);
        if (answer != LUiPrompts::AnswerYes)
            return false;
    }
    const std::string szOldPath = pWindow->GetPath();
    const std::string szOldName = pWindow->GetName();
    const std::string szOldKey = FileKey(pWindow);
    const LAudioEncoding oldEncoding = pWindow->GetSaveEncoding();
    pWindow->SetPath(szNew);
    pWindow->SetSaveEncoding(encoding);
    if (!SaveFile(pWindow)) {
        pWindow->SetIdentity(szOldPath, szOldName);
        pWindow->SetSaveEncoding(oldEncoding);
        return false;
    }
    recent.Add(szNew, static_cast<int64_t>(std::time(nullptr)));
    RebuildRecentMenu();
    SetWindowCaption();
    RekeyBookmarks(szOldKey, szNew);
    return true;
}

// The whole file goes as it is on disk, saved first when it has changes; a selection goes as a
// copy of its own.
void MainDialog::CmSend()
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    const std::string szWhyNot = LSendFile::CheckMailProgram();
    if (!szWhyNot.empty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", QString::fromStdString(szWhyNot), LUiPrompts::IconWarning);
        return;
    }
    LEdFile& file = pWindow->GetFile();
    std::string szAttach;
    if (file.GetSelEnd() > file.GetSelStart()) {
        const std::string szFolder = LSendFile::NewSendFolder();
        const std::string szBase = QFileInfo(QString::fromStdString(pWindow->GetName())).completeBaseName().toStdString();
        szAttach = szFolder + "/" + (szBase.empty() ? std::string("Selection") : szBase + " (selection)") + ".wav";
        LCutListAudio selection;
        file.GetDocument().EfCopy(file.GetSelStart(), file.GetSelEnd(), selection);
        LEdSaveProcess save("Saving...", selection, szAttach, LAudioEncoding::Named("pcm16"));
        if (szFolder.empty() || save.Run() != LProgressDialog::ResultDone) {
            LUiPrompts::Get().Inform(this, "File Error", "Unable to make a copy of the selection to send.",
                                     LUiPrompts::IconError);
            return;
        }
    } else {
        if ((file.IsModified() || pWindow->GetPath().empty()) && !SaveFile(pWindow))
            return;
        szAttach = pWindow->GetPath();
    }
    std::string szError;
    if (!LSendFile::Attach(szAttach, &szError))
        LUiPrompts::Get().Inform(this, "Sonitra", QString("Unable to start the mail program:\n%1").arg(QString::fromStdString(szError)),
                                 LUiPrompts::IconError);
}

void MainDialog::CmRecent(int nIndex)
{
    const auto& entries = recent.GetEntries();
    if (nIndex < 0 || nIndex >= static_cast<int>(entries.size()))
        return;
    const std::string szPath = entries[nIndex].szPath;
    if (!LFile::Exists(szPath)) {
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("The file \"%1\" no longer exists.").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconWarning);
        recent.Remove(szPath);
        RebuildRecentMenu();
        return;
    }
    LoadFile(szPath);
}

void MainDialog::CmExit()
{
    close();
}

void MainDialog::CmSetting()
{
    LSettingsDlg dlg(this);
    if (dlg.exec() != QDialog::Accepted)
        return;
    for (LEdFileWindow* pWindow : GetFileWindows())
        pWindow->GetFile().SetUndoCapacity(LEdFile::ConfiguredUndoLevels());
    UpdateUndoMenuItem();
    if (!dlg.WorkingFolderChanged())
        return;
    // The segments of the open files live in the old folder: the change takes a fresh start.
    LUiPrompts::Get().Inform(this, "Shut Down Required",
                             "Sonitra will now close because you changed the audio working folder.\r\r"
                             "Please re-run Sonitra to start with the new folders.",
                             LUiPrompts::IconInformation);
    close();
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
        if (bLoadingHandedOver || bClosing)
            return;
        bLoadingHandedOver = true;
        while (!lstHandedOver.isEmpty() && !bClosing)
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

#include "ui/LFileCommands.h"

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
#include "ui/LMarkCommands.h"
#include "ui/LProjectCommands.h"
#include "ui/LRecentFiles.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/LCdCommands.h"
#include "ui/NewWavDlg.h"
#include "ui/settings/LSettingsDlg.h"
#include "work/LCutListAudioLoadSource.h"

namespace {
const char* const kFolders = "Folders";

bool IsRealAudio(const std::string& szPath)
{
    const std::string szExt = LFile::ExtensionOf(szPath);
    return szExt == ".rm" || szExt == ".ram" || szExt == ".ra";
}

} // namespace

bool LFileCommands::Command(int nId)
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
    case CmSettingsId: CmSetting(); return true;
    default: return false;
    }
}

void LFileCommands::CmNew()
{
    int32_t nRate = 44100;
    int nChans = 2;
    if (!NewWavDlg::ChooseFormat(frame.GetWidget(), nRate, nChans))
        return;
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument().SetFormat(nRate, static_cast<uint8_t>(nChans));
    frame.AddFileToList(std::move(pFile), std::string(), frame.NextUntitledName());
}

void LFileCommands::CmOpen()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString(kFolders, "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(frame.GetWidget(), "Open Audio File", szFolder, LAudioFilters::Open());
    if (files.isEmpty())
        return;
    LSettings::SetString(kFolders, "OpenFileDir", QFileInfo(files.front()).absolutePath().toStdString());
    for (const QString& szFile : files)
        LoadFile(szFile.toStdString());
}

bool LFileCommands::LoadFile(const std::string& szPath)
{
    // A project named on the command line, by a file manager or a second start opens as a project.
    if (LFile::ExtensionOf(szPath) == ".snp")
        return project.OpenProject(szPath);
    // A disc image opens as a disc does: its tracks are chosen in the CD dialog.
    if (LCdDisc::IsImagePath(szPath)) {
        QTimer::singleShot(0, frame.GetWidget(), [this, szPath] { cd.LoadCd(szPath); });
        return true;
    }
    if (LEdFileWindow* pOpen = frame.FindWindowByPath(szPath)) {
        frame.ActivateFileWindow(pOpen);
        frame.NoteRecentFile(pOpen->GetPath());
        return true;
    }
    const std::string szName = LFile::FileNameOf(szPath);
    // A format read by settings of its own (a headerless file) offers them first.
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(szPath);
    if (pFormat && !LUiPrompts::Get().AskOpenOptions(frame.GetWidget(), pFormat->GetName(), szPath))
        return false;
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szPath, &szError, &details);
    if (pSource->IsError()) {
        LTRACE("LFileCommands::LoadFile %s: %s", szPath.c_str(), szError.c_str());
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
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
            LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                     QString("Unable to read \"%1\".").arg(QString::fromStdString(szPath)),
                                     LUiPrompts::IconError);
        return false;
    }
    pFile->SetView(0, pFile->GetDocument().GetLength());
    LEdFileWindow* pWindow = frame.AddFileToList(std::move(pFile), szPath, szName);
    pWindow->SetSaveEncoding(details.encoding);
    frame.NoteRecentFile(szPath);
    frame.UpdateMenuStates();
    WarnIfCutShort(szPath, *pSource);
    return true;
}

// A file whose header claims more than it holds opens padded with silence; the user hears why.
void LFileCommands::WarnIfCutShort(const std::string& szPath, LSoundSourceBase& source)
{
    const int32_t sHeld = source.GetLengthInFile();
    if (sHeld < 0 || sHeld >= source.GetLength())
        return;
    LSoundTime held, claimed;
    held.SetSamples(sHeld, source.GetSampleRate());
    claimed.SetSamples(source.GetLength(), source.GetSampleRate());
    LUiPrompts::Get().Inform(
        frame.GetWidget(), "File Warning",
        QString("\"%1\" is shorter than its header says: it holds %2 of %3. The rest is silence.")
            .arg(QString::fromStdString(szPath), QString::fromStdString(held.FormatMilliseconds()),
                 QString::fromStdString(claimed.FormatMilliseconds())),
        LUiPrompts::IconWarning);
}

void LFileCommands::CmClose()
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    if (pWindow && QueryCloseFile(pWindow))
        frame.CloseFileWindow(pWindow);
}

bool LFileCommands::QueryCloseFile(LEdFileWindow* pWindow)
{
    if (!pWindow->GetFile().IsModified())
        return true;
    const LUiPrompts::Answer answer = LUiPrompts::Get().Ask(
        frame.GetWidget(), "Sonitra", QString("Save changes to \"%1\"?").arg(QString::fromStdString(pWindow->GetName())), true);
    if (answer == LUiPrompts::AnswerCancel)
        return false;
    if (answer == LUiPrompts::AnswerNo)
        return true;
    return SaveFile(pWindow);
}

void LFileCommands::CmSave()
{
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow())
        SaveFile(pWindow);
}

void LFileCommands::CmSaveAs()
{
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow())
        SaveFileAs(pWindow);
}

bool LFileCommands::SaveFile(LEdFileWindow* pWindow)
{
    const std::string& szPath = pWindow->GetPath();
    if (szPath.empty())
        return SaveFileAs(pWindow);
    if (IsRealAudio(szPath)) {
        const auto answer = LUiPrompts::Get().Ask(frame.GetWidget(), "Sonitra",
                                                  "Saving in real audio file format is not supported. Do you want to "
                                                  "save in another format (wav, mp3, gsm, vox) instead?",
                                                  false);
        return answer == LUiPrompts::AnswerYes && SaveFileAs(pWindow);
    }
    // A file that was only read (decoded by another program) is written in a format of the user's choosing.
    if (const LAudioFormat* pFormat = LAudioFormat::ByExtension(szPath); !pFormat || !pFormat->CanWrite())
        return SaveFileAs(pWindow);
    if (!LComponentPrompt::Ensure(frame.GetWidget(), LAudioFormat::ByExtension(szPath)->GetWriteComponent(), szPath))
        return false; // nothing is written without the program that writes it
    if (frame.GetTransport().GetActiveWindow() == pWindow && frame.GetTransport().IsRecording())
        frame.GetTransport().Stop();
    LEdSaveProcess save("Saving...", pWindow->GetFile().GetDocument(), szPath, pWindow->GetSaveEncoding());
    const int32_t nResult = save.Run();
    if (nResult != LProgressDialog::ResultDone) {
        // The old file is untouched and the document stays modified: nothing is lost.
        if (nResult == LProgressDialog::ResultError)
            LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                     QString("Unable to save \"%1\":\n%2")
                                         .arg(QString::fromStdString(szPath), QString::fromStdString(save.GetError())),
                                     LUiPrompts::IconError);
        return false;
    }
    pWindow->GetFile().SetModified(false);
    pWindow->setWindowTitle(pWindow->Caption());
    marks.FileSaved(pWindow);
    frame.NoteChange();
    return true;
}

bool LFileCommands::SaveFileAs(LEdFileWindow* pWindow)
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
    QString szChosen = LUiPrompts::Get().GetSaveFileName(frame.GetWidget(), "Save Audio File As", szStart, LAudioFilters::Save());
    if (szChosen.isEmpty())
        return false;
    if (QFileInfo(szChosen).suffix().isEmpty())
        szChosen += ".wav";
    LSettings::SetString(kFolders, "SaveAsDir", QFileInfo(szChosen).absolutePath().toStdString());
    const std::string szNew = szChosen.toStdString();
    const LAudioFormat* pFormat = LAudioFormat::ByExtension(szNew);
    if (!pFormat || !pFormat->CanWrite()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                 QString("Sonitra cannot write \"%1\" files.").arg(QFileInfo(szChosen).suffix()),
                                 LUiPrompts::IconError);
        return false;
    }
    // The encoding the file was read in is the starting choice where the new format has it.
    LAudioEncoding encoding = pFormat->CanWrite(pWindow->GetSaveEncoding()) ? pWindow->GetSaveEncoding() : LAudioEncoding();
    const LCutListAudio& doc = pWindow->GetFile().GetDocument();
    if (!LUiPrompts::Get().AskSaveOptions(frame.GetWidget(), pFormat->GetName(), doc.GetSampleRate(), doc.GetChannels(), encoding))
        return false;
    if (szNew != pWindow->GetPath() && LFile::Exists(szNew)) {
        const auto answer = LUiPrompts::Get().Ask(
            frame.GetWidget(), "Sonitra", "Another file with the same name already exists. Do you want to replace it?", false);
        if (answer != LUiPrompts::AnswerYes)
            return false;
    }
    const std::string szOldPath = pWindow->GetPath();
    const std::string szOldName = pWindow->GetName();
    const std::string szOldKey = pWindow->GetKey();
    const LAudioEncoding oldEncoding = pWindow->GetSaveEncoding();
    pWindow->SetPath(szNew);
    pWindow->SetSaveEncoding(encoding);
    if (!SaveFile(pWindow)) {
        pWindow->SetIdentity(szOldPath, szOldName);
        pWindow->SetSaveEncoding(oldEncoding);
        return false;
    }
    frame.NoteRecentFile(szNew);
    frame.SetWindowCaption();
    marks.RekeyBookmarks(szOldKey, szNew);
    return true;
}

// The whole file goes as it is on disk, saved first when it has changes; a selection goes as a
// copy of its own.
void LFileCommands::CmSend()
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    if (!pWindow)
        return;
    const std::string szWhyNot = LSendFile::CheckMailProgram();
    if (!szWhyNot.empty()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString::fromStdString(szWhyNot), LUiPrompts::IconWarning);
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
            LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", "Unable to make a copy of the selection to send.",
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
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString("Unable to start the mail program:\n%1").arg(QString::fromStdString(szError)),
                                 LUiPrompts::IconError);
}

void LFileCommands::CmRecent(int nIndex)
{
    const auto& entries = frame.GetRecentFiles().GetEntries();
    if (nIndex < 0 || nIndex >= static_cast<int>(entries.size()))
        return;
    const std::string szPath = entries[nIndex].szPath;
    if (!LFile::Exists(szPath)) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                 QString("The file \"%1\" no longer exists.").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconWarning);
        frame.ForgetRecentFile(szPath);
        return;
    }
    LoadFile(szPath);
}

void LFileCommands::CmExit()
{
    frame.GetWidget()->close();
}

void LFileCommands::CmSetting()
{
    LSettingsDlg dlg(frame.GetWidget());
    if (dlg.exec() != QDialog::Accepted)
        return;
    for (LEdFileWindow* pWindow : frame.GetFileWindows())
        pWindow->GetFile().SetUndoCapacity(LEdFile::ConfiguredUndoLevels());
    frame.UpdateUndoMenuItem();
    if (!dlg.WorkingFolderChanged())
        return;
    // The segments of the open files live in the old folder: the change takes a fresh start.
    LUiPrompts::Get().Inform(frame.GetWidget(), "Shut Down Required",
                             "Sonitra will now close because you changed the audio working folder.\r\r"
                             "Please re-run Sonitra to start with the new folders.",
                             LUiPrompts::IconInformation);
    frame.GetWidget()->close();
}

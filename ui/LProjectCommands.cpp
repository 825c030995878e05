#include "ui/LProjectCommands.h"

#include <QDir>
#include <QFileInfo>

#include "core/LEdFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "project/LEdLoadProject.h"
#include "project/LEdProject.h"
#include "project/LEdSaveProject.h"
#include "project/LProjectSegments.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LMarkCommands.h"
#include "ui/LUiPrompts.h"

namespace {
const char* const kProjectFilter = "Sonitra Projects (*.snp)";
} // namespace

LProjectCommands::LProjectCommands(LFrame& f, LMarkCommands& m) : frame(f), marks(m) {}

LProjectCommands::~LProjectCommands() = default;

bool LProjectCommands::Command(int nId)
{
    switch (nId) {
    case CmOpenProjectId: CmOpenProject(); return true;
    case CmCloseProjectId: CloseProject(); return true;
    case CmSaveProjectId: CmSaveProject(); return true;
    case CmSaveProjectAsId: CmSaveProjectAs(); return true;
    default: return false;
    }
}

void LProjectCommands::CmOpenProject()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "ProjectDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(frame.GetWidget(), "Open Project", szFolder, kProjectFilter);
    if (files.isEmpty())
        return;
    LSettings::SetString("Folders", "ProjectDir", QFileInfo(files.front()).absolutePath().toStdString());
    OpenProject(files.front().toStdString());
}

bool LProjectCommands::OpenProject(const std::string& szPath)
{
    if (!CloseProject())
        return false;
    LEdLoadProject load(szPath);
    const int32_t nResult = load.Run();
    if (nResult == LProgressDialog::ResultCancelled)
        return false;
    if (load.IsVersionError()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", LEdLoadProject::kVersionMessage, LUiPrompts::IconError);
        return false;
    }
    if (load.IsOpenError()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                 QString("Unable to open \"%1\".").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconError);
        return false;
    }
    // Opened with silence in place of its audio, a save would make the loss for good.
    if (load.IsMissingAudio()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                 QString("Unable to open the project \"%1\": %2.")
                                     .arg(QString::fromStdString(szPath), QString::fromStdString(load.GetError())),
                                 LUiPrompts::IconError);
        return false;
    }
    // What was read before any damage is opened all the same.
    AddProjectFiles(load.GetProject(), false);
    szProjectPath = szPath;
    pProjectSegments = load.TakeSegments();
    bProjectChanged = false;
    if (nResult != LProgressDialog::ResultDone)
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                 QString("\"%1\" is damaged; only part of it could be read.").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconWarning);
    frame.UpdateMenuStates();
    return true;
}

void LProjectCommands::AddProjectFiles(LEdProject& project, bool bRecovered)
{
    marks.TakeFromProject(project);
    std::vector<LEdFileWindow*> vWindows;
    for (LEdProjectFile& f : project.vFiles) {
        const LEdFileEntry& e = f.entry;
        auto pFile = std::make_unique<LEdFile>();
        pFile->GetDocument() = *f.pDoc;
        pFile->SetModified(bRecovered || e.IsModified());
        std::string szName = e.GetName();
        if (szName.empty())
            szName = e.GetPath().empty() ? frame.NextUntitledName() : LFile::FileNameOf(e.GetPath());
        LEdFileWindow* pWindow = frame.AddFileToList(std::move(pFile), e.GetPath(), szName);
        if (!pWindow)
            continue;
        if (!e.GetEncoding().empty())
            pWindow->SetSaveEncoding(LAudioEncoding::Named(e.GetEncoding()));
        if (e.bVerticalZoom != pWindow->IsVerticalZoom())
            pWindow->ToggleVerticalZoom();
        if (pWindow->GetFile().GetDocument().GetChannels() == 2 && e.nDisplayMode <= 1)
            pWindow->SetDisplayMode(e.nDisplayMode);
        pWindow->SetView(e.sViewStart, e.sViewEnd);
        pWindow->SetSelection(e.sSelStart, e.sSelEnd);
        pWindow->SetCursorPosition(e.sCursor);
        pWindow->setWindowTitle(pWindow->Caption());
        vWindows.push_back(pWindow);
    }
    if (project.nState < vWindows.size())
        frame.SetActiveFileWindow(vWindows[project.nState]);
    frame.FollowCurrentFile();
}

void LProjectCommands::CollectProject(LEdProject& project) const
{
    const std::vector<LEdFileWindow*> windows = frame.GetFileWindows();
    LEdFileWindow* pCurrent = frame.GetCurrentFileWindow();
    for (size_t i = 0; i < windows.size(); ++i) {
        LEdFileWindow* pWindow = windows[i];
        LEdFile& file = pWindow->GetFile();
        LEdProjectFile f;
        f.entry.SetPath(pWindow->GetPath());
        f.entry.SetName(pWindow->GetName());
        f.entry.SetEncoding(pWindow->GetSaveEncoding().szName);
        f.entry.sCursor = file.GetCursor();
        f.entry.sSelStart = file.GetSelStart();
        f.entry.sSelEnd = file.GetSelEnd();
        f.entry.sViewStart = file.GetViewStart();
        f.entry.sViewEnd = file.GetViewEnd();
        f.entry.nSampleRate = file.GetDocument().GetSampleRate();
        f.entry.nChans = file.GetDocument().GetChannels();
        f.entry.bVerticalZoom = pWindow->IsVerticalZoom() ? 1 : 0;
        f.entry.nDisplayMode = pWindow->GetDisplayMode();
        f.entry.nFlags = file.IsModified() ? LEdFileEntry::kFlagModified : 0;
        f.pDoc = file.GetDocumentPtr();
        project.vFiles.push_back(std::move(f));
        if (pWindow == pCurrent && i < LEdProject::kNoCurrentFile)
            project.nState = static_cast<uint8_t>(i);
    }
    marks.PutInProject(project);
}

bool LProjectCommands::SaveProjectTo(const std::string& szPath)
{
    LEdProject project;
    CollectProject(project);
    if (!project.FitsCounts()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra",
                                 QString(LEdSaveProject::kTooManyMessage) +
                                     " Close some files or delete some bookmarks or regions first.",
                                 LUiPrompts::IconWarning);
        return false;
    }
    // Another place starts a store of its own, in a folder of its own, so the new project does
    // not depend on the old one; the old store is let go once the new save stands.
    std::unique_ptr<LProjectSegments> pNewStore;
    LProjectSegments* pStore = pProjectSegments.get();
    if (!pStore || szPath != szProjectPath) {
        pNewStore = std::make_unique<LProjectSegments>(LProjectSegments::NewFolderFor(szPath));
        pStore = pNewStore.get();
    }
    LEdSaveProject save(szPath, project, pStore);
    const int32_t nResult = save.Run();
    if (nResult != LProgressDialog::ResultDone) {
        if (nResult == LProgressDialog::ResultError)
            LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
                                     QString("Unable to save the project \"%1\":\n%2")
                                         .arg(QString::fromStdString(szPath), QString::fromStdString(save.GetError())),
                                     LUiPrompts::IconError);
        return false;
    }
    if (pNewStore)
        pProjectSegments = std::move(pNewStore);
    szProjectPath = szPath;
    bProjectChanged = false;
    frame.UpdateMenuStates();
    return true;
}

void LProjectCommands::CmSaveProject()
{
    if (szProjectPath.empty())
        CmSaveProjectAs();
    else
        SaveProjectTo(szProjectPath);
}

void LProjectCommands::CmSaveProjectAs()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "ProjectDir", QDir::homePath().toStdString()));
    QString szChosen = LUiPrompts::Get().GetSaveFileName(frame.GetWidget(), "Save Project As", QDir(szFolder).filePath("project.snp"), kProjectFilter);
    if (szChosen.isEmpty())
        return;
    if (QFileInfo(szChosen).suffix().isEmpty())
        szChosen += ".snp";
    LSettings::SetString("Folders", "ProjectDir", QFileInfo(szChosen).absolutePath().toStdString());
    const std::string szNew = szChosen.toStdString();
    if (szNew != szProjectPath && LFile::Exists(szNew)) {
        const auto answer = LUiPrompts::Get().Ask(
            frame.GetWidget(), "Sonitra", "Another file with the same name already exists. Do you want to replace it?", false);
        if (answer != LUiPrompts::AnswerYes)
            return;
    }
    SaveProjectTo(szNew);
}

bool LProjectCommands::QueryCloseProject()
{
    if (szProjectPath.empty() || !bProjectChanged)
        return true;
    const auto answer = LUiPrompts::Get().Ask(frame.GetWidget(), "Sonitra", "Save changes to current project?", true);
    if (answer == LUiPrompts::AnswerCancel)
        return false;
    if (answer == LUiPrompts::AnswerNo)
        return true;
    return SaveProjectTo(szProjectPath);
}

bool LProjectCommands::CloseProject()
{
    if (szProjectPath.empty())
        return true;
    if (!QueryCloseProject() || !frame.CloseAllFiles())
        return false;
    marks.Clear();
    szProjectPath.clear();
    pProjectSegments.reset();
    bProjectChanged = false;
    frame.NoteChange();
    bProjectChanged = false;
    frame.UpdateMenuStates();
    return true;
}

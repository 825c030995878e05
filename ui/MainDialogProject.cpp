// Projects (the File menu's project commands) and the Bookmarks menu.
#include <QDir>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>

#include <algorithm>
#include <ctime>

#include "core/LEdFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LSoundTime.h"
#include "core/LTrace.h"
#include "lists/LListFile.h"
#include "project/LBookmarkFile.h"
#include "project/LEdLoadProject.h"
#include "project/LEdProject.h"
#include "project/LEdSaveProject.h"
#include "project/LProjectSegments.h"
#include "ui/LBookmarkListDlg.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEditCommands.h"
#include "ui/LRecoveryKeeper.h"
#include "ui/LRegionListDlg.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"

namespace {
const char* const kProjectFilter = "Sonitra Projects (*.snp)";
// Bookmark lists and projects count their records in one byte.
constexpr size_t kMaxBookmarks = LBookmarkFile::kMaxBookmarks;
constexpr size_t kMaxRegions = LEdProject::kMaxRecords;
const char* const kTooManyBookmarks = "Sonitra keeps at most 255 bookmarks. Delete one before adding another.";
const char* const kTooManyRegions = "Sonitra keeps at most 255 regions. Delete one before adding another.";

uint32_t Now()
{
    return static_cast<uint32_t>(std::time(nullptr));
}
} // namespace

std::string MainDialog::FileKey(const LEdFileWindow* pWindow)
{
    if (!pWindow)
        return std::string();
    return pWindow->GetPath().empty() ? pWindow->GetName() : pWindow->GetPath();
}

bool MainDialog::CmProject(int nId)
{
    switch (nId) {
    case CmOpenProjectId: CmOpenProject(); return true;
    case CmCloseProjectId: CloseProject(); return true;
    case CmSaveProjectId: CmSaveProject(); return true;
    case CmSaveProjectAsId: CmSaveProjectAs(); return true;
    case CmSetBookmarkId: CmSetBookmark(); return true;
    case CmAddRegionId: CmAddRegion(); return true;
    case CmBookmarkListId: {
        LBookmarkListDlg dlg(*this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToBookmark(static_cast<size_t>(dlg.GetChosen()));
        UpdateMenuStates();
        return true;
    }
    case CmRegionListId: {
        LRegionListDlg dlg(*this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToRegion(static_cast<size_t>(dlg.GetChosen()));
        UpdateMenuStates();
        return true;
    }
    case CmAssembleRegionsId: CmAssembleRegions(); return true;
    default: return false;
    }
}

// ---- projects

void MainDialog::CmOpenProject()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "ProjectDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Open Project", szFolder, kProjectFilter);
    if (files.isEmpty())
        return;
    LSettings::SetString("Folders", "ProjectDir", QFileInfo(files.front()).absolutePath().toStdString());
    OpenProject(files.front().toStdString());
}

bool MainDialog::OpenProject(const std::string& szPath)
{
    if (!CloseProject())
        return false;
    LEdLoadProject load(szPath);
    const int32_t nResult = load.Run();
    if (nResult == LProgressDialog::ResultCancelled)
        return false;
    if (load.IsVersionError()) {
        LUiPrompts::Get().Inform(this, "File Error", LEdLoadProject::kVersionMessage, LUiPrompts::IconError);
        return false;
    }
    if (load.IsOpenError()) {
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("Unable to open \"%1\".").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconError);
        return false;
    }
    // Opened with silence in place of its audio, a save would make the loss for good.
    if (load.IsMissingAudio()) {
        LUiPrompts::Get().Inform(this, "File Error",
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
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("\"%1\" is damaged; only part of it could be read.").arg(QString::fromStdString(szPath)),
                                 LUiPrompts::IconWarning);
    UpdateMenuStates();
    return true;
}

void MainDialog::AddProjectFiles(LEdProject& project, bool bRecovered)
{
    // The project's bookmarks take the place of the lists beside its files.
    for (const LEdProjectFile& f : project.vFiles)
        setBookmarksRead.insert(LEdProject::FileKey(f.entry));
    std::vector<LEdFileWindow*> vWindows;
    for (LEdProjectFile& f : project.vFiles) {
        const LEdFileEntry& e = f.entry;
        auto pFile = std::make_unique<LEdFile>();
        pFile->GetDocument() = *f.pDoc;
        pFile->SetModified(bRecovered || e.IsModified());
        std::string szName = e.GetName();
        if (szName.empty())
            szName = e.GetPath().empty() ? NextUntitledName() : LFile::FileNameOf(e.GetPath());
        LEdFileWindow* pWindow = AddFileToList(std::move(pFile), e.GetPath(), szName);
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
    vBookmarks.insert(vBookmarks.end(), project.vBookmarks.begin(), project.vBookmarks.end());
    vRegions.insert(vRegions.end(), project.vRegions.begin(), project.vRegions.end());
    if (project.nState < vWindows.size())
        pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(vWindows[project.nState]->parentWidget()));
    OnSubWindowActivated(pMdi->currentSubWindow());
}

void MainDialog::CollectProject(LEdProject& project) const
{
    const std::vector<LEdFileWindow*> windows = GetFileWindows();
    LEdFileWindow* pCurrent = GetCurrentFileWindow();
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
    project.vBookmarks = vBookmarks;
    project.vRegions = vRegions;
}

bool MainDialog::SaveProjectTo(const std::string& szPath)
{
    LEdProject project;
    CollectProject(project);
    if (!project.FitsCounts()) {
        LUiPrompts::Get().Inform(this, "Sonitra",
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
            LUiPrompts::Get().Inform(this, "File Error",
                                     QString("Unable to save the project \"%1\":\n%2")
                                         .arg(QString::fromStdString(szPath), QString::fromStdString(save.GetError())),
                                     LUiPrompts::IconError);
        return false;
    }
    if (pNewStore)
        pProjectSegments = std::move(pNewStore);
    szProjectPath = szPath;
    bProjectChanged = false;
    UpdateMenuStates();
    return true;
}

void MainDialog::CmSaveProject()
{
    if (szProjectPath.empty())
        CmSaveProjectAs();
    else
        SaveProjectTo(szProjectPath);
}

void MainDialog::CmSaveProjectAs()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "ProjectDir", QDir::homePath().toStdString()));
    QString szChosen = LUiPrompts::Get().GetSaveFileName(this, "Save Project As", QDir(szFolder).filePath("project.snp"), kProjectFilter);
    if (szChosen.isEmpty())
        return;
    if (QFileInfo(szChosen).suffix().isEmpty())
        szChosen += ".snp";
    LSettings::SetString("Folders", "ProjectDir", QFileInfo(szChosen).absolutePath().toStdString());
    const std::string szNew = szChosen.toStdString();
    if (szNew != szProjectPath && LFile::Exists(szNew)) {
        const auto answer = LUiPrompts::Get().Ask(
            this, "Sonitra", "Another file with the same name already exists. Do you want to replace it?", false);
        if (answer != LUiPrompts::AnswerYes)
            return;
    }
    SaveProjectTo(szNew);
}

bool MainDialog::QueryCloseProject()
{
    if (szProjectPath.empty() || !bProjectChanged)
        return true;
    const auto answer = LUiPrompts::Get().Ask(this, "Sonitra", "Save changes to current project?", true);
    if (answer == LUiPrompts::AnswerCancel)
        return false;
    if (answer == LUiPrompts::AnswerNo)
        return true;
    return SaveProjectTo(szProjectPath);
}

bool MainDialog::CloseProject()
{
    if (szProjectPath.empty())
        return true;
    if (!QueryCloseProject() || !CloseAllFiles())
        return false;
    vBookmarks.clear();
    vRegions.clear();
    szProjectPath.clear();
    pProjectSegments.reset();
    bProjectChanged = false;
    NoteChange();
    bProjectChanged = false;
    UpdateMenuStates();
    return true;
}

// ---- bookmarks and regions

void MainDialog::LoadBookmarksFor(LEdFileWindow* pWindow)
{
    if (!pWindow || pWindow->GetPath().empty())
        return;
    const std::string szPath = pWindow->GetPath();
    if (!setBookmarksRead.insert(szPath).second)
        return;
    std::vector<LEdBookMark> v;
    std::string szWhy;
    const LBookmarkFile::Result result = LBookmarkFile::Load(szPath, v, &szWhy);
    if (result == LBookmarkFile::BadVersion || result == LBookmarkFile::Damaged) {
        setBookmarksRefused.insert(szPath);
        const QString szText = result == LBookmarkFile::BadVersion
                                   ? QString(LEdLoadProject::kVersionMessage)
                                   : QString::fromStdString(LListFile::DamagedMessage(LBookmarkFile::PathFor(szPath), szWhy));
        // Told after the switch of windows has finished.
        QTimer::singleShot(0, this, [this, szText] {
            LUiPrompts::Get().Inform(this, "File Error", szText, LUiPrompts::IconError);
        });
        return;
    }
    for (LEdBookMark& b : v) {
        b.SetPath(szPath); // the list follows its file wherever the file was moved
        vBookmarks.push_back(b);
    }
}

void MainDialog::BookmarksChanged(const std::string& szKey)
{
    if (!szKey.empty() && szKey.front() == '/' && LFile::Exists(szKey))
        SaveBookmarksOf(szKey);
    NoteChange();
}

bool MainDialog::SaveBookmarksOf(const std::string& szPath)
{
    // A list that could not be read is kept as it is rather than replaced by what little is known.
    const bool bRefused = setBookmarksRefused.count(szPath) != 0;
    if (bRefused && LBookmarkFile::CountOf(szPath, vBookmarks) == 0)
        return true;
    std::string szWhy = "the list beside the file could not be read and is kept as it is";
    if (!bRefused && LBookmarkFile::Save(szPath, vBookmarks, &szWhy))
        return true;
    LTRACE("MainDialog::SaveBookmarksOf cannot save %s: %s", LBookmarkFile::PathFor(szPath).c_str(), szWhy.c_str());
    // Told once the command or the closing of the window has finished.
    const QString szList = QString::fromStdString(LBookmarkFile::PathFor(szPath));
    QTimer::singleShot(0, this, [this, szList] {
        LUiPrompts::Get().Inform(this, "File Error", QString("Unable to save the bookmark list \"%1\".").arg(szList),
                                 LUiPrompts::IconError);
    });
    return false;
}

void MainDialog::RegionsChanged()
{
    NoteChange();
}

void MainDialog::ForgetBookmarksOf(LEdFileWindow* pWindow)
{
    const std::string szKey = FileKey(pWindow);
    for (LEdFileWindow* p : GetFileWindows())
        if (p != pWindow && FileKey(p) == szKey)
            return; // still open in another window
    if (!pWindow->GetPath().empty())
        SaveBookmarksOf(pWindow->GetPath());
    vBookmarks.erase(std::remove_if(vBookmarks.begin(), vBookmarks.end(),
                                    [&](const LEdBookMark& b) { return b.GetPath() == szKey; }),
                     vBookmarks.end());
    setBookmarksRead.erase(szKey);
    setBookmarksRefused.erase(szKey);
}

void MainDialog::RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey)
{
    if (szOldKey == szNewKey)
        return;
    bool bAny = false;
    for (LEdBookMark& b : vBookmarks) {
        if (b.GetPath() == szOldKey) {
            b.SetPath(szNewKey);
            bAny = true;
        }
    }
    setBookmarksRead.insert(szNewKey);
    if (bAny)
        BookmarksChanged(szNewKey);
}

void MainDialog::CmSetBookmark()
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    if (vBookmarks.size() >= kMaxBookmarks) {
        LUiPrompts::Get().Inform(this, "Sonitra", kTooManyBookmarks, LUiPrompts::IconWarning);
        return;
    }
    const std::string szKey = FileKey(pWindow);
    vBookmarks.emplace_back("Bookmark " + std::to_string(vBookmarks.size() + 1), szKey, pWindow->GetFile().GetCursor());
    BookmarksChanged(szKey);
    UpdateMenuStates();
}

void MainDialog::CmAddRegion()
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    int32_t sStart = 0, sEnd = 0;
    if (!pWindow || !GetSelection(sStart, sEnd))
        return;
    if (vRegions.size() >= kMaxRegions) {
        LUiPrompts::Get().Inform(this, "Sonitra", kTooManyRegions, LUiPrompts::IconWarning);
        return;
    }
    vRegions.emplace_back("Region " + std::to_string(vRegions.size() + 1), FileKey(pWindow),
                          pWindow->GetFile().GetDocument(), sStart, sEnd);
    RegionsChanged();
    UpdateMenuStates();
}

LEdFileWindow* MainDialog::FindWindowByKey(const std::string& szKey, bool bOpen)
{
    for (LEdFileWindow* p : GetFileWindows())
        if (FileKey(p) == szKey)
            return p;
    if (!bOpen || szKey.empty() || szKey.front() != '/' || !LFile::Exists(szKey) || !LoadFile(szKey))
        return nullptr;
    return GetCurrentFileWindow();
}

bool MainDialog::GoToBookmark(size_t nIndex)
{
    if (nIndex >= vBookmarks.size())
        return false;
    const std::string szKey = vBookmarks[nIndex].GetPath();
    const int32_t sPos = vBookmarks[nIndex].sPosition;
    LEdFileWindow* pWindow = FindWindowByKey(szKey, true);
    if (!pWindow || nIndex >= vBookmarks.size())
        return false;
    pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
    pWindow->SetCursorPosition(std::clamp(sPos, 0, pWindow->GetFile().GetDocument().GetLength()));
    vBookmarks[nIndex].Visit(Now());
    BookmarksChanged(szKey);
    UpdateTimeFields();
    return true;
}

bool MainDialog::GoToRegion(size_t nIndex)
{
    if (nIndex >= vRegions.size())
        return false;
    const LEdRegion r = vRegions[nIndex];
    LEdFileWindow* pWindow = FindWindowByKey(r.GetPath(), true);
    if (!pWindow)
        return false;
    pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
    pWindow->SetSelection(r.sStart, r.sEnd);
    pWindow->SetCursorPosition(r.sStart);
    UpdateTimeFields();
    UpdateMenuStates();
    return true;
}

LCutListAudioPtr MainDialog::AssembleRegions()
{
    LCutListAudioPtr pOut;
    const bool bGap = LSettings::GetBool("Settings", "AutoGap", false);
    const int32_t nGapMs = std::max(0, LSettings::GetInt("Settings", "AutoGapTime", 1000));
    for (const LEdRegion& r : vRegions) {
        if (!r.bAssemble || !r.pDoc)
            continue;
        if (!pOut) {
            pOut = new LCutListAudio(r.pDoc->GetSampleRate(), r.pDoc->GetChannels());
        } else if (bGap) {
            const int32_t nRate = pOut->GetSampleRate();
            pOut->InsertSilence(pOut->GetLength(), (nGapMs / 1000) * nRate + ((nGapMs % 1000) * nRate) / 1000);
        }
        LCutListAudioPtr pPart = r.pDoc;
        if (pPart->GetSampleRate() != pOut->GetSampleRate() || pPart->GetChannels() != pOut->GetChannels()) {
            pPart = pEdit->ConformDocument(*r.pDoc, pOut->GetSampleRate(), pOut->GetChannels());
            if (!pPart)
                return LCutListAudioPtr();
        }
        pOut->Insert(pOut->GetLength(), *pPart);
    }
    return pOut;
}

void MainDialog::CmAssembleRegions()
{
    LCutListAudioPtr pDoc = AssembleRegions();
    if (!pDoc) {
        LUiPrompts::Get().Inform(this, "Sonitra", "There are no regions to assemble.", LUiPrompts::IconInformation);
        return;
    }
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument() = *pDoc;
    pFile->SetModified(true);
    pFile->SetView(0, pDoc->GetLength());
    if (LEdFileWindow* pWindow = AddFileToList(std::move(pFile), std::string(), NextUntitledName()))
        pWindow->setWindowTitle(pWindow->Caption());
}

void MainDialog::StartRecovery()
{
    pRecovery->Start();
}

void MainDialog::WriteRecovery()
{
    if (pRecovery)
        pRecovery->Write();
}

void MainDialog::NoteChange()
{
    UpdateMarks();
    bProjectChanged = true;
    WriteRecovery();
}

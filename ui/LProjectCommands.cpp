#include "ui/LProjectCommands.h"

#include <QDir>
#include <QFileInfo>
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
#include "ui/LRegionListDlg.h"
#include "ui/LEditCommands.h"
#include "ui/LUiPrompts.h"

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

LProjectCommands::LProjectCommands(LFrame& f, LEditCommands& e) : frame(f), edit(e) {}

LProjectCommands::~LProjectCommands() = default;

bool LProjectCommands::Command(int nId)
{
    switch (nId) {
    case CmOpenProjectId: CmOpenProject(); return true;
    case CmCloseProjectId: CloseProject(); return true;
    case CmSaveProjectId: CmSaveProject(); return true;
    case CmSaveProjectAsId: CmSaveProjectAs(); return true;
    case CmSetBookmarkId: CmSetBookmark(); return true;
    case CmAddRegionId: CmAddRegion(); return true;
    case CmAssembleRegionsId: CmAssembleRegions(); return true;
    case CmBookmarkListId:
    case CmRegionListId: ShowMarkList(nId); return true;
    default: return false;
    }
}

// ---- projects

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
    vBookmarks.insert(vBookmarks.end(), project.vBookmarks.begin(), project.vBookmarks.end());
    vRegions.insert(vRegions.end(), project.vRegions.begin(), project.vRegions.end());
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
    project.vBookmarks = vBookmarks;
    project.vRegions = vRegions;
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
    vBookmarks.clear();
    vRegions.clear();
    szProjectPath.clear();
    pProjectSegments.reset();
    bProjectChanged = false;
    frame.NoteChange();
    bProjectChanged = false;
    frame.UpdateMenuStates();
    return true;
}

// ---- bookmarks and regions

void LProjectCommands::LoadBookmarksFor(LEdFileWindow* pWindow)
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
        QTimer::singleShot(0, frame.GetWidget(), [this, szText] {
            LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", szText, LUiPrompts::IconError);
        });
        return;
    }
    for (LEdBookMark& b : v) {
        b.SetPath(szPath); // the list follows its file wherever the file was moved
        vBookmarks.push_back(b);
    }
}

void LProjectCommands::BookmarksChanged(const std::string& szKey)
{
    if (!szKey.empty() && szKey.front() == '/' && LFile::Exists(szKey))
        SaveBookmarksOf(szKey);
    frame.NoteChange();
}

bool LProjectCommands::SaveBookmarksOf(const std::string& szPath)
{
    // A list that could not be read is kept as it is rather than replaced by what little is known.
    const bool bRefused = setBookmarksRefused.count(szPath) != 0;
    if (bRefused && LBookmarkFile::CountOf(szPath, vBookmarks) == 0)
        return true;
    std::string szWhy = "the list beside the file could not be read and is kept as it is";
    if (!bRefused && LBookmarkFile::Save(szPath, vBookmarks, &szWhy))
        return true;
    LTRACE("LProjectCommands::SaveBookmarksOf cannot save %s: %s", LBookmarkFile::PathFor(szPath).c_str(), szWhy.c_str());
    // Told once the command or the closing of the window has finished.
    const QString szList = QString::fromStdString(LBookmarkFile::PathFor(szPath));
    QTimer::singleShot(0, frame.GetWidget(), [this, szList] {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", QString("Unable to save the bookmark list \"%1\".").arg(szList),
                                 LUiPrompts::IconError);
    });
    return false;
}

void LProjectCommands::RegionsChanged()
{
    frame.NoteChange();
}

void LProjectCommands::ForgetBookmarksOf(LEdFileWindow* pWindow)
{
    const std::string szKey = pWindow->GetKey();
    for (LEdFileWindow* p : frame.GetFileWindows())
        if (p != pWindow && p->GetKey() == szKey)
            return; // still open in another window
    if (!pWindow->GetPath().empty())
        SaveBookmarksOf(pWindow->GetPath());
    vBookmarks.erase(std::remove_if(vBookmarks.begin(), vBookmarks.end(),
                                    [&](const LEdBookMark& b) { return b.GetPath() == szKey; }),
                     vBookmarks.end());
    setBookmarksRead.erase(szKey);
    setBookmarksRefused.erase(szKey);
}

void LProjectCommands::RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey)
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

void LProjectCommands::CmSetBookmark()
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    if (!pWindow)
        return;
    if (vBookmarks.size() >= kMaxBookmarks) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", kTooManyBookmarks, LUiPrompts::IconWarning);
        return;
    }
    const std::string szKey = pWindow->GetKey();
    vBookmarks.emplace_back("Bookmark " + std::to_string(vBookmarks.size() + 1), szKey, pWindow->GetFile().GetCursor());
    BookmarksChanged(szKey);
    frame.UpdateMenuStates();
}

void LProjectCommands::CmAddRegion()
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    int32_t sStart = 0, sEnd = 0;
    if (!pWindow || !frame.GetSelection(sStart, sEnd))
        return;
    if (vRegions.size() >= kMaxRegions) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", kTooManyRegions, LUiPrompts::IconWarning);
        return;
    }
    vRegions.emplace_back("Region " + std::to_string(vRegions.size() + 1), pWindow->GetKey(),
                          pWindow->GetFile().GetDocument(), sStart, sEnd);
    RegionsChanged();
    frame.UpdateMenuStates();
}

void LProjectCommands::UpdateMarks()
{
    for (LEdFileWindow* pWindow : frame.GetFileWindows()) {
        const std::string& szKey = pWindow->GetKey();
        std::vector<LWaveMark> v;
        for (const LEdRegion& r : vRegions)
            if (r.GetPath() == szKey)
                v.push_back({r.sStart, r.sEnd, QString::fromStdString(r.GetName()), true});
        for (const LEdBookMark& b : vBookmarks)
            if (b.GetPath() == szKey)
                v.push_back({b.sPosition, b.sPosition, QString::fromStdString(b.GetName()), false});
        pWindow->SetMarks(v);
    }
}

void LProjectCommands::ShowMarkList(int nId)
{
    if (nId == CmBookmarkListId) {
        LBookmarkListDlg dlg(frame, *this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToBookmark(static_cast<size_t>(dlg.GetChosen()));
    } else {
        LRegionListDlg dlg(frame, *this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToRegion(static_cast<size_t>(dlg.GetChosen()));
    }
    frame.UpdateMenuStates();
}

LEdFileWindow* LProjectCommands::FindWindowByKey(const std::string& szKey, bool bOpen)
{
    for (LEdFileWindow* p : frame.GetFileWindows())
        if (p->GetKey() == szKey)
            return p;
    if (!bOpen || szKey.empty() || szKey.front() != '/' || !LFile::Exists(szKey) || !frame.LoadFileWindow(szKey))
        return nullptr;
    return frame.GetCurrentFileWindow();
}

bool LProjectCommands::GoToBookmark(size_t nIndex)
{
    if (nIndex >= vBookmarks.size())
        return false;
    const std::string szKey = vBookmarks[nIndex].GetPath();
    const int32_t sPos = vBookmarks[nIndex].sPosition;
    LEdFileWindow* pWindow = FindWindowByKey(szKey, true);
    if (!pWindow || nIndex >= vBookmarks.size())
        return false;
    frame.SetActiveFileWindow(pWindow);
    pWindow->SetCursorPosition(std::clamp(sPos, 0, pWindow->GetFile().GetDocument().GetLength()));
    vBookmarks[nIndex].Visit(Now());
    BookmarksChanged(szKey);
    frame.UpdateTimeFields();
    return true;
}

bool LProjectCommands::GoToRegion(size_t nIndex)
{
    if (nIndex >= vRegions.size())
        return false;
    const LEdRegion r = vRegions[nIndex];
    LEdFileWindow* pWindow = FindWindowByKey(r.GetPath(), true);
    if (!pWindow)
        return false;
    frame.SetActiveFileWindow(pWindow);
    pWindow->SetSelection(r.sStart, r.sEnd);
    pWindow->SetCursorPosition(r.sStart);
    frame.UpdateTimeFields();
    frame.UpdateMenuStates();
    return true;
}

LCutListAudioPtr LProjectCommands::AssembleRegions()
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
            pPart = edit.ConformDocument(*r.pDoc, pOut->GetSampleRate(), pOut->GetChannels());
            if (!pPart)
                return LCutListAudioPtr();
        }
        pOut->Insert(pOut->GetLength(), *pPart);
    }
    return pOut;
}

void LProjectCommands::CmAssembleRegions()
{
    LCutListAudioPtr pDoc = AssembleRegions();
    if (!pDoc) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", "There are no regions to assemble.", LUiPrompts::IconInformation);
        return;
    }
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument() = *pDoc;
    pFile->SetModified(true);
    pFile->SetView(0, pDoc->GetLength());
    if (LEdFileWindow* pWindow = frame.AddFileToList(std::move(pFile), std::string(), frame.NextUntitledName()))
        pWindow->setWindowTitle(pWindow->Caption());
}


#include "ui/LMarkCommands.h"

#include <QTimer>

#include <algorithm>
#include <ctime>

#include "core/LEdFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "lists/LListFile.h"
#include "project/LBookmarkFile.h"
#include "project/LEdLoadProject.h"
#include "project/LEdProject.h"
#include "ui/LBookmarkListDlg.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEditCommands.h"
#include "ui/LRegionListDlg.h"
#include "ui/LUiPrompts.h"

namespace {
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

LMarkCommands::LMarkCommands(LFrame& f, LEditCommands& e) : frame(f), edit(e) {}

bool LMarkCommands::Command(int nId)
{
    switch (nId) {
    case CmSetBookmarkId: CmSetBookmark(); return true;
    case CmAddRegionId: CmAddRegion(); return true;
    case CmAssembleRegionsId: CmAssembleRegions(); return true;
    case CmBookmarkListId:
    case CmRegionListId: ShowMarkList(nId); return true;
    default: return false;
    }
}

void LMarkCommands::TakeFromProject(const LEdProject& project)
{
    // The project's bookmarks take the place of the lists beside its files.
    for (const LEdProjectFile& f : project.vFiles)
        setBookmarksRead.insert(LEdProject::FileKey(f.entry));
    vBookmarks.insert(vBookmarks.end(), project.vBookmarks.begin(), project.vBookmarks.end());
    vRegions.insert(vRegions.end(), project.vRegions.begin(), project.vRegions.end());
}

void LMarkCommands::PutInProject(LEdProject& project) const
{
    project.vBookmarks = vBookmarks;
    project.vRegions = vRegions;
}

void LMarkCommands::Clear()
{
    vBookmarks.clear();
    vRegions.clear();
}

void LMarkCommands::LoadBookmarksFor(LEdFileWindow* pWindow)
{
    if (!pWindow || pWindow->GetPath().empty())
        return;
    const std::string szPath = pWindow->GetPath();
    if (!setBookmarksRead.insert(szPath).second)
        return;
    FollowEdits(pWindow);
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
    follower.FromDisk(pWindow->GetFile(), v);
    for (LEdBookMark& b : v) {
        b.SetPath(szPath); // the list follows its file wherever the file was moved
        vBookmarks.push_back(b);
    }
}

// The list beside the file is not written here: it holds places in the file on disk, which an
// edit does not move.
void LMarkCommands::FollowEdits(LEdFileWindow* pWindow)
{
    follower.Follow(pWindow->GetFile(), pWindow->GetKey(), vBookmarks, vRegions);
}

void LMarkCommands::FileSaved(LEdFileWindow* pWindow)
{
    FollowEdits(pWindow);
    follower.Saved(pWindow->GetFile());
    if (LBookmarkFile::CountOf(pWindow->GetPath(), vBookmarks) > 0)
        SaveBookmarksOf(pWindow->GetPath());
}

void LMarkCommands::BookmarksChanged(const std::string& szKey)
{
    if (!szKey.empty() && szKey.front() == '/' && LFile::Exists(szKey))
        SaveBookmarksOf(szKey);
    frame.NoteChange();
}

bool LMarkCommands::SaveBookmarksOf(const std::string& szPath)
{
    // A list that could not be read is kept as it is rather than replaced by what little is known.
    const bool bRefused = setBookmarksRefused.count(szPath) != 0;
    if (bRefused && LBookmarkFile::CountOf(szPath, vBookmarks) == 0)
        return true;
    std::string szWhy = "the list beside the file could not be read and is kept as it is";
    LEdFileWindow* pWindow = FindWindowByKey(szPath, false);
    const std::vector<LEdBookMark> vOnDisk =
        pWindow ? follower.OnDisk(pWindow->GetFile(), szPath, vBookmarks) : vBookmarks;
    if (!bRefused && LBookmarkFile::Save(szPath, vOnDisk, &szWhy))
        return true;
    LTRACE("LMarkCommands::SaveBookmarksOf cannot save %s: %s", LBookmarkFile::PathFor(szPath).c_str(), szWhy.c_str());
    // Told once the command or the closing of the window has finished.
    const QString szList = QString::fromStdString(LBookmarkFile::PathFor(szPath));
    QTimer::singleShot(0, frame.GetWidget(), [this, szList] {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error", QString("Unable to save the bookmark list \"%1\".").arg(szList),
                                 LUiPrompts::IconError);
    });
    return false;
}

void LMarkCommands::RegionsChanged()
{
    frame.NoteChange();
}

void LMarkCommands::ForgetBookmarksOf(LEdFileWindow* pWindow)
{
    const std::string szKey = pWindow->GetKey();
    for (LEdFileWindow* p : frame.GetFileWindows()) {
        if (p != pWindow && p->GetKey() == szKey) {
            follower.Forget(pWindow->GetFile());
            return; // still open in another window
        }
    }
    if (!pWindow->GetPath().empty())
        SaveBookmarksOf(pWindow->GetPath());
    follower.Forget(pWindow->GetFile());
    vBookmarks.erase(std::remove_if(vBookmarks.begin(), vBookmarks.end(),
                                    [&](const LEdBookMark& b) { return b.GetPath() == szKey; }),
                     vBookmarks.end());
    setBookmarksRead.erase(szKey);
    setBookmarksRefused.erase(szKey);
}

void LMarkCommands::RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey)
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

void LMarkCommands::CmSetBookmark()
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

void LMarkCommands::CmAddRegion()
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

void LMarkCommands::UpdateMarks()
{
    // Files whose windows went another way than through ForgetBookmarksOf are let go too: a new
    // file may take a gone one's place in memory and must not inherit its versions.
    std::vector<const LEdFile*> vOpen;
    for (LEdFileWindow* pWindow : frame.GetFileWindows()) {
        vOpen.push_back(&pWindow->GetFile());
        FollowEdits(pWindow);
    }
    follower.Retain(vOpen);
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

void LMarkCommands::ShowMarkList(int nId)
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

LEdFileWindow* LMarkCommands::FindWindowByKey(const std::string& szKey, bool bOpen)
{
    for (LEdFileWindow* p : frame.GetFileWindows())
        if (p->GetKey() == szKey)
            return p;
    if (!bOpen || szKey.empty() || szKey.front() != '/' || !LFile::Exists(szKey) || !frame.LoadFileWindow(szKey))
        return nullptr;
    return frame.GetCurrentFileWindow();
}

bool LMarkCommands::GoToBookmark(size_t nIndex)
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

bool LMarkCommands::GoToRegion(size_t nIndex)
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

LCutListAudioPtr LMarkCommands::AssembleRegions()
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

void LMarkCommands::CmAssembleRegions()
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


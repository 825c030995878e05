// The frame's side of projects, bookmarks and regions: what the lists and scripts ask of the
// frame goes to the project controller; the lists themselves are dialogs of the frame's; every
// finished change is followed by the project and the recovery project.
#include <QMdiArea>
#include <QMdiSubWindow>

#include "ui/LBookmarkListDlg.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LProjectCommands.h"
#include "ui/LRecoveryKeeper.h"
#include "ui/LRegionListDlg.h"
#include "ui/MainDialog.h"

std::string MainDialog::FileKey(const LEdFileWindow* pWindow)
{
    if (!pWindow)
        return std::string();
    return pWindow->GetPath().empty() ? pWindow->GetName() : pWindow->GetPath();
}

void MainDialog::ShowMarkList(int nId)
{
    if (nId == CmBookmarkListId) {
        LBookmarkListDlg dlg(*this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToBookmark(static_cast<size_t>(dlg.GetChosen()));
    } else {
        LRegionListDlg dlg(*this);
        if (dlg.exec() == QDialog::Accepted && dlg.GetChosen() >= 0)
            GoToRegion(static_cast<size_t>(dlg.GetChosen()));
    }
    UpdateMenuStates();
}

bool MainDialog::OpenProject(const std::string& szPath)
{
    return pProject->OpenProject(szPath);
}

bool MainDialog::SaveProjectTo(const std::string& szPath)
{
    return pProject->SaveProjectTo(szPath);
}

bool MainDialog::CloseProject()
{
    return pProject->CloseProject();
}

LCutListAudioPtr MainDialog::AssembleRegions()
{
    return pProject->AssembleRegions();
}

const std::string& MainDialog::GetProjectPath() const
{
    return pProject->GetProjectPath();
}

std::vector<LEdBookMark>& MainDialog::GetBookmarks()
{
    return pProject->GetBookmarks();
}

std::vector<LEdRegion>& MainDialog::GetRegions()
{
    return pProject->GetRegions();
}

bool MainDialog::GoToBookmark(size_t nIndex)
{
    return pProject->GoToBookmark(nIndex);
}

bool MainDialog::GoToRegion(size_t nIndex)
{
    return pProject->GoToRegion(nIndex);
}

void MainDialog::BookmarksChanged(const std::string& szKey)
{
    pProject->BookmarksChanged(szKey);
}

void MainDialog::RegionsChanged()
{
    pProject->RegionsChanged();
}

void MainDialog::RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey)
{
    pProject->RekeyBookmarks(szOldKey, szNewKey);
}

void MainDialog::SetActiveFileWindow(LEdFileWindow* pWindow)
{
    if (pWindow)
        pMdi->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pWindow->parentWidget()));
}

void MainDialog::FollowCurrentFile()
{
    OnSubWindowActivated(pMdi->currentSubWindow());
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
    if (pProject)
        pProject->MarkChanged();
    WriteRecovery();
}

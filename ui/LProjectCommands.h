// Projects (the File menu's project commands) and the Bookmarks menu: the open project, the
// bookmarks and regions of the open files, their lists beside the files, and assembling regions
// into a new file.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "project/LEdBookMark.h"
#include "project/LEdRegion.h"
#include "ui/LFrame.h"

class LEditCommands;
class LEdProject;
class LProjectSegments;

class LProjectCommands : public LCommandController
{
public:
    LProjectCommands(LFrame& frame, LEditCommands& edit);
    ~LProjectCommands() override;
    bool Command(int nId) override;

    // Opens a project in place of the current one; false (the user told why) when it cannot.
    bool OpenProject(const std::string& szPath);
    // Saves everything open as the project at szPath, which becomes the current project.
    bool SaveProjectTo(const std::string& szPath);
    // Asks "Save changes to current project?" when it has changed; false when the user cancels.
    bool QueryCloseProject();
    bool CloseProject();
    const std::string& GetProjectPath() const { return szProjectPath; }
    // Something the project holds has changed.
    void MarkChanged() { bProjectChanged = true; }

    std::vector<LEdBookMark>& GetBookmarks() { return vBookmarks; }
    std::vector<LEdRegion>& GetRegions() { return vRegions; }
    // Makes the bookmark's (or region's) file current, opening it when needed, and moves there.
    bool GoToBookmark(size_t nIndex);
    bool GoToRegion(size_t nIndex);
    // A bookmark or region changed by a list: its file's bookmark list is saved (a failure is
    // told once the change has finished).
    void BookmarksChanged(const std::string& szKey);
    void RegionsChanged();
    // A new document of the regions marked for it, in order, with "AutoGapTime" ms of silence
    // between them when "AutoGap" is set; null when there is none.
    LCutListAudioPtr AssembleRegions();

    // The file's bookmark list, read once when the file first becomes current.
    void LoadBookmarksFor(LEdFileWindow* pWindow);
    void ForgetBookmarksOf(LEdFileWindow* pWindow);
    void RekeyBookmarks(const std::string& szOldKey, const std::string& szNewKey);
    // Gives every file window its bookmarks and regions to draw.
    void UpdateMarks();

    // The session as a project, and documents of a project opened into windows.
    void CollectProject(LEdProject& project) const;
    void AddProjectFiles(LEdProject& project, bool bRecovered);

private:
    void CmOpenProject();
    void CmSaveProject();
    void CmSaveProjectAs();
    void CmSetBookmark();
    void CmAddRegion();
    void CmAssembleRegions();
    // The bookmark or region list; going to a mark moves there once the list has closed.
    void ShowMarkList(int nId);
    // Writes the list beside the file; false (the user is told later) when it cannot.
    bool SaveBookmarksOf(const std::string& szPath);
    LEdFileWindow* FindWindowByKey(const std::string& szKey, bool bOpen);

    LFrame& frame;
    LEditCommands& edit;
    std::string szProjectPath;
    std::unique_ptr<LProjectSegments> pProjectSegments;
    bool bProjectChanged = false;
    std::vector<LEdBookMark> vBookmarks;
    std::vector<LEdRegion> vRegions;
    std::set<std::string> setBookmarksRead; // files whose bookmark list has been read
    // Files whose bookmark list was refused (damaged, another version): never written over.
    std::set<std::string> setBookmarksRefused;
};

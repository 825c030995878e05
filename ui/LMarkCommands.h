// The Bookmarks menu: the bookmarks and regions of the open files, the list of each beside the
// files, and assembling regions into a new file. A file's bookmarks are kept in a list beside
// it, read when the file first becomes current; a project carries its own.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "core/LCutListAudio.h"
#include "project/LEdBookMark.h"
#include "project/LEdRegion.h"
#include "project/LMarkFollower.h"
#include "ui/LFrame.h"

class LEditCommands;
class LEdProject;

class LMarkCommands : public LCommandController
{
public:
    LMarkCommands(LFrame& frame, LEditCommands& edit);
    bool Command(int nId) override;

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
    // Moves the marks of every file whose audio changed with it, then gives every file window
    // its bookmarks and regions to draw.
    void UpdateMarks();
    // The file was written: its bookmark list now speaks of the audio as it is.
    void FileSaved(LEdFileWindow* pWindow);

    // The marks a project opens with, those it is saved with, and none once it has closed.
    void TakeFromProject(const LEdProject& project);
    void PutInProject(LEdProject& project) const;
    void Clear();

private:
    void CmSetBookmark();
    void CmAddRegion();
    void CmAssembleRegions();
    // The bookmark or region list; going to a mark moves there once the list has closed.
    void ShowMarkList(int nId);
    // Writes the list beside the file; false (the user is told later) when it cannot.
    bool SaveBookmarksOf(const std::string& szPath);
    LEdFileWindow* FindWindowByKey(const std::string& szKey, bool bOpen);
    // Moves the window's marks with its edits.
    void FollowEdits(LEdFileWindow* pWindow);

    LFrame& frame;
    LEditCommands& edit;
    std::vector<LEdBookMark> vBookmarks;
    std::vector<LEdRegion> vRegions;
    LMarkFollower follower;
    std::set<std::string> setBookmarksRead; // files whose bookmark list has been read
    // Files whose bookmark list was refused (damaged, another version): never written over.
    std::set<std::string> setBookmarksRefused;
};

// Projects (the File menu's project commands): the open project, opening one in place of the
// session, saving the session as one, and the session gathered into one for crash recovery.
#pragma once

#include <memory>
#include <string>

#include "ui/LFrame.h"

class LEdProject;
class LMarkCommands;
class LProjectSegments;

class LProjectCommands : public LCommandController
{
public:
    LProjectCommands(LFrame& frame, LMarkCommands& marks);
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

    // The session as a project, and documents of a project opened into windows.
    void CollectProject(LEdProject& project) const;
    void AddProjectFiles(LEdProject& project, bool bRecovered);

private:
    void CmOpenProject();
    void CmSaveProject();
    void CmSaveProjectAs();

    LFrame& frame;
    LMarkCommands& marks;
    std::string szProjectPath;
    std::unique_ptr<LProjectSegments> pProjectSegments;
    bool bProjectChanged = false;
};

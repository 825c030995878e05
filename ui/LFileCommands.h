// The File menu: new, open, close, save, save as, send, the recent files, settings and exit.
#pragma once

#include <string>

#include "ui/LFrame.h"

class LCdCommands;
class LMarkCommands;
class LProjectCommands;
class LSoundSourceBase;

class LFileCommands : public LCommandController
{
public:
    LFileCommands(LFrame& frame, LCdCommands& cd, LProjectCommands& project, LMarkCommands& marks)
        : frame(frame), cd(cd), project(project), marks(marks)
    {
    }
    bool Command(int nId) override;

    // Opens a file in a new window (the progress dialog shows while it loads). False, with
    // the user told why, when it cannot be read. A file already open has its window activated.
    bool LoadFile(const std::string& szPath);
    // Saves a file to its own path; false (and the file stays modified) when it fails.
    bool SaveFile(LEdFileWindow* pWindow);
    bool SaveFileAs(LEdFileWindow* pWindow);
    // Asks about unsaved changes; false when the user cancels (or a save fails).
    bool QueryCloseFile(LEdFileWindow* pWindow);

private:
    void CmNew();
    void CmOpen();
    void CmClose();
    void CmSave();
    void CmSaveAs();
    void CmSend();
    void CmExit();
    void CmSetting();
    void CmRecent(int nIndex);
    void WarnIfCutShort(const std::string& szPath, LSoundSourceBase& source);

    LFrame& frame;
    LCdCommands& cd;
    LProjectCommands& project;
    LMarkCommands& marks;
};
